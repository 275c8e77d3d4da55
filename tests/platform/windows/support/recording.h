// The recorded voice that Debian's alsa-utils installs: one channel, 48000 Hz, 16 bits.
#pragma once

#include "support/folder.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace support
{

inline const char *recordingPath()
{
    return "/usr/share/sounds/alsa/Front_Center.wav";
}

// Its samples, as fractions of 32768. Throws where it is not there: a test without its input has failed.
inline std::vector<float> recording()
{
    const std::string file = readFile(recordingPath());
    const size_t header = file.find("data");
    uint32_t bytes = 0;
    if (header == file.npos || file.size() < header + 8)
        throw std::runtime_error(std::string(recordingPath()) + ": no sound");
    std::memcpy(&bytes, file.data() + header + 4, sizeof bytes);
    if (file.size() < header + 8 + bytes)
        throw std::runtime_error(std::string(recordingPath()) + ": short");
    std::vector<int16_t> words(bytes / sizeof(int16_t));
    std::memcpy(words.data(), file.data() + header + 8, bytes);
    std::vector<float> samples;
    for (const int16_t word : words)
        samples.push_back(static_cast<float>(word) / 32768.0f);
    return samples;
}

} // namespace support
