/* Lettering. */
#ifndef PROGRAMS_TEXT_H
#define PROGRAMS_TEXT_H

#include <cairo.h>

#include <stdbool.h>
#include <stddef.h>

/* Which point of the text stands at the place given: 0 its left end, 0.5 its middle, 1 its right end. */
typedef struct {
    double size; /* of the letters, points of the picture */
    bool bold;
    double anchor;
    double room; /* a wider text is cut and ends in an ellipsis; 0: no limit */
} Lettering;

/* Writes one line on the base line y. The text may be any bytes, a file's name for example: what is not
   UTF-8, and control characters, become U+FFFD. */
void textDraw(cairo_t *cairo, Lettering how, double x, double y, const char *text);

/* The same, turned a quarter to the left: it reads from below to above, and its base line is x. */
void textDrawUpright(cairo_t *cairo, Lettering how, double x, double y, const char *text);

/* The length of the UTF-8 sequence that starts at text, 0 if none does or a control character. */
size_t textSequence(const char *text);

double textWidth(cairo_t *cairo, Lettering how, const char *text);

#endif
