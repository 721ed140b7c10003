/*
 * vorn_da.h - the DA family.
 */
#ifndef VORN_DA_H
#define VORN_DA_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_DA_H */
