/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  What every header of liborva uses: the export macro and the complex sample.
 */
#ifndef ORVA_ORVATYPES_H
#define ORVA_ORVATYPES_H

#include <stdbool.h>
#include <stdint.h>

/** Makes a name visible outside the library; the one place that depends on the compiler and the system. On Windows a list
 *  tells the linker which names these are. */
#if defined(__GNUC__) && !defined(_WIN32)
#define ORVA_VISIBLE __attribute__((visibility("default")))
#else
#define ORVA_VISIBLE
#endif

/** Marks what the library exports: C linkage, visible from outside. */
#ifdef __cplusplus
#define ORVA_API extern "C" ORVA_VISIBLE
#else
#define ORVA_API ORVA_VISIBLE
#endif

/** A complex number, laid out like FFTW's single-precision one. */
typedef struct {
    float re; /**< real part */
    float im; /**< imaginary part */
} ORVA_COMPLEX;

#endif
