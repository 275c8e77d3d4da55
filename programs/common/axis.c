#include "axis.h"

#include <math.h>
#include <orva/ORVAutil.h>
#include <stdio.h>

axis axis_linear(double first, double last, const char *label)
{
    return (axis){AXIS_LINEAR, first, last, 1.0, label};
}

axis axis_frequency(double first, double last, bool logarithmic)
{
    if (logarithmic)
        return (axis){AXIS_LOGARITHMIC, first, last, 1.0, "Frequency (Hz)"};
    if (last < 2000.0)
        return (axis){AXIS_LINEAR, first, last, 1.0, "Frequency (Hz)"};
    return (axis){AXIS_LINEAR, first, last, 1000.0, "Frequency (kHz)"};
}

axis axis_mel(double last)
{
    if (last < 2000.0)
        return (axis){AXIS_MEL, 0.0, last, 1.0, "Frequency (Hz, mel)"};
    return (axis){AXIS_MEL, 0.0, last, 1000.0, "Frequency (kHz, mel)"};
}

axis axis_time(double seconds)
{
    if (seconds >= 3600.0)
        return (axis){AXIS_CLOCK, 0.0, seconds, 1.0, "Time (h:min:s)"};
    if (seconds >= 120.0)
        return (axis){AXIS_CLOCK, 0.0, seconds, 1.0, "Time (min:s)"};
    if (seconds >= 0.5)
        return (axis){AXIS_LINEAR, 0.0, seconds, 1.0, "Time (s)"};
    if (seconds >= 0.5e-3)
        return (axis){AXIS_LINEAR, 0.0, seconds, 1e-3, "Time (ms)"};
    return (axis){AXIS_LINEAR, 0.0, seconds, 1e-6, "Time (\u00b5s)"};
}

axis axis_phase(void)
{
    return (axis){AXIS_ANGLE, -180.0, 180.0, 1.0, "Phase (\u00b0)"};
}

double axis_place(const axis *scale, double value)
{
    if (scale->kind == AXIS_LOGARITHMIC)
        return log(value / scale->first) / log(scale->last / scale->first);
    if (scale->kind == AXIS_MEL)
        return ORVAUTIL_Freq2Mels(value) / ORVAUTIL_Freq2Mels(scale->last);
    return (value - scale->first) / (scale->last - scale->first);
}

/* The least of 1, 2 and 5 times a power of ten that is not below a width. */
static double round_step(double width)
{
    const double decade = pow(10.0, floor(log10(width)));
    const double digit = width / decade;
    const double more = 1.0 + 1e-9; /* what only the division made larger */
    return decade * (digit <= more ? 1.0 : digit <= 2.0 * more ? 2.0 : digit <= 5.0 * more ? 5.0 : 10.0);
}

/* The same in seconds, minutes and hours. */
static double clock_step(double width)
{
    static const double steps[] = {1,   2,   5,    10,   15,   30,    60,    120,   300,
                                   600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400};
    for (size_t i = 0; i < sizeof steps / sizeof *steps; ++i)
        if (steps[i] >= width)
            return steps[i];
    return 86400.0 * round_step(width / 86400.0);
}

static double angle_step(double width)
{
    return width <= 15.0 ? 15.0 : width <= 30.0 ? 30.0 : width <= 45.0 ? 45.0 : width <= 90.0 ? 90.0 : 180.0;
}

static double even_step(const axis *scale, double width)
{
    if (scale->kind == AXIS_CLOCK)
        return clock_step(width);
    if (scale->kind == AXIS_ANGLE)
        return angle_step(width);
    return scale->unit * round_step(width / scale->unit);
}

static int even_ticks(const axis *scale, int most, double ticks[AXIS_TICKS])
{
    const double step = even_step(scale, (scale->last - scale->first) / most);
    const double start = ceil(scale->first / step - 1e-6); /* an end that is a round value has its tick */
    const double end = floor(scale->last / step + 1e-6);
    int count = 0;
    while (start + count <= end && count < AXIS_TICKS) {
        ticks[count] = (start + count) * step;
        ++count;
    }
    return count;
}

