#include "response.h"

#include "messages.h"

#include <orva/ORVAcomplex.h>
#include <orva/ORVAfft.h>

#include <math.h>
#include <stddef.h>

static const double degrees = 57.295779513082321; /* in a radian */
static const float lost = 110; /* dB below the greatest gain: the phase is rounding there */

static bool take(const ORVA_COMPLEX *spectrum, Response *measured)
{
    double last = 0;
    measured->greatest = 0;
    for (int k = 0; k < responseBins; ++k) {
        const double re = (double) spectrum[k].re, im = (double) spectrum[k].im,
                     phase = degrees * atan2(im, re);
        if (!isfinite(re) || !isfinite(im))
            return refuse("configuration: this filter is not stable");
        measured->gain[k] = (float) (20 * log10(hypot(re, im)));
        measured->phase[k] = fabs(phase - last) > 180 ? NAN : (float) phase;
        last = phase;
        if (measured->gain[k] > measured->gain[measured->greatest])
            measured->greatest = k;
    }
    for (int k = 0; k < responseBins; ++k)
        if (measured->gain[k] < measured->gain[measured->greatest] - lost)
            measured->phase[k] = NAN;
    return true;
}

bool responseMeasure(const float *answer, Response *measured)
{
    ORVA_FFT *fft = ORVA_FFTProcCreate(responseSamples);
    ORVA_COMPLEX *spectrum = ORVA_CreateComplexVector(fft);
    bool done = spectrum != NULL || refuse("out of memory");
    if (done) {
        ORVA_FFTProcExecute(fft, answer, spectrum);
        done = take(spectrum, measured);
    }
    ORVA_DestroyComplexVector(spectrum);
    ORVA_FFTProcDestroy(fft);
    return done;
}
