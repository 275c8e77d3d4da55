// Fuzz target: any text as wisdom store. What the grammar lets through never aborts FFTW; what it stops leaves the wisdom as
// it is; a transform after it is right.
#include "fft/ORVAfft_wisdom_grammar.h"
#include "support/fuzz.h"

#include <orva/ORVAfft.h>

#include <fftw3.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    if (!orva::fitsWisdomGrammar({text.data(), text.size()}))
        return 0;
    fftwf_import_wisdom_from_string(text.c_str());
    ORVA_FFT *const fft = ORVA_FFTProcCreate(16);
    alignas(16) float input[16] = {1.0f};
    alignas(16) ORVA_COMPLEX output[9];
    support::require(ORVA_FFTProcExecute(fft, input, output) == 9, "a transform after it");
    for (const ORVA_COMPLEX bin : output)
        support::require(bin.re == 1.0f && bin.im == 0.0f, "a transform after it is right");
    ORVA_FFTProcDestroy(fft);
    fftwf_forget_wisdom();
    return 0;
}
