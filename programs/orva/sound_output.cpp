#include "sound_output.h"

#include "failure.h"
#include "largest.h"
#include "messages.h"
#include "wav_head.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace orva
{
namespace
{

enum { blockSamples = 16384 };

// A WAV file holds four gigabytes; RF64 is WAV for more, and becomes an ordinary one where there is less.
int withRoomFor(int format, int64_t frames, int channels)
{
    const bool small = frames >= 0 && frames * channels * std::max(bytesOfSample(format), 1) < 0x7fff0000;
    if ((format & SF_FORMAT_TYPEMASK) != SF_FORMAT_WAV || small)
        return format;
    SF_INFO large = {};
    large.samplerate = 48000;
    large.channels = channels;
    large.format = SF_FORMAT_RF64 | (format & SF_FORMAT_SUBMASK);
    return sf_format_check(&large) != 0 ? large.format : format;
}

// Raw samples on their way into a descriptor that may be a pipe, or a file in which something stands before them.
sf_count_t streamLength(void *context)
{
    return static_cast<StreamOutput *>(context)->bytes;
}

sf_count_t streamSeek(sf_count_t, int, void *context)
{
    return static_cast<StreamOutput *>(context)->bytes;
}

sf_count_t streamRead(void *, sf_count_t, void *)
{
    return 0;
}

sf_count_t streamWrite(const void *bytes, sf_count_t count, void *context)
{
    auto &stream = *static_cast<StreamOutput *>(context);
    sf_count_t done = 0;
    while (done < count) {
        const ssize_t some = write(stream.descriptor, static_cast<const char *>(bytes) + done,
                                   static_cast<size_t>(count - done));
        if (some < 0 && errno == EINTR)
            continue;
        if (some <= 0)
            break;
        done += some;
    }
    stream.bytes += done;
    return done;
}

} // namespace

SoundOutput::SoundOutput(const std::string &path, const OutputOptions &how, const SoundInput &like, int rate,
                         int64_t length, double longer)
    : place(path), name(path == "-" ? "standard output" : path), options(how)
{
    info.samplerate = rate;
    info.channels = like.info.channels;
    info.format = like.info.format;
    const bool raw = path == "-" && how.raw.format != 0;
    info.format = raw ? how.raw.format : formatFor(path, how.as, info);
    factor = static_cast<float>(std::pow(10.0, how.gain / 20));
    const double ratio = static_cast<double>(rate) / like.info.samplerate;
    if (path == "-" || isStream(path)) {
        stream.descriptor = path == "-" ? dup(STDOUT_FILENO) : open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (stream.descriptor < 0)
            fail(name + ": " + std::strerror(errno));
        if (path == "-" && isatty(stream.descriptor) != 0)
            failUse("standard output is a terminal; send the sound into a file or another program");
        openStream(length, metadataChunks(like.file.get(), ratio, longer));
    } else {
        replacement = std::make_unique<Replacement>(path);
        const int asked = info.format;
        info.format = withRoomFor(asked, length, info.channels);
        downgrade = info.format != asked;
    }
    if (file == nullptr)
        openFile(like, spool != nullptr ? fileno(spool) : replacement->descriptor());
    if (stream.descriptor < 0 || spool != nullptr)
        copyMetadata(like.file.get(), file.get(), ratio, longer);
}

SoundOutput::~SoundOutput()
{
    file.reset();
    if (spool != nullptr)
        std::fclose(spool);
    if (stream.descriptor >= 0)
        close(stream.descriptor);
}

// Raw samples, alone or after the head of a WAV file, are written as they come; all else needs to go back.
void SoundOutput::openStream(int64_t length, const std::string &told)
{
    const int major = info.format & SF_FORMAT_TYPEMASK;
    const bool wav = (major == SF_FORMAT_WAV || major == SF_FORMAT_WAVEX) && bytesOfSample(info.format) > 0;
    if (wav) {
        const std::string head = wavHead(info, length, told);
        const auto bytes = static_cast<sf_count_t>(head.size());
        if (streamWrite(head.data(), bytes, &stream) != bytes)
            failWriting();
        info.format = SF_FORMAT_RAW | SF_ENDIAN_LITTLE | (info.format & SF_FORMAT_SUBMASK);
    } else if (major != SF_FORMAT_RAW) {
        spool = std::tmpfile();
        if (spool == nullptr)
            fail(std::string("temporary file: ") + std::strerror(errno));
        return;
    }
    SF_VIRTUAL_IO calls = {streamLength, streamSeek, streamRead, streamWrite, streamLength};
    file.reset(sf_open_virtual(&calls, SFM_WRITE, &info, &stream));
    if (file == nullptr)
        fail(name + ": " + sf_strerror(nullptr));
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
}

void SoundOutput::openFile(const SoundInput &like, int descriptor)
{
    file.reset(sf_open_fd(descriptor, SFM_WRITE, &info, SF_FALSE));
    if (file == nullptr)
        fail(name + ": " + sf_strerror(nullptr));
    sf_command(file.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, downgrade ? SF_TRUE : SF_FALSE);
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    std::vector<int> map(static_cast<size_t>(info.channels));
    const auto bytes = static_cast<int>(map.size() * sizeof(int));
    if (sf_command(like.file.get(), SFC_GET_CHANNEL_MAP_INFO, map.data(), bytes) != 0)
        sf_command(file.get(), SFC_SET_CHANNEL_MAP_INFO, map.data(), bytes);
}

void SoundOutput::failWriting() const
{
    const int reason = errno;
    fail(name + ": " +
         (reason != 0       ? std::strerror(reason)
          : file != nullptr ? sf_strerror(file.get())
                            : "not written"));
}

void SoundOutput::countCut(const float *values, int64_t count)
{
    const int32_t largest = largestBits(values, count);
    if (largest <= bitsOfSize(1.0f)) {
        peak = std::max(peak, std::bit_cast<float>(largest));
        return;
    }
    const bool isFloat = (info.format & SF_FORMAT_SUBMASK) == SF_FORMAT_FLOAT ||
                         (info.format & SF_FORMAT_SUBMASK) == SF_FORMAT_DOUBLE;
    for (int64_t i = 0; i < count; ++i) {
        const float size = std::fabs(values[i]);
        peak = std::max(peak, size);
        cut += static_cast<int64_t>(!isFloat && size > 1);
    }
}

// Integers of so many bits, in the upper bits of those that libsndfile takes.
void SoundOutput::store(const float *values, int64_t count)
{
    const int bits = integerBits(info.format);
    countCut(values, count);
    errno = 0;
    if (bits == 0) {
        if (sf_write_float(file.get(), values, count) != count)
            failWriting();
        return;
    }
    integers.resize(static_cast<size_t>(count));
    const double full = std::ldexp(1.0, bits - 1);
    const double unit = std::ldexp(1.0, 32 - bits);
    const double round = 0x1.8p52; // beyond it there are no fractions
    for (int64_t i = 0; i < count; ++i) {
        const double value = std::clamp(static_cast<double>(values[i]) * full, -full, full - 1);
        integers[static_cast<size_t>(i)] = static_cast<int>((value + round - round) * unit);
    }
    if (sf_write_int(file.get(), integers.data(), count) != count)
        failWriting();
}

void SoundOutput::write(const float *frames, int64_t count)
{
    const int64_t all = count * info.channels;
    for (int64_t start = 0, part = 0; start < all; start += part) {
        part = std::min<int64_t>(all - start, blockSamples - blockSamples % info.channels);
        const float *values = frames + start;
        if (factor != 1) {
            amplified.assign(values, values + part);
            for (float &value : amplified)
                value *= factor;
            values = amplified.data();
        }
        store(values, part);
    }
    written += count;
}

// Copies what was kept into the stream.
void SoundOutput::spill()
{
    char block[65536];
    std::rewind(spool);
    for (size_t got; (got = std::fread(block, 1, sizeof block, spool)) > 0;)
        if (streamWrite(block, static_cast<sf_count_t>(got), &stream) != static_cast<sf_count_t>(got))
            failWriting();
}

void SoundOutput::finish()
{
    errno = 0;
    const int failed = sf_close(file.release());
    if (failed != 0 || errno == ENOSPC || errno == EFBIG || errno == EIO || errno == EDQUOT)
        fail(name + ": " + (errno != 0 ? std::strerror(errno) : sf_error_number(failed)));
    if (spool != nullptr)
        spill();
    if (replacement != nullptr)
        replacement->commit();
    const int kept = rateKept(info.format, info.samplerate);
    if (kept != info.samplerate)
        note(name + ": its format keeps the rate as " + std::to_string(kept) + " Hz");
    if (cut == 0)
        return;
    const double gain = std::floor(10 * (options.gain - 20 * std::log10(static_cast<double>(peak)))) / 10;
    char text[96];
    std::snprintf(text, sizeof text, ": %" PRId64 " sample%s cut at full scale; --gain %.1f would avoid it",
                  cut, cut > 1 ? "s are" : " is", gain);
    note(name + text);
}

} // namespace orva
