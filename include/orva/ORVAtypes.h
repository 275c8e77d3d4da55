/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  What every header of liborva uses: the export macro and the complex sample.
 */
#ifndef ORVA_ORVATYPES_H
#define ORVA_ORVATYPES_H

#include <stdbool.h>
#include <stdint.h>

/** Marks what the library exports: C linkage, visible from outside. */
#ifdef __cplusplus
#define ORVA_API extern "C" __attribute__((visibility("default")))
#else
#define ORVA_API __attribute__((visibility("default")))
#endif

/** A complex number, laid out like FFTW's single-precision one. */
typedef struct {
    float re; /**< real part */
    float im; /**< imaginary part */
} ORVA_COMPLEX;

#endif
