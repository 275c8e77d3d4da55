// Sound that is written: a file that appears when it is complete, or standard output.
#pragma once

#include "formats.h"
#include "replacement.h"
#include "sound_input.h"

#include <memory>
#include <string>
#include <vector>

namespace orva
{

struct OutputOptions {
    StoreAs as;
    RawFormat raw;   // of standard output
    double gain = 0; // dB
};

// A descriptor that is written into as it is.
struct StreamOutput {
    int descriptor = -1;
    int64_t bytes = 0;
};

class SoundOutput
{
public:
    // Starts a sound at `path`, "-" for standard output, with the channels of `like` and what its file tells, and as it is
    // stored unless `how` tells otherwise. `length` is in frames, -1 where it is not known. `longer` is by what factor the
    // sound is, for the marks in it; with 0 they are left out.
    SoundOutput(const std::string &path, const OutputOptions &how, const SoundInput &like, int rate,
                int64_t length, double longer = 1);
    ~SoundOutput();

    // Appends frames, channels interleaved. Integers are rounded to the nearest and end at full scale.
    void write(const float *frames, int64_t count);

    // Puts the file in its place, and tells how many samples were cut at full scale.
    void finish();

    int64_t framesWritten() const
    {
        return written;
    }

    float loudest() const
    {
        return peak;
    }

    bool isStandardOutput() const
    {
        return place == "-";
    }

private:
    void openStream(int64_t length, const std::string &told);
    void openFile(const SoundInput &like, int descriptor);
    void countCut(const float *samples, int64_t count);
    void store(const float *samples, int64_t count);
    [[noreturn]] void failWriting() const;
    void spill();

    std::string place, name;
    OutputOptions options;
    SF_INFO info{};
    std::unique_ptr<Replacement> replacement;
    StreamOutput stream;
    FILE *spool = nullptr; // for a format that takes seeking, to be copied into the stream at the end
    SoundFile file;
    std::vector<float> amplified;
    std::vector<int> integers;
    bool downgrade = false; // from RF64 to WAV, where the file turns out to be small
    int64_t written = 0, cut = 0;
    float factor = 1, peak = 0;
};

} // namespace orva
