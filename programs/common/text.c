#include "text.h"

#include "memory.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

static const char replacement[] = "\uFFFD";
static const char ellipsis[] = "\u2026";

/* RFC 3629: no overlong forms, no surrogates. */
size_t textSequence(const char *bytes)
{
    const unsigned char *text = (const unsigned char *) bytes;
    const unsigned char lead = text[0];
    if (lead < 0x80)
        return lead >= 0x20 && lead != 0x7f ? 1 : 0;
    const size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4)
        return 0;
    for (size_t i = 1; i < length; ++i)
        if ((text[i] & 0xc0) != 0x80)
            return 0;
    const bool bad = (lead == 0xe0 && text[1] < 0xa0) || (lead == 0xed && text[1] > 0x9f) ||
                     (lead == 0xf0 && text[1] < 0x90) || (lead == 0xf4 && text[1] > 0x8f);
    return bad ? 0 : length;
}

/* A copy that Cairo accepts, with room after it for an ellipsis. */
static char *clean(const char *text)
{
    char *copy = allocate(strlen(text) * strlen(replacement) + sizeof ellipsis, 1);
    char *end = copy;
    while (*text != '\0') {
        const size_t length = textSequence(text);
        const char *source = length > 0 ? text : replacement;
        const size_t taken = length > 0 ? length : strlen(replacement);
        memcpy(end, source, taken);
        end += taken;
        text += length > 0 ? length : 1;
    }
    *end = '\0';
    return copy;
}

static double advance(cairo_t *cairo, const char *text)
{
    cairo_text_extents_t extents;
    cairo_text_extents(cairo, text, &extents);
    return extents.x_advance;
}

static void cut(cairo_t *cairo, char *text, double room)
{
    size_t length = strlen(text);
    while (length > 0 && advance(cairo, text) > room) {
        do {
            --length;
        } while (length > 0 && ((unsigned char) text[length] & 0xc0) == 0x80);
        memcpy(text + length, ellipsis, sizeof ellipsis);
    }
}

static void chooseFont(cairo_t *cairo, Lettering how)
{
    cairo_select_font_face(cairo, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                           how.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, how.size);
}

static void draw(cairo_t *cairo, Lettering how, double x, double y, double angle, const char *text)
{
    char *line = clean(text);
    chooseFont(cairo, how);
    if (how.room > 0.0)
        cut(cairo, line, how.room);
    cairo_save(cairo);
    cairo_translate(cairo, x, y);
    cairo_rotate(cairo, angle);
    cairo_move_to(cairo, -how.anchor * advance(cairo, line), 0.0);
    cairo_show_text(cairo, line);
    cairo_restore(cairo);
    cairo_new_path(cairo);
    free(line);
}

void textDraw(cairo_t *cairo, Lettering how, double x, double y, const char *text)
{
    draw(cairo, how, x, y, 0.0, text);
}

void textDrawUpright(cairo_t *cairo, Lettering how, double x, double y, const char *text)
{
    draw(cairo, how, x, y, -acos(-1.0) / 2.0, text);
}

double textWidth(cairo_t *cairo, Lettering how, const char *text)
{
    char *line = clean(text);
    chooseFont(cairo, how);
    const double width = advance(cairo, line);
    free(line);
    return width;
}
