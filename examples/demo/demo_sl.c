#include <vorn_container.h>

#include "demo.h"

void demo_sl(void) {}
