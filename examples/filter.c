/* Sends a sound of any rate and up to eight channels through a telephone: 300 to 3400 Hz.
 *
 *     cc filter.c $(pkg-config --cflags --libs orva kett sndfile) -o filter
 */
#include <kett/kett.h>
#include <orva/orva.h>

#include <sndfile.h>

#include <stdio.h>

enum { blockFrames = 512, mostChannels = 8 };

int main(int count, char **arguments)
{
    SF_INFO info = {0};
    SNDFILE *sound = count == 3 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    const sf_count_t length = info.frames;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    const bool taken = sound != NULL && info.channels <= mostChannels;
    SNDFILE *output = taken ? sf_open(arguments[2], SFM_WRITE, &info) : NULL;
    if (output == NULL) {
        fprintf(stderr, "usage: filter SOUND.wav OUTPUT.wav, of %d channels at most\n", mostChannels);
        return 1;
    }
    _ORVA_FILTER *telephone = ORVA_CreateFilter(
        "type=bandpass; order=4; fpass1=300; fpass2=3400; fs=%d; nc=%d", info.samplerate, info.channels);
    if (telephone == NULL)
        return 1; /* the log says why */
    float block[blockFrames * mostChannels], before = 0, after = 0;
    sf_count_t frames, written = 0;
    while ((frames = sf_readf_float(sound, block, blockFrames)) > 0) {
        const int32_t samples = (int32_t) frames * info.channels;
        const float in = FVectorAbsMax(block, samples);
        ORVA_Filter(telephone, block, block, (uint32_t) samples); /* in place; it counts floats, not frames */
        const float out = FVectorAbsMax(block, samples);
        before = in > before ? in : before;
        after = out > after ? out : after;
        written += sf_writef_float(output, block, frames);
    }
    printf("%lld frames; the loudest sample was %.2f and is %.2f\n", (long long) written, before, after);
    ORVA_DestroyFilter(telephone);
    sf_close(output);
    sf_close(sound);
    return written == length ? 0 : 1;
}

/* $ ./filter Front_Center.wav phone.wav
 * 68545 frames; the loudest sample was 0.47 and is 0.41
 */
