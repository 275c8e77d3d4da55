/* Filters given by their numbers. */
#ifndef EXAMPLES_FILTER_NUMBERS_H
#define EXAMPLES_FILTER_NUMBERS_H

#include <orva/ORVAfilter.h>

/* Makes a filter of "biquads=[a1 a2 b0 b1 b2; ...]", one row a section, or of "numerator=[...]; denominator=[...]".
   Refuses, with null, any other string. */
_ORVA_FILTER *filter_from_numbers(const char *config, int channels);

#endif
