/* Lists the windows: the gain of each for a tone, and how much more noise gets into a bin than without it.
 *
 *     cc window.c $(pkg-config --cflags --libs orva) -o window
 */
#include <orva/orva.h>
#include <stdio.h>

enum { length = 1024 };

int main(void)
{
    float window[length];

    puts("code  name              mean    noise bandwidth");
    for (int32_t type = 0; ORVA_CreateWindow(type, window, length); ++type) { /* false: no such code */
        const double mean = ORVA_GetWindowNormFactor(window, length);
        const double square = ORVA_GetTwoWindowNormFactor(window, window, length);
        printf("%4d  %-16s  %.4f  %.3f bins\n", type, ORVA_GetWindowName(type), mean, square / (mean * mean));
    }
    return 0;
}

/* $ ./window
 * code  name              mean    noise bandwidth
 *    0  Rectangular       1.0000  1.000 bins
 *    1  Triangular        0.5000  1.335 bins
 *    2  Half-Triangular   0.5000  1.334 bins
 *    3  Hanning           0.4995  1.501 bins
 *    4  Hanning-Periodic  0.5000  1.500 bins
 *    5  Hamming           0.5396  1.364 bins
 *    6  Blackman          0.4190  1.729 bins
 *    7  Blackman-Harris   0.3584  2.006 bins
 *    8  Blackman-Nuttall  0.3554  2.023 bins
 *    9  Nuttal            0.3632  1.978 bins
 *   10  Flat-Top          0.9990  3.774 bins
 */
