// Sound files made for a test.
#pragma once

#include <cmath>
#include <numbers>
#include <sndfile.h>
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

// Seconds at 8000 Hz, one byte a sample, all the same: for tests of memory, so no more than a second at once, since a
// process begins with its parent's peak.
inline void writeLongSound(const std::string &path, int seconds)
{
    SF_INFO info{};
    info.samplerate = 8000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_U8;
    SNDFILE *file = sf_open(path.c_str(), SFM_WRITE, &info);
    const std::vector<float> second(8000, 0.25f);
    for (int i = 0; i < seconds; ++i)
        if (sf_write_float(file, second.data(), 8000) != 8000)
            throw std::runtime_error(path + ": not written");
    sf_close(file);
}

inline std::vector<float> sine(double hertz, double amplitude, size_t length, double rate = 48000)
{
    std::vector<float> samples(length);
    for (size_t i = 0; i < length; ++i)
        samples[i] = static_cast<float>(
            amplitude * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate));
    return samples;
}
