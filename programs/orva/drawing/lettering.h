// Lettering.
#pragma once

#include <cairo.h>

#include <string>

namespace orva
{

struct Lettering {
    double size = 15;  // of the letters, in units of the picture
    double anchor = 0; // which point of the text stands at the place given: 0 its left end, 1 its right end
    double room = 0;   // a wider text is cut and ends in an ellipsis; 0: no limit
    bool bold = false;
    bool upright = false; // turned a quarter to the left: it reads from below to above
};

// Writes one line whose base line goes through (x, y). The text may be any bytes, a file's name for example: what is not
// UTF-8, and control characters, become U+FFFD.
void letter(cairo_t *cairo, const Lettering &how, double x, double y, const std::string &text);

double letteredWidth(cairo_t *cairo, const Lettering &how, const std::string &text);

// The length of the UTF-8 sequence that starts there, 0 if none does or a control character.
size_t utf8Sequence(const char *bytes);

} // namespace orva
