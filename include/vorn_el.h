/*
 * vorn_el.h - the EL family.
 */
#ifndef VORN_EL_H
#define VORN_EL_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_EL_H */
