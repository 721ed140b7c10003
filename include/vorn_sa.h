/*
 * vorn_sa.h - the SA family.
 */
#ifndef VORN_SA_H
#define VORN_SA_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_SA_H */
