/* The umbrella header compiles as plain C (C99 and C11), warning-free. */
#include <vorn_container.h>

int vorn_c_headers_compile(void);
int vorn_c_headers_compile(void) { return (int)sizeof(GL_list); }
