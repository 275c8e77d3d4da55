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

void plot_axis_across(cairo_t *cairo, const plot_area *area)
{
    double ticks[AXIS_TICKS];
    const int count = axis_ticks(&area->across, (int) (area->width / acrossPerTick), ticks);
    lettering letters = {.size = 15, .anchor = 0.5};
    for (int i = 0; i < count; ++i) {
        char text[32];
        const double x = area->x + middle(area->width, axis_place(&area->across, ticks[i]));
        line(cairo, x, area->y, x, area->y - area->height, gridGrey);
        line(cairo, x, area->y, x, area->y + tickLength, plotInk);
        axis_text(&area->across, ticks, count, i, text, sizeof text);
        text_draw(cairo, letters, x, area->y + tickLength + 17, text);
    }
    letters.size = 16;
    text_draw(cairo, letters, area->x + area->width / 2, area->y + 48, area->across.label);
}

void plot_axis_up(cairo_t *cairo, const plot_area *area, bool right)
{
    const double edge = right ? area->x + area->width : area->x;
    const double outward = right ? 1 : -1;
    double ticks[AXIS_TICKS];
    const int count = axis_ticks(&area->up, (int) (area->height / upPerTick), ticks);
    lettering letters = {.size = 15, .anchor = right ? 0 : 1};
    for (int i = 0; i < count; ++i) {
        char text[32];
        const double y = area->y - middle(area->height, axis_place(&area->up, ticks[i]));
        if (!right)
            line(cairo, area->x, y, area->x + area->width, y, gridGrey);
        line(cairo, edge, y, edge + outward * tickLength, y, plotInk);
        axis_text(&area->up, ticks, count, i, text, sizeof text);
        text_draw(cairo, letters, edge + outward * (tickLength + 4), y + 5, text);
    }
    letters = (lettering){.size = 16, .anchor = 0.5};
    text_draw_upright(cairo, letters, edge + (right ? 68 : -60), area->y - area->height / 2, area->up.label);
}

void plot_frame(cairo_t *cairo, const plot_area *area)
{
    cairo_set_source_rgb(cairo, plotInk, plotInk, plotInk);
    cairo_set_line_width(cairo, 1);
    cairo_rectangle(cairo, area->x - 0.5, area->y - area->height - 0.5, area->width + 1, area->height + 1);
    cairo_stroke(cairo);
}
