/*
 * vorn_hsh.h - the HSH family.
 */
#ifndef VORN_HSH_H
#define VORN_HSH_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_HSH_H */
