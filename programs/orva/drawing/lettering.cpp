#include "lettering.h"

#include <cmath>
#include <numbers>

namespace orva
{
namespace
{

std::string clean(const std::string &text)
{
    std::string copy;
    for (size_t i = 0; i < text.size();) {
        const size_t length = utf8Sequence(text.c_str() + i);
        copy += length > 0 ? text.substr(i, length) : "\uFFFD";
        i += length > 0 ? length : 1;
    }
    return copy;
}

double advance(cairo_t *cairo, const std::string &text)
{
    cairo_text_extents_t extents;
    cairo_text_extents(cairo, text.c_str(), &extents);
    return extents.x_advance;
}

std::string cut(cairo_t *cairo, std::string text, double room)
{
    if (advance(cairo, text) <= room)
        return text;
    do {
        while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xc0U) == 0x80)
            text.pop_back();
        if (!text.empty())
            text.pop_back();
    } while (!text.empty() && advance(cairo, text + "\u2026") > room);
    return text + "\u2026";
}

void chooseFont(cairo_t *cairo, const Lettering &how)
{
    cairo_select_font_face(cairo, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                           how.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, how.size);
}

} // namespace

// RFC 3629: no overlong forms, no surrogates.
size_t utf8Sequence(const char *bytes)
{
    const auto *text = reinterpret_cast<const unsigned char *>(bytes);
    const unsigned lead = text[0];
    if (lead < 0x80)
        return lead >= 0x20 && lead != 0x7f ? 1 : 0;
    const size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4)
        return 0;
    for (size_t i = 1; i < length; ++i)
        if ((text[i] & 0xc0U) != 0x80)
            return 0;
    const bool bad = (lead == 0xe0 && text[1] < 0xa0) || (lead == 0xed && text[1] > 0x9f) ||
                     (lead == 0xf0 && text[1] < 0x90) || (lead == 0xf4 && text[1] > 0x8f);
    return bad ? 0 : length;
}

void letter(cairo_t *cairo, const Lettering &how, double x, double y, const std::string &text)
{
    chooseFont(cairo, how);
    std::string line = clean(text);
    if (how.room > 0)
        line = cut(cairo, line, how.room);
    cairo_save(cairo);
    cairo_translate(cairo, x, y);
    if (how.upright)
        cairo_rotate(cairo, -std::numbers::pi / 2);
    cairo_move_to(cairo, -how.anchor * advance(cairo, line), 0);
    cairo_show_text(cairo, line.c_str());
    cairo_restore(cairo);
    cairo_new_path(cairo);
}

double letteredWidth(cairo_t *cairo, const Lettering &how, const std::string &text)
{
    chooseFont(cairo, how);
    return advance(cairo, clean(text));
}

} // namespace orva
