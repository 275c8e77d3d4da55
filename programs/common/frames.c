#include "frames.h"

#include "memory.h"

#include <stdlib.h>
#include <string.h>

Frames framesBegin(Sound *input, int channel, int32_t size, int32_t hop)
{
    return (Frames){.input = input,
                    .channel = channel,
                    .size = size,
                    .hop = hop,
                    .count = (input->length - 1) / hop + 1,
                    .samples = allocate((size_t) size, sizeof(float))};
}

/* Moves the frame on by count samples, of which the last fill its end. */
static void advance(Frames *reader, int64_t count)
{
    const int32_t size = reader->size;
    for (; count > size; count -= size)
        soundRead(reader->input, reader->channel, reader->samples, size);
    memmove(reader->samples, reader->samples + count, (size_t) (size - count) * sizeof(float));
    soundRead(reader->input, reader->channel, reader->samples + (size - count), count);
}

bool framesNext(Frames *reader, float *frame)
{
    if (reader->next >= reader->count)
        return false;
    advance(reader, reader->next == 0 ? reader->size - reader->size / 2 : reader->hop);
    ++reader->next;
    memcpy(frame, reader->samples, (size_t) reader->size * sizeof(float));
    return true;
}

static double hopsToFraction(const Frames *reader, double hops)
{
    return hops * reader->hop / (double) reader->input->length;
}

double framesLeft(const Frames *reader)
{
    return hopsToFraction(reader, (double) reader->next - 1.5);
}

double framesRight(const Frames *reader)
{
    return reader->next < reader->count ? hopsToFraction(reader, (double) reader->next - 0.5) : 1.0;
}

void framesEnd(Frames *reader)
{
    free(reader->samples);
}
