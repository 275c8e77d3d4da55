#include "comparison.h"

Comparison comparisonBegin(const char *title, const char *subtitle, double seconds, double top)
{
    Comparison both = {.picture = plotCreate(title, subtitle, 2, 230, true)};
    for (int panel = 0; panel < 2; ++panel)
        plotPanel(both.picture, panel, axisTime(seconds), axisFrequency(0, top, false));
    both.before = plotRaster(both.picture, 0);
    both.after = plotRaster(both.picture, 1);
    return both;
}

bool comparisonSave(Comparison *both, double range, const char *before, const char *after, const char *path)
{
    plotImage(both->picture, 0, both->before, -range, 0, before);
    plotImage(both->picture, 1, both->after, -range, 0, after);
    return plotSave(both->picture, path);
}

void comparisonDestroy(Comparison *both)
{
    rasterDestroy(both->before);
    rasterDestroy(both->after);
    plotDestroy(both->picture);
}