/* digits (1; or 1, 2 and 5) times every stride-th power of ten. */
static int decade_ticks(const axis *scale, int digits, int stride, double ticks[AXIS_TICKS])
{
    static const double factors[] = {1.0, 2.0, 5.0};
    const int last = (int) ceil(log10(scale->last));
    int count = 0;
    for (int decade = (int) floor(log10(scale->first)); decade <= last; decade += stride) {
        for (int i = 0; i < digits; ++i) {
            const double value = factors[i] * pow(10.0, decade);
            const double place = axis_place(scale, value);
            if (place > -1e-6 && place < 1.0 + 1e-6 && count < AXIS_TICKS)
                ticks[count++] = value;
        }
    }
    return count;
}

static int logarithmic_ticks(const axis *scale, int most, double ticks[AXIS_TICKS])
{
    int count = decade_ticks(scale, 3, 1, ticks);
    if (count < 3) /* a part of a decade */
        return even_ticks(scale, most, ticks);
    for (int stride = 1; count > most + 1; ++stride)
        count = decade_ticks(scale, 1, stride, ticks);
    return count;
}

/* 0, and 1, 2 and 5 times each power of ten, where there is room above the one before. As they are not even,
   some may stand closer than an even share of the room. */
static int mel_ticks(const axis *scale, int most, double ticks[AXIS_TICKS])
{
    double values[AXIS_TICKS];
    const axis decades = {AXIS_LOGARITHMIC, 1.0, scale->last, 1.0, NULL};
    const int all = scale->last > 1.0 ? decade_ticks(&decades, 3, 1, values) : 0;
    int count = 0;
    ticks[count++] = 0.0;
    for (int i = 0; i < all && count <= most; ++i)
        if ((axis_place(scale, values[i]) - axis_place(scale, ticks[count - 1])) * most > 0.55)
            ticks[count++] = values[i];
    return count;
}

int axis_ticks(const axis *scale, int most, double ticks[AXIS_TICKS])
{
    most = most < 1 ? 1 : most > AXIS_TICKS - 2 ? AXIS_TICKS - 2 : most;
    if (scale->kind == AXIS_MEL)
        return mel_ticks(scale, most, ticks);
    return scale->kind == AXIS_LOGARITHMIC ? logarithmic_ticks(scale, most, ticks)
                                           : even_ticks(scale, most, ticks);
}

static void clock_text(double value, bool hours, char *text, size_t size)
{
    const long long seconds = llround(value);
    if (hours) {
        snprintf(text, size, "%lld:%02d:%02d", seconds / 3600, (int) (seconds / 60 % 60),
                 (int) (seconds % 60));
    } else {
        snprintf(text, size, "%lld:%02d", seconds / 60, (int) (seconds % 60));
    }
}

void axis_text(const axis *scale, const double *ticks, int count, int tick, char *text, size_t size)
{
    if (scale->kind == AXIS_CLOCK) {
        clock_text(ticks[tick], scale->last >= 3600.0, text, size);
        return;
    }
    const char *sign = ticks[tick] < 0.0 ? "\u2212" : "";
    const double value = fabs(ticks[tick]) / scale->unit;
    const double step = count > 1 ? (ticks[1] - ticks[0]) / scale->unit : 0.0;
    /* As many decimals as the step needs, the same on every tick. */
    const int decimals = step > 0.0 ? -(int) floor(log10(step) + 1e-9) : 0;
    if (scale->kind == AXIS_LOGARITHMIC || scale->kind == AXIS_MEL || count < 2 || decimals > 6 ||
        value >= 1e6)
        snprintf(text, size, "%s%.6g", sign, value);
    else
        snprintf(text, size, "%s%.*f", sign, decimals > 0 ? decimals : 0, value);
}
