/* Where a fragment of a document stands: with the recorded voice at hand, and room for as many samples again. */
#include <kett/kett.h>
#include <orva/orva.h>

#include <sndfile.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(void)
{
    SF_INFO info;
    memset(&info, 0, sizeof info);
    SNDFILE *file = sf_open("voice.wav", SFM_READ, &info);
    KT_MEM *memory = KTMEM_CreateMemDescrEx("fragment", 0, 0);
    int32_t length = (int32_t) info.frames, rate = info.samplerate;
    float *voice = KTMEM_NewFloatVector(memory, length), *out = KTMEM_NewFloatVector(memory, length);
    if (sf_read_float(file, voice, length) != length)
        return 1;
    sf_close(file);
    (void) rate, (void) voice, (void) out;
    {
        /* the fragment */
    }
    KTMEM_DisposeMemDescr(memory);
    return 0;
}
