#include "wav_head.h"

#include "formats.h"
#include "sound_input.h"

#include <algorithm>

namespace orva
{
namespace
{

// A file in memory.
struct MemoryFile {
    std::string bytes;
    size_t position = 0;
};

sf_count_t memoryLength(void *context)
{
    return static_cast<sf_count_t>(static_cast<MemoryFile *>(context)->bytes.size());
}

sf_count_t memorySeek(sf_count_t offset, int whence, void *context)
{
    auto &file = *static_cast<MemoryFile *>(context);
    const size_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position : file.bytes.size();
    file.position = from + static_cast<size_t>(offset);
    return static_cast<sf_count_t>(file.position);
}

sf_count_t memoryRead(void *to, sf_count_t count, void *context)
{
    auto &file = *static_cast<MemoryFile *>(context);
    const size_t place = std::min(file.position, file.bytes.size());
    const size_t got = file.bytes.copy(static_cast<char *>(to), static_cast<size_t>(count), place);
    file.position = place + got;
    return static_cast<sf_count_t>(got);
}

sf_count_t memoryWrite(const void *bytes, sf_count_t count, void *context)
{
    auto &file = *static_cast<MemoryFile *>(context);
    const auto size = static_cast<size_t>(count);
    file.bytes.resize(std::max(file.bytes.size(), file.position + size));
    file.bytes.replace(file.position, size, static_cast<const char *>(bytes), size);
    file.position += size;
    return count;
}

sf_count_t memoryTell(void *context)
{
    return static_cast<sf_count_t>(static_cast<MemoryFile *>(context)->position);
}

uint32_t numberAt(const std::string &bytes, size_t place)
{
    uint32_t number = 0;
    for (size_t i = 4; i-- > 0;)
        number = number << 8 | static_cast<uint8_t>(bytes[place + i]);
    return number;
}

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

std::string wavHead(const SF_INFO &info, int64_t frames, const std::string &told)
{
    const auto channels = static_cast<uint32_t>(info.channels);
    const auto rate = static_cast<uint32_t>(info.samplerate);
    const auto width = static_cast<uint32_t>(bytesOfSample(info.format));
    const uint32_t unknown = 0xffffffff; // what readers take for: up to the end
    const int64_t size = frames * channels * width;
    const bool known = frames >= 0 && size < 0x7fff0000;
    const auto before = static_cast<uint32_t>(36 + told.size());
    std::string head = "RIFF";
    add(head, known ? static_cast<uint32_t>(size) + before : unknown, 4);
    head += "WAVEfmt ";
    add(head, 16, 4);
    add(head, codeOf(info.format), 2);
    add(head, channels, 2);
    add(head, rate, 4);
    add(head, rate * channels * width, 4);
    add(head, channels * width, 2);
    add(head, 8 * width, 2);
    head += told;
    head += "data";
    add(head, known ? static_cast<uint32_t>(size) : unknown, 4);
    return head;
}

// libsndfile writes them into a file without samples, from which they are taken.
std::string metadataChunks(SNDFILE *from, double ratio, double longer)
{
    SF_VIRTUAL_IO calls = {memoryLength, memorySeek, memoryRead, memoryWrite, memoryTell};
    SF_INFO info = {};
    info.samplerate = 48000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    MemoryFile memory;
    SoundFile file(sf_open_virtual(&calls, SFM_WRITE, &info, &memory));
    if (file == nullptr)
        return "";
    copyMetadata(from, file.get(), ratio, longer);
    file.reset();
    std::string chunks;
    const size_t end = memory.bytes.size();
    for (size_t place = 12; place + 8 <= end;) {
        const std::string name = memory.bytes.substr(place, 4);
        const size_t size = 8 + (size_t{numberAt(memory.bytes, place + 4)} + 1) / 2 * 2;
        if (size > end - place)
            break;
        if (name != "fmt " && name != "data")
            chunks += memory.bytes.substr(place, size);
        place += size;
    }
    return chunks;
}

} // namespace orva
