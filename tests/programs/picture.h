// A PNG file, decoded.
#pragma once

#include <cairo.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

struct Picture {
    int width = 0, height = 0;
    std::vector<uint32_t> points; // 0x00RRGGBB, from the top, row by row

    uint32_t at(int x, int y) const
    {
        return points.at(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
    }
};

inline Picture readPicture(const std::string &path)
{
    cairo_surface_t *surface = cairo_image_surface_create_from_png(path.c_str());
    const cairo_status_t status = cairo_surface_status(surface);
    Picture picture{cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface), {}};
    for (int y = 0; y < picture.height; ++y) {
        const unsigned char *row =
            cairo_image_surface_get_data(surface) + ptrdiff_t{y} * cairo_image_surface_get_stride(surface);
        for (int x = 0; x < picture.width; ++x)
            picture.points.push_back(reinterpret_cast<const uint32_t *>(row)[x] & 0xffffffU);
    }
    cairo_surface_destroy(surface);
    if (status != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(path + ": " + cairo_status_to_string(status));
    return picture;
}

// The greatest difference of the three parts of two colours.
inline int distance(uint32_t a, uint32_t b)
{
    int most = 0;
    for (int shift = 0; shift < 24; shift += 8)
        most = std::max(most,
                        std::abs(static_cast<int>(a >> shift & 255U) - static_cast<int>(b >> shift & 255U)));
    return most;
}

// How many different colours a part of a picture has.
inline size_t colorsIn(const Picture &picture, int left, int top, int width, int height)
{
    std::vector<uint32_t> colors;
    for (int y = top; y < top + height; ++y)
        for (int x = left; x < left + width; ++x)
            colors.push_back(picture.at(x, y));
    std::sort(colors.begin(), colors.end());
    return static_cast<size_t>(std::unique(colors.begin(), colors.end()) - colors.begin());
}

// The middle of what has a colour in a column of a panel, from 0 (below) to 1; not a number where nothing has.
inline double heightOf(const Picture &picture, uint32_t color, int x, int top, int height)
{
    double sum = 0, count = 0;
    for (int y = top; y < top + height; ++y) {
        if (distance(picture.at(x, y), color) < 60) {
            sum += y + 0.5;
            ++count;
        }
    }
    return 1 - (sum / count - top) / height;
}
