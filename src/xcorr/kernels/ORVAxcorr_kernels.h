// The hot loops of the correlation: how two spectra are combined. The output may be X or Y.
#pragma once

#include "common/cpu.h"

#include <orva/ORVAtypes.h>

namespace orva
{

// Brings each product X conj(Y) to the magnitude g. The weight g / m of a bin of magnitude m is found in double; a bin of
// magnitude zero stays as it is.
void weighPlainly(ORVA_COMPLEX *products, int32_t bins, float g);

struct XcorrKernels {
    // X conj(Y) s
    void (*combinePlain)(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y, ORVA_COMPLEX *output, int32_t bins,
                         float s);

    // X conj(Y) brought to the magnitude g
    void (*combinePhat)(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y, ORVA_COMPLEX *output, int32_t bins,
                        float g);
};

template <> const XcorrKernels &kernelsAt<XcorrKernels, Level::plain>();

} // namespace orva
