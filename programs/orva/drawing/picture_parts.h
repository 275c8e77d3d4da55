// What the parts of a picture share.
#pragma once

#include "picture.h"

namespace orva
{

inline constexpr double pictureInk = 0.13; // the grey of frames, ticks and letters

// The axis below an area, with its grid lines.
void drawAxisAcross(cairo_t *cairo, const PictureArea &area);

// The axis to the left of an area, with its grid lines; or the one to the right of it, without.
void drawAxisUp(cairo_t *cairo, const PictureArea &area, bool right);

void drawFrame(cairo_t *cairo, const PictureArea &area);

// The names of an area's curves, in a row above its right end, where no curve runs.
void drawLegend(cairo_t *cairo, const PictureArea &area);

} // namespace orva
