#include "comparison.h"

comparison comparison_begin(const char *title, const char *subtitle, double seconds, double top)
{
    comparison both = {.picture = plot_create(title, subtitle, 2, 230, true)};
    for (int panel = 0; panel < 2; ++panel)
        plot_panel(both.picture, panel, axis_time(seconds), axis_frequency(0, top, false));
    both.before = plot_raster(both.picture, 0);
    both.after = plot_raster(both.picture, 1);
    return both;
}

bool comparison_save(comparison *both, double range, const char *before, const char *after, const char *path)
{
    plot_image(both->picture, 0, both->before, -range, 0, before);
    plot_image(both->picture, 1, both->after, -range, 0, after);
    return plot_save(both->picture, path);
}

void comparison_destroy(comparison *both)
{
    raster_destroy(both->before);
    raster_destroy(both->after);
    plot_destroy(both->picture);
}
