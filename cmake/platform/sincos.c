/* What the linker (--wrap) takes for sincos(). Compiled with -fno-builtin, or the two calls would become one of this very
 * function. */
#include <math.h>

void __wrap_sincos(double x, double *sine, double *cosine);

void __wrap_sincos(double x, double *sine, double *cosine)
{
    *sine = sin(x);
    *cosine = cos(x);
}
