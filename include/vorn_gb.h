/*
 * vorn_gb.h - the GB family.
 */
#ifndef VORN_GB_H
#define VORN_GB_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_GB_H */
