#include "plot_internal.h"

#include "text.h"

static const double tickLength = 6;
static const double acrossPerTick = 88, upPerTick = 30; /* room that a tick and its text take */
static const double gridGrey = 0.88;

static void line(cairo_t *cairo, double x0, double y0, double x1, double y1, double grey)
{
    cairo_set_source_rgb(cairo, grey, grey, grey);
    cairo_set_line_width(cairo, 1);
    cairo_move_to(cairo, x0, y0);
    cairo_line_to(cairo, x1, y1);
    cairo_stroke(cairo);
}

/* The middle of the point on which place falls, 0 and 1 being the ends: a line through it is one point wide
 * and sharp. */
static double middle(double length, double place)
{
    const int point = (int) (place * length);
    return (point < (int) length ? point : (int) length - 1) + 0.5;
}

void plotAxisAcross(cairo_t *cairo, const PlotArea *area)
{
    double ticks[mostTicks];
    const int count = axisTicks(&area->across, (int) (area->width / acrossPerTick), ticks);
    Lettering letters = {.size = 15, .anchor = 0.5};
    for (int i = 0; i < count; ++i) {
        char text[32];
        const double x = area->x + middle(area->width, axisPlace(&area->across, ticks[i]));
        line(cairo, x, area->y, x, area->y - area->height, gridGrey);
        line(cairo, x, area->y, x, area->y + tickLength, plotInk);
        axisText(&area->across, ticks, count, i, text, sizeof text);
        textDraw(cairo, letters, x, area->y + tickLength + 17, text);
    }
    letters.size = 16;
    textDraw(cairo, letters, area->x + area->width / 2, area->y + 48, area->across.label);
}

void plotAxisUp(cairo_t *cairo, const PlotArea *area, bool right)
{
    const double edge = right ? area->x + area->width : area->x;
    const double outward = right ? 1 : -1;
    double ticks[mostTicks];
    const int count = axisTicks(&area->up, (int) (area->height / upPerTick), ticks);
    Lettering letters = {.size = 15, .anchor = right ? 0 : 1};
    for (int i = 0; i < count; ++i) {
        char text[32];
        const double y = area->y - middle(area->height, axisPlace(&area->up, ticks[i]));
        if (!right)
            line(cairo, area->x, y, area->x + area->width, y, gridGrey);
        line(cairo, edge, y, edge + outward * tickLength, y, plotInk);
        axisText(&area->up, ticks, count, i, text, sizeof text);
        textDraw(cairo, letters, edge + outward * (tickLength + 4), y + 5, text);
    }
    letters = (Lettering){.size = 16, .anchor = 0.5};
    textDrawUpright(cairo, letters, edge + (right ? 68 : -60), area->y - area->height / 2, area->up.label);
}

void plotFrame(cairo_t *cairo, const PlotArea *area)
{
    cairo_set_source_rgb(cairo, plotInk, plotInk, plotInk);
    cairo_set_line_width(cairo, 1);
    cairo_rectangle(cairo, area->x - 0.5, area->y - area->height - 0.5, area->width + 1, area->height + 1);
    cairo_stroke(cairo);
}
