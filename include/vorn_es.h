/*
 * vorn_es.h - the ES family.
 */
#ifndef VORN_ES_H
#define VORN_ES_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_ES_H */
