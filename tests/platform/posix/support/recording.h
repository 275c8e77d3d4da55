// The recorded voice that Debian's alsa-utils installs: one channel, 48000 Hz.
#pragma once

#include <gtest/gtest.h>
#include <sndfile.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace support
{

inline const char *recordingPath()
{
    return "/usr/share/sounds/alsa/Front_Center.wav";
}

// All frames of a file, channels interleaved. Throws where the file cannot be read: a test without its input has failed.
inline std::vector<float> readSamples(const std::string &path, SF_INFO &info)
{
    info = {};
    SNDFILE *file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr)
        throw std::runtime_error(path + ": " + sf_strerror(nullptr));
    std::vector<float> samples(static_cast<size_t>(info.frames) * static_cast<size_t>(info.channels));
    const sf_count_t read = sf_readf_float(file, samples.data(), info.frames);
    sf_close(file);
    if (read != info.frames)
        throw std::runtime_error(path + ": short read");
    return samples;
}

inline std::vector<float> recording()
{
    SF_INFO info;
    return readSamples(recordingPath(), info);
}

} // namespace support
