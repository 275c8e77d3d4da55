#include "frames.h"

#include "memory.h"

#include <stdlib.h>
#include <string.h>

frames frames_begin(sound *input, int channel, int32_t size, int32_t hop)
{
    return (frames){.input = input,
                    .channel = channel,
                    .size = size,
                    .hop = hop,
                    .count = (input->length - 1) / hop + 1,
                    .samples = allocate((size_t) size, sizeof(float))};
}

/* Moves the frame on by count samples, of which the last fill its end. */
static void advance(frames *reader, int64_t count)
{
    const int32_t size = reader->size;
    for (; count > size; count -= size)
        sound_read(reader->input, reader->channel, reader->samples, size);
    memmove(reader->samples, reader->samples + count, (size_t) (size - count) * sizeof(float));
    sound_read(reader->input, reader->channel, reader->samples + (size - count), count);
}

bool frames_next(frames *reader, float *frame)
{
    if (reader->next >= reader->count)
        return false;
    advance(reader, reader->next == 0 ? reader->size - reader->size / 2 : reader->hop);
    ++reader->next;
    memcpy(frame, reader->samples, (size_t) reader->size * sizeof(float));
    return true;
}

static double hops_to_fraction(const frames *reader, double hops)
{
    return hops * reader->hop / (double) reader->input->length;
}

double frames_left(const frames *reader)
{
    return hops_to_fraction(reader, (double) reader->next - 1.5);
}

double frames_right(const frames *reader)
{
    return reader->next < reader->count ? hops_to_fraction(reader, (double) reader->next - 0.5) : 1.0;
}

void frames_end(frames *reader)
{
    free(reader->samples);
}
