// Sound files made for a test.
#pragma once

#include "support/random.h"

#include <sndfile.h>

#include <cmath>
#include <filesystem>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

struct SoundFormat {
    int rate = 48000;
    int channels = 1;
    int format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
};

inline std::string writeSound(const std::string &path, const std::vector<float> &samples,
                              SoundFormat how = {})
{
    SF_INFO info{};
    info.samplerate = how.rate;
    info.channels = how.channels;
    info.format = how.format;
    SNDFILE *file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (file == nullptr)
        throw std::runtime_error(path + ": " + sf_strerror(nullptr));
    const auto count = static_cast<sf_count_t>(samples.size());
    const bool written = sf_write_float(file, samples.data(), count) == count;
    if (sf_close(file) != 0 || !written)
        throw std::runtime_error(path + ": not written");
    return path;
}

inline std::vector<float> sine(double hertz, double amplitude, size_t length, double rate = 48000)
{
    std::vector<float> samples(length);
    for (size_t i = 0; i < length; ++i)
        samples[i] = static_cast<float>(
            amplitude * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate));
    return samples;
}

// A sound of 100000 frames, cut off in the middle.
inline void writeHalfSound(const std::string &path)
{
    support::Random random;
    writeSound(path, random.noise(100000), {.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16});
    std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
}
