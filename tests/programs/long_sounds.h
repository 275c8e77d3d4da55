// Programs that take no more memory for a long sound.
#pragma once

#include "program.h"
#include "sounds.h"

#include <gtest/gtest.h>

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

// The program reads in.wav, of 5 seconds and of so many. The margin is less than the samples of the longer one take.
inline void expectConstantMemory(const std::string &name, const std::vector<std::string> &arguments,
                                 int seconds, long marginKilobytes)
{
    const support::Folder folder;
    writeLongSound(folder / "in.wav", 5);
    const long peakOfShort = peakOfProgram(name, arguments, folder);
    writeLongSound(folder / "in.wav", seconds);
    EXPECT_LT(peakOfProgram(name, arguments, folder), peakOfShort + marginKilobytes);
}
