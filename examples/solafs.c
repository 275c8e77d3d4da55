/* Plays speech slower at the same pitch, at 0.7 of its speed, to write down what is said.
 *
 *     cc solafs.c $(pkg-config --cflags --libs orva sndfile) -o solafs
 */
#include <orva/orva.h>

#include <sndfile.h>

#include <stdio.h>

enum { rate = 48000, frameMs = 20, frame = frameMs * rate / 1000 };
enum { blockFrames = 4800, room = 10 * blockFrames };
enum { fullScale = 32768 }; /* the search works best on samples of this scale, and nothing is rounded */

int main(int count, char **arguments)
{
    SF_INFO info = {0};
    SNDFILE *sound = count == 3 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    const bool taken = sound != NULL && info.samplerate == rate && info.channels == 1;
    const sf_count_t length = info.frames, all = length + 7 * frame / 2; /* 3.5 frames bring out the tail */
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE *output = taken ? sf_open(arguments[2], SFM_WRITE, &info) : NULL;
    ORVA_SOLAFS *voice = ORVA_SolafsCreate(frameMs, rate, 1);
    if (output == NULL || voice == NULL) {
        fprintf(stderr, "usage: solafs SOUND.wav OUTPUT.wav, of one channel at %d Hz\n", rate);
        return 1;
    }

    static float in[blockFrames], out[room];
    sf_count_t pushed = 0, pulled = 0, written = 0;
    while (pushed < all) {
        const sf_count_t offered = all - pushed < blockFrames ? all - pushed : blockFrames;
        const sf_count_t got = sf_read_float(sound, in, offered);
        for (sf_count_t n = 0; n < offered; ++n)
            in[n] = n < got ? in[n] * fullScale : 0; /* silence after the end */
        pushed += ORVA_SolafsInputData(voice, 0, in, (int32_t) offered, 0.7f);
        const int32_t given = ORVA_SolafsOutputData(voice, 0, out, room);
        for (int32_t n = 0; n < given; ++n)
            out[n] /= fullScale;
        pulled += given;
        written += sf_write_float(output, out, given);
    }
    const int64_t middle = ORVA_SolafsTranslateCursorPosition(voice, pulled / 2);
    printf("%.2f s became %.2f s; its middle is what stood at %.2f s\n", (double) length / rate,
           (double) written / rate, (double) middle / rate);
    ORVA_SolafsDestroy(voice);
    sf_close(output);
    sf_close(sound);
    return written == pulled ? 0 : 1;
}

/* $ ./solafs Front_Center.wav slow.wav
 * 1.43 s became 2.05 s; its middle is what stood at 0.72 s
 */
