#include "plot_internal.h"

#include "memory.h"
#include "messages.h"
#include "output.h"
#include "text.h"

#include <stdlib.h>

static const double leftMargin = 84, rightMargin = 28, barMargin = 112, topMargin = 72, panelGap = 66;

static void draw_head(cairo_t *cairo, double width, const char *title, const char *subtitle)
{
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_paint(cairo);
    cairo_set_source_rgb(cairo, plotInk, plotInk, plotInk);
    text_draw(cairo, (lettering){.size = 20, .bold = true, .room = width}, leftMargin, 31, title);
    text_draw(cairo, (lettering){.size = 15, .room = width}, leftMargin, 56, subtitle);
}

plot *plot_create(const char *title, const char *subtitle, int panels, int panelHeight, bool colorBar)
{
    const double width = PLOT_WIDTH - leftMargin - (colorBar ? barMargin : rightMargin);
    const double height = topMargin + panels * (panelHeight + panelGap);
    plot *picture = allocate(1, sizeof *picture);
    picture->surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, PLOT_WIDTH, (int) height);
    picture->cairo = cairo_create(picture->surface);
    picture->panels = panels;
    for (int i = 0; i < panels; ++i)
        picture->areas[i] = (plot_area){.x = leftMargin,
                                        .y = topMargin + (i + 1) * panelHeight + i * panelGap,
                                        .width = width,
                                        .height = panelHeight};
    draw_head(picture->cairo, width, title, subtitle);
    return picture;
}

void plot_panel(plot *picture, int panel, axis across, axis up)
{
    plot_area *area = &picture->areas[panel];
    area->across = across;
    area->up = up;
    plot_axis_across(picture->cairo, area);
    plot_axis_up(picture->cairo, area, false);
}

bool plot_save(plot *picture, const char *path)
{
    char *part = output_begin(path, ".png");
    if (part == NULL)
        return false;
    for (int i = 0; i < picture->panels; ++i) {
        plot_frame(picture->cairo, &picture->areas[i]);
        plot_legend(picture->cairo, &picture->areas[i]);
    }
    cairo_surface_flush(picture->surface);
    cairo_status_t status = cairo_status(picture->cairo); /* holds the first failure of any drawing */
    if (status == CAIRO_STATUS_SUCCESS)
        status = cairo_surface_write_to_png(picture->surface, part);
    const bool complete =
        status == CAIRO_STATUS_SUCCESS || refuse("%s: %s", path, cairo_status_to_string(status));
    return output_end(path, part, complete);
}

void plot_destroy(plot *picture)
{
    cairo_destroy(picture->cairo);
    cairo_surface_destroy(picture->surface);
    free(picture);
}
