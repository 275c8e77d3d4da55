#include "blocks.h"

#include "memory.h"
#include "progress.h"

#include <stdlib.h>

/* Takes the channels of interleaved frames apart, has each processed, and puts them together again. */
static void runChannels(const BlockProcess *process, int channels, int64_t start, float *all, float *one,
                        float *states)
{
    for (int channel = 0; channel < channels; ++channel) {
        Block present = {channel, start, one, states + process->state * channel};
        for (int64_t i = 0; i < process->length; ++i)
            one[i] = all[i * channels + channel];
        process->run(process->context, &present);
        for (int64_t i = 0; i < process->length; ++i)
            all[i * channels + channel] = one[i];
    }
}

bool blocksRun(Sound *input, SoundOutput *output, const BlockProcess *process)
{
    const int channels = input->info.channels;
    const int64_t length = process->length;
    const int64_t delay = process->delay;
    const int64_t end = input->length + delay;
    float *all = allocate((size_t) channels, (size_t) (length + process->state) * sizeof *all);
    float *states = all + length * channels;
    float *one = allocate((size_t) length, sizeof *one);
    bool done = true;
    for (int64_t start = 0; done && start < end; start += length) {
        soundRead(input, 0, all, length);
        runChannels(process, channels, start, all, one, states);
        const int64_t first = delay > start ? delay - start : 0;
        const int64_t last = end - start < length ? end - start : length;
        done = first >= last || soundWrite(output, all + first * channels, last - first);
        progressShow(start + length, end);
    }
    free(one);
    free(all);
    return done;
}
