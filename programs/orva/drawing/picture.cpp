#include "picture.h"

#include "failure.h"
#include "lettering.h"
#include "picture_parts.h"
#include "png_resolution.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <cmath>
#include <new>

namespace orva
{
namespace
{

const double pointsOfUnit = 72 / 150.0;

cairo_status_t keepBytes(void *context, const unsigned char *bytes, unsigned count)
{
    try {
        static_cast<std::string *>(context)->append(reinterpret_cast<const char *>(bytes), count);
    } catch (const std::bad_alloc &) {
        return CAIRO_STATUS_NO_MEMORY;
    }
    return CAIRO_STATUS_SUCCESS;
}

cairo_surface_t *surfaceFor(PictureFormat format, const PictureGeometry &size, std::string *bytes)
{
    const double width = size.width * pointsOfUnit;
    const double height = size.height * pointsOfUnit;
    if (format == PictureFormat::svg)
        return cairo_svg_surface_create_for_stream(keepBytes, bytes, width, height);
    if (format == PictureFormat::pdf)
        return cairo_pdf_surface_create_for_stream(keepBytes, bytes, width, height);
    const double columns = std::floor(size.width * size.dots + 0.5);
    const double rows = std::floor(size.height * size.dots + 0.5);
    if (columns > 32767 || rows > 32767)
        failUse("a PNG has 32767 points a side at most; lower --dpi or --size");
    return cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(columns), static_cast<int>(rows));
}

} // namespace

Picture::Picture(PictureFile &target, const PictureLayout &layout, const std::string &title,
                 const std::string &subtitle)
    : file(target), geometry(geometryOf(target, layout))
{
    surface = surfaceFor(file.format(), geometry, &bytes);
    cairo = cairo_create(surface);
    const double scale = file.format() == PictureFormat::png ? geometry.dots : pointsOfUnit;
    cairo_scale(cairo, scale, scale);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_paint(cairo);
    cairo_set_source_rgb(cairo, pictureInk, pictureInk, pictureInk);
    const PictureArea &first = geometry.areas[0];
    letter(cairo, {.size = 20, .room = first.width, .bold = true}, first.x, 31, title);
    letter(cairo, {.size = 15, .room = first.width}, first.x, 56, subtitle);
}

Picture::~Picture()
{
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
}

void Picture::panel(size_t panel, const Axis &across, const Axis &up)
{
    PictureArea &area = geometry.areas.at(panel);
    area.across = across;
    area.up = up;
    drawAxisAcross(cairo, area);
    drawAxisUp(cairo, area, false);
}

void Picture::save()
{
    for (const PictureArea &area : geometry.areas) {
        drawFrame(cairo, area);
        drawLegend(cairo, area);
    }
    cairo_status_t status = cairo_status(cairo); // holds the first failure of any drawing
    if (status == CAIRO_STATUS_SUCCESS && file.format() == PictureFormat::png)
        status = cairo_surface_write_to_png_stream(surface, keepBytes, &bytes);
    cairo_surface_finish(surface);
    if (status == CAIRO_STATUS_SUCCESS && file.format() != PictureFormat::png)
        status = cairo_surface_status(surface);
    if (status != CAIRO_STATUS_SUCCESS)
        fail(file.options().path + ": " + cairo_status_to_string(status));
    if (file.format() == PictureFormat::png)
        tellResolution(bytes, file.options().dotsPerInch);
    file.write(bytes);
}

} // namespace orva
