#include "plot_internal.h"

#include "memory.h"
#include "messages.h"
#include "output.h"
#include "text.h"

#include <stdlib.h>

static const double leftMargin = 84, rightMargin = 28, barMargin = 112, topMargin = 72, panelGap = 66;

static void drawHead(cairo_t *cairo, double width, const char *title, const char *subtitle)
{
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_paint(cairo);
    cairo_set_source_rgb(cairo, plotInk, plotInk, plotInk);
    textDraw(cairo, (Lettering){.size = 20, .bold = true, .room = width}, leftMargin, 31, title);
    textDraw(cairo, (Lettering){.size = 15, .room = width}, leftMargin, 56, subtitle);
}

Plot *plotCreate(const char *title, const char *subtitle, int panels, int panelHeight, bool colorBar)
{
    const double width = plotWidth - leftMargin - (colorBar ? barMargin : rightMargin);
    const double height = topMargin + panels * (panelHeight + panelGap);
    Plot *picture = allocate(1, sizeof *picture);
    picture->surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, plotWidth, (int) height);
    picture->cairo = cairo_create(picture->surface);
    picture->panels = panels;
    for (int i = 0; i < panels; ++i)
        picture->areas[i] = (PlotArea){.x = leftMargin,
                                       .y = topMargin + (i + 1) * panelHeight + i * panelGap,
                                       .width = width,
                                       .height = panelHeight};
    drawHead(picture->cairo, width, title, subtitle);
    return picture;
}

void plotPanel(Plot *picture, int panel, Axis across, Axis up)
{
    PlotArea *area = &picture->areas[panel];
    area->across = across;
    area->up = up;
    plotAxisAcross(picture->cairo, area);
    plotAxisUp(picture->cairo, area, false);
}

bool plotSave(Plot *picture, const char *path)
{
    char *part = outputBegin(path, ".png");
    if (part == NULL)
        return false;
    for (int i = 0; i < picture->panels; ++i) {
        plotFrame(picture->cairo, &picture->areas[i]);
        plotLegend(picture->cairo, &picture->areas[i]);
    }
    cairo_surface_flush(picture->surface);
    cairo_status_t status = cairo_status(picture->cairo); /* holds the first failure of any drawing */
    if (status == CAIRO_STATUS_SUCCESS)
        status = cairo_surface_write_to_png(picture->surface, part);
    const bool complete =
        status == CAIRO_STATUS_SUCCESS || refuse("%s: %s", path, cairo_status_to_string(status));
    return outputEnd(path, part, complete);
}

void plotDestroy(Plot *picture)
{
    cairo_destroy(picture->cairo);
    cairo_surface_destroy(picture->surface);
    free(picture);
}
