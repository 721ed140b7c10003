/*
 * vorn_io_lut.h - the io_lut family.
 */
#ifndef VORN_IO_LUT_H
#define VORN_IO_LUT_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* VORN_IO_LUT_H */
