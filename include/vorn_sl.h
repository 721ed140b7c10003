/*
 * vorn_sl.h - the SL family.
 */
#ifndef VORN_SL_H
#define VORN_SL_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_SL_H */
