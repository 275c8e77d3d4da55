/* Takes all that lies above 1 kHz out of a sound, block by block and without a seam.
 *
 *     cc fmclt.c $(pkg-config --cflags --libs orva sndfile) -o fmclt
 */
#include <orva/orva.h>

#include <sndfile.h>

#include <stdio.h>

enum { M = 512 }; /* samples, and coefficients, of a block */

int main(int count, char **arguments)
{
    SF_INFO info = {0};
    SNDFILE *sound = count == 3 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    sf_count_t length = info.frames, written = 0;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE *output = sound != NULL && info.channels == 1 ? sf_open(arguments[2], SFM_WRITE, &info) : NULL;
    ORVA_FMCLT *fmclt = ORVA_FMCLTProcCreate(M);
    if (output == NULL || fmclt == NULL) {
        fprintf(stderr, "usage: fmclt SOUND.wav OUTPUT.wav, of one channel\n");
        return 1;
    }
    float block[M], real[M], imag[M], history[M] = {0}, overlap[M] = {0}, window[2 * (M + 1)];
    ORVA_FMCLTFreqWindow(window, M);
    const int first = 1000 * 2 * M / info.samplerate;            /* the coefficient from which on all goes */
    double before = 0, after = 0;                                /* crossings of zero */
    for (sf_count_t start = 0; start < length + M; start += M) { /* zeros after the end bring it out */
        for (sf_count_t n = sf_read_float(sound, block, M); n < M; ++n)
            block[n] = 0;
        ORVA_FMCLTDirect(fmclt, real, imag, block, history, window);
        for (int k = first; k < M; ++k)
            real[k] = imag[k] = 0;
        before += ORVA_CalcZeroCrossRate(block, M);
        ORVA_FMCLTInverse(fmclt, real, imag, block, overlap, window);
        after += ORVA_CalcZeroCrossRate(block, M);
        if (start > 0) /* the first block that comes out is the silence before the sound */
            written += sf_write_float(output, block, length - written < M ? length - written : M);
    }
    printf("of the crossings of zero %.0f %% are left\n", 100 * after / before);
    ORVA_FMCLTProcDestroy(fmclt);
    sf_close(output);
    sf_close(sound);
    return written == length ? 0 : 1;
}

/* $ ./fmclt Front_Center.wav dull.wav
 * of the crossings of zero 16 % are left
 */
