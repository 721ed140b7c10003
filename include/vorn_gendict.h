/*
 * vorn_gendict.h - the GENDICT family.
 */
#ifndef VORN_GENDICT_H
#define VORN_GENDICT_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_GENDICT_H */
