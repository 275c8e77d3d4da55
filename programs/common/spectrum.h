/* The spectrum of one frame after the other, seen through a window. Levels are in dB, 0 being a sine of full
   scale. */
#ifndef PROGRAMS_SPECTRUM_H
#define PROGRAMS_SPECTRUM_H

#include <kett/KTmem.h>
#include <orva/ORVAfft.h>

typedef struct {
    int32_t size, bins; /* samples of a frame, and size / 2 + 1 */
    float *frame;       /* to be filled before each transform */
    float *power;       /* of each bin, without scaling */
    float *levels;      /* of each bin, dB */
    float *window;
    double norm;
    ORVA_COMPLEX *work;
    ORVA_FFT *fft;
    KT_MEM *memory;
} Spectrum;

/* Makes ready for frames of size samples under a window, given by its code. Refuses a window without gain at
   this size. */
bool spectrumBegin(Spectrum *s, int32_t window, int32_t size);

/* Puts the power of the frame into power. The frame is windowed in place. */
void spectrumTransform(Spectrum *s);

/* The same for a stream: moves past, the last size samples of it and zeros at its start, on by count newer
   ones, and takes it as the frame. */
void spectrumFollow(Spectrum *s, float *past, const float *newer, int32_t count);

/* Puts the level of power into levels, no lower than -range. The gain of each bin multiplies its magnitude;
   room and alignment as power; null is 1 everywhere. */
void spectrumMeasure(Spectrum *s, const float *gain, double range);

void spectrumEnd(Spectrum *s);

#endif
