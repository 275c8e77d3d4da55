#include "plot_internal.h"

#include "text.h"

#include <math.h>

/* Colours that the colour-blind tell apart: M. Okabe and K. Ito, "Color Universal Design" (2008). */
static const double colors[mostCurves][3] = {{0.00, 0.45, 0.70}, {0.84, 0.37, 0.00}, {0.00, 0.62, 0.45},
                                             {0.80, 0.47, 0.65}, {0.90, 0.62, 0.00}, {0.34, 0.71, 0.91}};

static void useColor(cairo_t *cairo, int curve)
{
    const double *color = colors[curve % mostCurves];
    cairo_set_source_rgb(cairo, color[0], color[1], color[2]);
}

/* Draws a line point by point, gathering those that fall into one column. */
typedef struct {
    cairo_t *cairo;
    const PlotArea *area;
    bool down;     /* there is a point to draw on from */
    int64_t count; /* points gathered in the column */
    double column, x, first, last, least, most;
} Pen;

static void penFlush(Pen *tip)
{
    if (tip->count == 0)
        return;
    if (tip->down)
        cairo_line_to(tip->cairo, tip->x, tip->first);
    else
        cairo_move_to(tip->cairo, tip->x, tip->first);
    if (tip->count > 1) {
        cairo_line_to(tip->cairo, tip->x, tip->least);
        cairo_line_to(tip->cairo, tip->x, tip->most);
        cairo_line_to(tip->cairo, tip->x, tip->last);
    }
    tip->down = true;
    tip->count = 0;
}

static void penLift(Pen *tip)
{
    penFlush(tip);
    tip->down = false;
}

static void penPoint(Pen *tip, double x, double y)
{
    const PlotArea *area = tip->area;
    if (!isfinite(y)) {
        penLift(tip);
        return;
    }
    /* Cairo's coordinates end at 2^23, and a place far outside the panel is as good as any other there. */
    const double right = area->x + area->width * fmin(fmax(axisPlace(&area->across, x), -2), 3);
    const double down = area->y - area->height * fmin(fmax(axisPlace(&area->up, y), -2), 3);
    if (tip->count > 0 && floor(right) != tip->column)
        penFlush(tip);
    if (tip->count == 0) {
        tip->column = floor(right);
        tip->x = right;
        tip->first = tip->least = tip->most = down;
    }
    tip->least = fmin(tip->least, down);
    tip->most = fmax(tip->most, down);
    tip->last = down;
    ++tip->count;
}

/* Takes the next colour of a panel, and keeps to its inside until cairo_restore(). */
static PlotArea *beginCurve(Plot *picture, int panel, const char *name)
{
    PlotArea *area = &picture->areas[panel];
    area->names[area->curves % mostCurves] = name;
    cairo_save(picture->cairo);
    cairo_rectangle(picture->cairo, area->x, area->y - area->height, area->width, area->height);
    cairo_clip(picture->cairo);
    useColor(picture->cairo, area->curves);
    ++area->curves;
    return area;
}

static Pen penBegin(Plot *picture, int panel, const char *name)
{
    const PlotArea *area = beginCurve(picture, panel, name);
    cairo_set_line_width(picture->cairo, 1.6);
    cairo_set_line_join(picture->cairo, CAIRO_LINE_JOIN_ROUND);
    return (Pen){.cairo = picture->cairo, .area = area};
}

static void penEnd(Pen *tip)
{
    penFlush(tip);
    cairo_stroke(tip->cairo);
    cairo_restore(tip->cairo);
}

void plotCurve(Plot *picture, int panel, const double *x, const double *y, int64_t count, const char *name)
{
    Pen tip = penBegin(picture, panel, name);
    for (int64_t i = 0; i < count; ++i)
        penPoint(&tip, x[i], y[i]);
    penEnd(&tip);
}

void plotSamples(Plot *picture, int panel, double first, double step, const float *samples, int64_t count,
                 const char *name)
{
    Pen tip = penBegin(picture, panel, name);
    for (int64_t i = 0; i < count; ++i)
        penPoint(&tip, first + (double) i * step, samples[i]);
    penEnd(&tip);
}

void plotPoints(Plot *picture, int panel, const double *x, const double *y, int64_t count, const char *name)
{
    const PlotArea *area = beginCurve(picture, panel, name);
    const double radius = 4;
    for (int64_t i = 0; i < count; ++i) {
        const double right = area->x + area->width * axisPlace(&area->across, x[i]);
        const double up = area->y - area->height * axisPlace(&area->up, y[i]);
        if (fabs(right) < 1e6 && fabs(up) < 1e6) { /* Cairo's coordinates end at 2^23 */
            cairo_new_sub_path(picture->cairo);
            cairo_arc(picture->cairo, right, up, radius, 0, 2 * acos(-1));
        }
    }
    cairo_fill(picture->cairo);
    cairo_restore(picture->cairo);
}

void plotCursor(Plot *picture, int panel, double x, const char *name)
{
    const PlotArea *area = &picture->areas[panel];
    cairo_t *cairo = picture->cairo;
    const double dashes[] = {6, 4};
    const double place = axisPlace(&area->across, x);
    const double at = area->x + area->width * place;
    cairo_save(cairo);
    cairo_set_source_rgb(cairo, plotInk, plotInk, plotInk);
    cairo_set_line_width(cairo, 1.6);
    cairo_set_dash(cairo, dashes, 2, 0);
    cairo_move_to(cairo, at, area->y);
    cairo_line_to(cairo, at, area->y - area->height);
    cairo_stroke(cairo);
    const Lettering letters = {.size = 14};
    const double room = textWidth(cairo, letters, name) + 8;
    const double left = place < 0.5 ? at + 4 : at - 4 - room; /* on the side that has more room */
    cairo_set_source_rgba(cairo, 1, 1, 1, 0.85);
    cairo_rectangle(cairo, left, area->y - area->height + 4, room, 20);
    cairo_fill(cairo);
    cairo_set_source_rgb(cairo, plotInk, plotInk, plotInk);
    textDraw(cairo, letters, left + 4, area->y - area->height + 19, name);
    cairo_restore(cairo);
}

void plotLegend(cairo_t *cairo, const PlotArea *area)
{
    const Lettering letters = {.size = 15};
    const double sample = 26, gap = 8;
    const double y = area->y - area->height - 10;
    double x = area->x + area->width;
    for (int i = mostCurves - 1; i >= 0; --i) {
        if (area->names[i] == NULL)
            continue;
        x -= textWidth(cairo, letters, area->names[i]);
        cairo_set_source_rgb(cairo, plotInk, plotInk, plotInk);
        textDraw(cairo, letters, x, y, area->names[i]);
        x -= gap + sample;
        useColor(cairo, i);
        cairo_set_line_width(cairo, 3);
        cairo_move_to(cairo, x, y - 5);
        cairo_line_to(cairo, x + sample, y - 5);
        cairo_stroke(cairo);
        x -= 2 * gap;
    }
}
