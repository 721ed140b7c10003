/*
 * vorn_clut.h - the CLUT family.
 */
#ifndef VORN_CLUT_H
#define VORN_CLUT_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_CLUT_H */
