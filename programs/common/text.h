/* Lettering. */
#ifndef PROGRAMS_TEXT_H
#define PROGRAMS_TEXT_H

#include <cairo.h>
#include <stdbool.h>

/* Which point of the text stands at the place given: 0 its left end, 0.5 its middle, 1 its right end. */
typedef struct {
    double size; /* of the letters, points of the picture */
    bool bold;
    double anchor;
    double room; /* a wider text is cut and ends in an ellipsis; 0: no limit */
} lettering;

/* Writes one line on the base line y. The text may be any bytes, a file's name for example: what is not
   UTF-8, and control characters, become U+FFFD. */
void text_draw(cairo_t *cairo, lettering how, double x, double y, const char *text);

/* The same, turned a quarter to the left: it reads from below to above, and its base line is x. */
void text_draw_upright(cairo_t *cairo, lettering how, double x, double y, const char *text);

double text_width(cairo_t *cairo, lettering how, const char *text);

#endif
