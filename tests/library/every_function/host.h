/* A host in C99 that knows the library by its one header and calls every function that it exports, checking
   something of each result. One file a family. */
#ifndef EVERY_FUNCTION_HOST_H
#define EVERY_FUNCTION_HOST_H

#include <orva/orva.h>

#include <stddef.h>

/* Counts a check, and says what does not hold. */
void check(bool holds, const char *what);

bool near(double value, double expected, double tolerance);

void use_life_cycle(void);
void use_windows(void);
void use_engine(void);
void use_processors(void);
void use_spectra(void);
void use_correlation(void);
void use_filters(void);
void use_resampling(void);
void use_interpolation(void);
void use_lapped_transform(void);
void use_time_scaling(void);
void use_noise_suppression(void);
void use_measures(void);

#endif
