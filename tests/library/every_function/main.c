#include "host.h"

#include <math.h>
#include <stdio.h>

static int checks, failures;

void check(bool holds, const char *what)
{
    ++checks;
    if (holds)
        return;
    ++failures;
    printf("does not hold: %s\n", what);
}

bool near(double value, double expected, double tolerance)
{
    return fabs(value - expected) <= tolerance;
}

int main(void)
{
    use_life_cycle();
    use_windows();
    use_engine();
    use_processors();
    use_spectra();
    use_correlation();
    use_filters();
    use_resampling();
    use_interpolation();
    use_lapped_transform();
    use_time_scaling();
    use_noise_suppression();
    use_measures();
    printf("%d checks, %d do not hold\n", checks, failures);
    return failures == 0 ? 0 : 1;
}
