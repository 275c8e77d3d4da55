#include "spectrum.h"

#include "messages.h"

#include <orva/ORVAcomplex.h>
#include <orva/ORVAwinfnc.h>

#include <math.h>
#include <string.h>

bool spectrumBegin(Spectrum *s, int32_t window, int32_t size)
{
    const int32_t bins = size / 2 + 1, room = bins + 3; /* powers and levels are computed by fours */
    KT_MEM *memory = KTMEM_CreateMemDescrEx("spectrum", 0, 0);
    *s = (Spectrum){.size = size, .bins = bins, .memory = memory};
    s->frame = KTMEM_NewFloatVector(memory, size);
    s->power = KTMEM_NewFloatVector(memory, room);
    s->levels = KTMEM_NewFloatVector(memory, room);
    s->window = KTMEM_NewFloatVector(memory, size);
    s->work = KTMEM_NewAligned(memory, 16, ((uint64_t) size + 3) * sizeof *s->work);
    s->fft = ORVA_FFTProcCreate(size);
    if (!s->frame || !s->power || !s->levels || !s->window || !s->work || !s->fft)
        return refuse("out of memory");
    ORVA_CreateWindow(window, s->window, (uint32_t) size);
    s->norm = pow(ORVA_GetWindowNormFactor(s->window, size), 4); /* enters by its square root */
    return (s->norm > 1e-24 && isfinite(s->norm)) ||
           refuse("configuration: the window has no gain at size=%d", size);
}

void spectrumTransform(Spectrum *s)
{
    ORVA_ApplyWindow(s->window, s->frame, s->size);
    ORVA_FFTProcExecutePSDEx(s->fft, s->frame, s->power, s->work);
}

void spectrumFollow(Spectrum *s, float *past, const float *newer, int32_t count)
{
    const size_t kept = (size_t) (s->size - count);
    memmove(past, past + count, kept * sizeof *past);
    memcpy(past + kept, newer, (size_t) count * sizeof *past);
    memcpy(s->frame, past, (size_t) s->size * sizeof *past);
    spectrumTransform(s);
}

void spectrumMeasure(Spectrum *s, const float *gain, double range)
{
    ORVA_PSDtoDB(s->size, s->power, s->levels, gain, s->norm, range);
}

void spectrumEnd(Spectrum *s)
{
    ORVA_FFTProcDestroy(s->fft);
    KTMEM_DisposeMemDescr(s->memory);
}
