/* Compares four windows: the gain of each for a tone, and how much more noise gets into a bin than without it.
 *
 *     cc window.c $(pkg-config --cflags --libs orva) -o window
 */
#include <orva/orva.h>

#include <stdio.h>

enum { length = 1024, count = 4 };

int main(void)
{
    const char *const names[count] = {"Rectangular", "Hanning", "Blackman-Harris", "Flat-Top"};
    float window[length];

    puts("name             mean    noise bandwidth");
    for (int i = 0; i < count; ++i) {
        ORVA_CreateWindow(ORVA_GetWindowType(names[i]), window, length);
        const double mean = ORVA_GetWindowNormFactor(window, length);
        const double square = ORVA_GetTwoWindowNormFactor(window, window, length);
        printf("%-15s  %.4f  %.3f bins\n", names[i], mean, square / (mean * mean));
    }
    return 0;
}

/* $ ./window
 * name             mean    noise bandwidth
 * Rectangular      1.0000  1.000 bins
 * Hanning          0.4995  1.501 bins
 * Blackman-Harris  0.3584  2.006 bins
 * Flat-Top         0.9990  3.774 bins
 */
