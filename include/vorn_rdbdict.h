/*
 * vorn_rdbdict.h - the RDBDICT family.
 */
#ifndef VORN_RDBDICT_H
#define VORN_RDBDICT_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_RDBDICT_H */
