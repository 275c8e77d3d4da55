/* Filters from one line of text. */
#ifndef PROGRAMS_FILTER_TEXT_H
#define PROGRAMS_FILTER_TEXT_H

#include <orva/ORVAfilter.h>

/* Makes a filter of a text for ORVA_CreateFilter(), with edges in Hz at that sampling rate. Refuses, with null,
   keys that it does not know and what the library refuses, in the library's own words where it has some. */
_ORVA_FILTER *filterFromText(const char *config, int rate, int channels);

#endif
