#include "platform/wisdom_text.h"

#include <fftw3.h>

namespace orva
{

char *newWisdomText()
{
    return fftwf_export_wisdom_to_string(); // not for fftwf_free: FFTW gives this text out for plain free
}

} // namespace orva
