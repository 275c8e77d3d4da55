#include "wav_head.h"

#include "formats.h"

namespace orva
{
namespace
{

void add(std::string &bytes, uint32_t number, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xff);
}

uint32_t codeOf(int format)
{
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
        return 3;
    case SF_FORMAT_ALAW:
        return 6;
    case SF_FORMAT_ULAW:
        return 7;
    default:
        return 1;
    }
}

} // namespace

std::string wavHead(const SF_INFO &info, int64_t frames)
{
    const auto channels = static_cast<uint32_t>(info.channels);
    const auto rate = static_cast<uint32_t>(info.samplerate);
    const auto width = static_cast<uint32_t>(bytesOfSample(info.format));
    const uint32_t unknown = 0xffffffff; // what readers take for: up to the end
    const int64_t size = frames * channels * width;
    const bool known = frames >= 0 && size < 0x7fff0000;
    std::string head = "RIFF";
    add(head, known ? static_cast<uint32_t>(size) + 36 : unknown, 4);
    head += "WAVEfmt ";
    add(head, 16, 4);
    add(head, codeOf(info.format), 2);
    add(head, channels, 2);
    add(head, rate, 4);
    add(head, rate * channels * width, 4);
    add(head, channels * width, 2);
    add(head, 8 * width, 2);
    head += "data";
    add(head, known ? static_cast<uint32_t>(size) : unknown, 4);
    return head;
}

} // namespace orva
