/*
 * vorn_dbll.h - the DBLL family.
 */
#ifndef VORN_DBLL_H
#define VORN_DBLL_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_DBLL_H */
