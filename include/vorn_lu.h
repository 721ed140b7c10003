/*
 * vorn_lu.h - the vorn_lu family.
 */
#ifndef VORN_LU_H
#define VORN_LU_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_LU_H */
