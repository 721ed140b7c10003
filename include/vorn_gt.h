/*
 * vorn_gt.h - the GT family.
 */
#ifndef VORN_GT_H
#define VORN_GT_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_GT_H */
