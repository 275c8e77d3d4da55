/* Reads a calibration given at five frequencies at others: along a spline and along straight lines.
 *
 *     cc interpolate.c $(pkg-config --cflags --libs orva) -o interpolate
 */
#include <orva/orva.h>

#include <stdio.h>

enum { points = 5 };

int main(void)
{
    const float hertz[points] = {0, 1000, 2000, 4000, 8000}, decibels[points] = {0, 1, 3, -2, -6};
    float bends[points]; /* the second derivatives; they belong to these points */

    ORVASPLINE_Estimate(hertz, decibels, points, 0.0f, 1e30f, bends); /* level at first, natural at last */
    for (int at = 0; at <= 9000; at += 1500) {
        const float spline = ORVASPLINE_Interpolate(hertz, decibels, bends, points, (float) at);
        const float line = ORVAINTERPOLATE_Linear(hertz, decibels, points, (float) at);
        printf("%4d Hz: spline %5.2f dB, line %5.2f dB\n", at, spline, line);
    }
    return 0;
}

/* Beyond the last point both go on as they were in the last interval:
 *
 * $ ./interpolate
 *    0 Hz: spline  0.00 dB, line  0.00 dB
 * 1500 Hz: spline  2.19 dB, line  2.00 dB
 * 3000 Hz: spline  1.45 dB, line  0.50 dB
 * 4500 Hz: spline -3.41 dB, line -2.50 dB
 * 6000 Hz: spline -5.66 dB, line -4.00 dB
 * 7500 Hz: spline -6.04 dB, line -5.50 dB
 * 9000 Hz: spline -5.96 dB, line -7.00 dB
 */
