#include "sound_input.h"

#include "failure.h"
#include "largest.h"
#include "messages.h"
#include "progress.h"
#include "standard_input.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orva
{
namespace
{

// Where a length is not known, a head holds the greatest number that fits.
const int64_t greatestKnownBytes = 0x7fff0000;

int64_t lengthOf(const SoundInput &input, bool fromPipe)
{
    const int64_t frames = input.info.frames;
    const int64_t bytes = bytesOfSample(input.info.format) * static_cast<int64_t>(input.info.channels);
    if (frames >= SF_COUNT_MAX / 4)
        return -1;
    if (fromPipe && (bytes == 0 || frames == 0 || frames * bytes >= greatestKnownBytes))
        return -1;
    return frames;
}

int openFile(const std::string &path)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat present = {};
    if (descriptor < 0 || fstat(descriptor, &present) != 0)
        fail(path + ": " + std::strerror(errno));
    const char *reason = S_ISDIR(present.st_mode)                           ? std::strerror(EISDIR)
                         : S_ISREG(present.st_mode) && present.st_size == 0 ? "is empty"
                                                                            : nullptr;
    if (reason != nullptr) {
        close(descriptor);
        fail(path + ": " + reason);
    }
    return descriptor;
}

} // namespace

SoundInput openSound(const std::string &path, const RawFormat &raw)
{
    SoundInput input;
    input.name = path == "-" ? "standard input" : path;
    if (path == "-" && raw.format != 0) {
        if (raw.rate == 0)
            failUse("--raw for standard input needs a rate, such as s16:48000:2");
        input.info.format = raw.format;
        input.info.samplerate = raw.rate;
        input.info.channels = raw.channels;
    }
    int descriptor = path == "-" ? readableInput(raw.format != 0) : openFile(path);
    const bool fromPipe = lseek(descriptor, 0, SEEK_CUR) < 0;
    if (fromPipe && path != "-")
        descriptor = readableStream(descriptor, false);
    {
        static std::mutex opening; // libsndfile keeps the reason of a refusal in one place for all threads
        const std::lock_guard<std::mutex> lock(opening);
        input.file.reset(sf_open_fd(descriptor, SFM_READ, &input.info, SF_TRUE));
        if (input.file == nullptr)
            fail(input.name + ": " + sf_strerror(nullptr));
    }
    input.length = lengthOf(input, fromPipe);
    if (input.length == 0)
        fail(input.name + ": holds no samples");
    return input;
}

namespace
{

// Puts zeros in their place, and counts them.
int64_t clearNotFinite(float *values, int64_t count)
{
    int64_t cleared = 0;
    for (int64_t i = 0; i < count; ++i) {
        if (!std::isfinite(values[i])) {
            values[i] = 0;
            ++cleared;
        }
    }
    return cleared;
}

} // namespace

int64_t readSound(SoundInput &input, float *frames, int64_t count)
{
    int64_t done = 0;
    while (done < count) {
        const int64_t got =
            sf_readf_float(input.file.get(), frames + done * input.info.channels, count - done);
        if (got <= 0)
            break;
        done += got;
    }
    const int64_t samples = done * input.info.channels;
    if (!areFinite(frames, samples))
        input.notFinite += clearNotFinite(frames, samples);
    input.position += done;
    if (done < count && input.position < input.length)
        input.endedEarly = true;
    return done;
}

void showProgress(const SoundInput &input)
{
    showProgress(input.position, input.length);
}

void endReading(const SoundInput &input)
{
    clearProgress();
    if (input.position == 0)
        fail(input.name + ": holds no samples");
}

void noteDamage(const SoundInput &input)
{
    if (input.notFinite > 0)
        note(input.name + ": " + std::to_string(input.notFinite) +
             (input.notFinite > 1 ? " samples are" : " sample is") + " not finite; taken as 0");
    if (input.endedEarly)
        note(input.name + ": ends after " + std::to_string(input.position) + " of " +
             std::to_string(input.length) + " frames; the rest is missing");
}

void copyMetadata(SNDFILE *from, SNDFILE *to, double ratio, double longer)
{
    for (int kind = SF_STR_FIRST; kind <= SF_STR_LAST; ++kind) {
        const char *text = sf_get_string(from, kind);
        if (text != nullptr && kind != SF_STR_SOFTWARE)
            sf_set_string(to, kind, text);
    }
    SF_BROADCAST_INFO_VAR(2048) broadcast;
    if (sf_command(from, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast) != 0) {
        const auto time =
            static_cast<double>(uint64_t{broadcast.time_reference_high} << 32 | broadcast.time_reference_low);
        const auto scaled = static_cast<uint64_t>(std::llround(time * ratio));
        broadcast.time_reference_high = static_cast<uint32_t>(scaled >> 32);
        broadcast.time_reference_low = static_cast<uint32_t>(scaled);
        sf_command(to, SFC_SET_BROADCAST_INFO, &broadcast, sizeof broadcast);
    }
    SF_CART_INFO_VAR(2048) cart;
    if (sf_command(from, SFC_GET_CART_INFO, &cart, sizeof cart) != 0)
        sf_command(to, SFC_SET_CART_INFO, &cart, sizeof cart);
    SF_CUES cues = {};
    if (longer > 0 && sf_command(from, SFC_GET_CUE, &cues, sizeof cues) != 0) {
        for (uint32_t i = 0; i < cues.cue_count && i < 100; ++i) {
            SF_CUE_POINT &cue = cues.cue_points[i];
            cue.sample_offset = static_cast<uint32_t>(std::llround(cue.sample_offset * ratio * longer));
            cue.position = static_cast<uint32_t>(std::llround(cue.position * ratio * longer));
        }
        sf_command(to, SFC_SET_CUE, &cues, sizeof cues);
    }
}

} // namespace orva
