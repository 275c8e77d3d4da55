#include "axis.h"

#include <orva/ORVAutil.h>

#include <math.h>
#include <stdio.h>

Axis axisLinear(double first, double last, const char *label)
{
    return (Axis){linearAxis, first, last, 1.0, label};
}

Axis axisFrequency(double first, double last, bool logarithmic)
{
    if (logarithmic)
        return (Axis){logarithmicAxis, first, last, 1.0, "Frequency (Hz)"};
    if (last < 2000.0)
        return (Axis){linearAxis, first, last, 1.0, "Frequency (Hz)"};
    return (Axis){linearAxis, first, last, 1000.0, "Frequency (kHz)"};
}

Axis axisMel(double last)
{
    if (last < 2000.0)
        return (Axis){melAxis, 0.0, last, 1.0, "Frequency (Hz, mel)"};
    return (Axis){melAxis, 0.0, last, 1000.0, "Frequency (kHz, mel)"};
}

Axis axisTime(double seconds)
{
    if (seconds >= 3600.0)
        return (Axis){clockAxis, 0.0, seconds, 1.0, "Time (h:min:s)"};
    if (seconds >= 120.0)
        return (Axis){clockAxis, 0.0, seconds, 1.0, "Time (min:s)"};
    if (seconds >= 0.5)
        return (Axis){linearAxis, 0.0, seconds, 1.0, "Time (s)"};
    if (seconds >= 0.5e-3)
        return (Axis){linearAxis, 0.0, seconds, 1e-3, "Time (ms)"};
    return (Axis){linearAxis, 0.0, seconds, 1e-6, "Time (\u00b5s)"};
}

Axis axisPhase(void)
{
    return (Axis){angleAxis, -180.0, 180.0, 1.0, "Phase (\u00b0)"};
}

double axisPlace(const Axis *scale, double value)
{
    if (scale->kind == logarithmicAxis)
        return log(value / scale->first) / log(scale->last / scale->first);
    if (scale->kind == melAxis)
        return ORVAUTIL_Freq2Mels(value) / ORVAUTIL_Freq2Mels(scale->last);
    return (value - scale->first) / (scale->last - scale->first);
}

/* The least of 1, 2 and 5 times a power of ten that is not below a width. */
static double roundStep(double width)
{
    const double decade = pow(10.0, floor(log10(width)));
    const double digit = width / decade;
    const double more = 1.0 + 1e-9; /* what only the division made larger */
    return decade * (digit <= more ? 1.0 : digit <= 2.0 * more ? 2.0 : digit <= 5.0 * more ? 5.0 : 10.0);
}

/* The same in seconds, minutes and hours. */
static double clockStep(double width)
{
    static const double steps[] = {1,   2,   5,    10,   15,   30,    60,    120,   300,
                                   600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400};
    for (size_t i = 0; i < sizeof steps / sizeof *steps; ++i)
        if (steps[i] >= width)
            return steps[i];
    return 86400.0 * roundStep(width / 86400.0);
}

static double angleStep(double width)
{
    return width <= 15.0 ? 15.0 : width <= 30.0 ? 30.0 : width <= 45.0 ? 45.0 : width <= 90.0 ? 90.0 : 180.0;
}

static double evenStep(const Axis *scale, double width)
{
    if (scale->kind == clockAxis)
        return clockStep(width);
    if (scale->kind == angleAxis)
        return angleStep(width);
    return scale->unit * roundStep(width / scale->unit);
}

static int evenTicks(const Axis *scale, int most, double ticks[mostTicks])
{
    const double step = evenStep(scale, (scale->last - scale->first) / most);
    const double start = ceil(scale->first / step - 1e-6); /* an end that is a round value has its tick */
    const double end = floor(scale->last / step + 1e-6);
    int count = 0;
    while (start + count <= end && count < mostTicks) {
        ticks[count] = (start + count) * step;
        ++count;
    }
    return count;
}

/* digits (1; or 1, 2 and 5) times every stride-th power of ten. */
static int decadeTicks(const Axis *scale, int digits, int stride, double ticks[mostTicks])
{
    static const double factors[] = {1.0, 2.0, 5.0};
    const int last = (int) ceil(log10(scale->last));
    int count = 0;
    for (int decade = (int) floor(log10(scale->first)); decade <= last; decade += stride) {
        for (int i = 0; i < digits; ++i) {
            const double value = factors[i] * pow(10.0, decade);
            const double place = axisPlace(scale, value);
            if (place > -1e-6 && place < 1.0 + 1e-6 && count < mostTicks)
                ticks[count++] = value;
        }
    }
    return count;
}

static int logarithmicTicks(const Axis *scale, int most, double ticks[mostTicks])
{
    int count = decadeTicks(scale, 3, 1, ticks);
    if (count < 3) /* a part of a decade */
        return evenTicks(scale, most, ticks);
    for (int stride = 1; count > most + 1; ++stride)
        count = decadeTicks(scale, 1, stride, ticks);
    return count;
}

/* 0, and 1, 2 and 5 times each power of ten, where there is room above the one before. As they are not even,
   some may stand closer than an even share of the room. */
static int melTicks(const Axis *scale, int most, double ticks[mostTicks])
{
    double values[mostTicks];
    const Axis decades = {logarithmicAxis, 1.0, scale->last, 1.0, NULL};
    const int all = scale->last > 1.0 ? decadeTicks(&decades, 3, 1, values) : 0;
    int count = 0;
    ticks[count++] = 0.0;
    for (int i = 0; i < all && count <= most; ++i)
        if ((axisPlace(scale, values[i]) - axisPlace(scale, ticks[count - 1])) * most > 0.55)
            ticks[count++] = values[i];
    return count;
}

int axisTicks(const Axis *scale, int most, double ticks[mostTicks])
{
    most = most < 1 ? 1 : most > mostTicks - 2 ? mostTicks - 2 : most;
    if (scale->kind == melAxis)
        return melTicks(scale, most, ticks);
    return scale->kind == logarithmicAxis ? logarithmicTicks(scale, most, ticks)
                                          : evenTicks(scale, most, ticks);
}

static void clockText(double value, bool hours, char *text, size_t size)
{
    const long long seconds = llround(value);
    if (hours) {
        snprintf(text, size, "%lld:%02d:%02d", seconds / 3600, (int) (seconds / 60 % 60),
                 (int) (seconds % 60));
    } else {
        snprintf(text, size, "%lld:%02d", seconds / 60, (int) (seconds % 60));
    }
}

void axisText(const Axis *scale, const double *ticks, int count, int tick, char *text, size_t size)
{
    if (scale->kind == clockAxis) {
        clockText(ticks[tick], scale->last >= 3600.0, text, size);
        return;
    }
    const char *sign = ticks[tick] < 0.0 ? "\u2212" : "";
    const double value = fabs(ticks[tick]) / scale->unit;
    const double step = count > 1 ? (ticks[1] - ticks[0]) / scale->unit : 0.0;
    /* As many decimals as the step needs, the same on every tick. */
    const int decimals = step > 0.0 ? -(int) floor(log10(step) + 1e-9) : 0;
    if (scale->kind == logarithmicAxis || scale->kind == melAxis || count < 2 || decimals > 6 || value >= 1e6)
        snprintf(text, size, "%s%.6g", sign, value);
    else
        snprintf(text, size, "%s%.*f", sign, decimals > 0 ? decimals : 0, value);
}
