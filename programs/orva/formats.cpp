#include "formats.h"

#include "failure.h"
#include "suggestion.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <initializer_list>
#include <vector>

namespace orva
{
namespace
{

struct NamedFormat {
    const char *name; // also the ending of a file's name
    int major;
    int samples; // what it is known for, 0 where samples are stored like those of the input
};

// Sound Designer II is left out: it keeps the half of each file in another one beside it.
const NamedFormat named[] = {
    {"wav", SF_FORMAT_WAV, 0},
    {"wave", SF_FORMAT_WAV, 0},
    {"wavex", SF_FORMAT_WAVEX, 0},
    {"rf64", SF_FORMAT_RF64, 0},
    {"w64", SF_FORMAT_W64, 0},
    {"aiff", SF_FORMAT_AIFF, 0},
    {"aif", SF_FORMAT_AIFF, 0},
    {"aifc", SF_FORMAT_AIFF, 0},
    {"au", SF_FORMAT_AU, 0},
    {"snd", SF_FORMAT_AU, 0},
    {"caf", SF_FORMAT_CAF, 0},
    {"flac", SF_FORMAT_FLAC, 0},
    {"ogg", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
    {"oga", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
    {"opus", SF_FORMAT_OGG, SF_FORMAT_OPUS},
    {"mp3", SF_FORMAT_MPEG, SF_FORMAT_MPEG_LAYER_III},
    {"raw", SF_FORMAT_RAW, 0},
    {"avr", SF_FORMAT_AVR, 0},
    {"htk", SF_FORMAT_HTK, 0},
    {"ircam", SF_FORMAT_IRCAM, 0},
    {"sf", SF_FORMAT_IRCAM, 0},
    {"mat", SF_FORMAT_MAT5, 0},
    {"mat4", SF_FORMAT_MAT4, 0},
    {"mpc", SF_FORMAT_MPC2K, 0},
    {"nist", SF_FORMAT_NIST, 0},
    {"sph", SF_FORMAT_NIST, 0},
    {"paf", SF_FORMAT_PAF, 0},
    {"pvf", SF_FORMAT_PVF, 0},
    {"sds", SF_FORMAT_SDS, 0},
    {"svx", SF_FORMAT_SVX, 0},
    {"voc", SF_FORMAT_VOC, 0},
    {"wve", SF_FORMAT_WVE, SF_FORMAT_ALAW},
    {"xi", SF_FORMAT_XI, SF_FORMAT_DPCM_16},
};

struct NamedSample {
    const char *name;
    int format;
    int bytes; // 0 where they are not all equally long
};

const NamedSample samples[] = {
    {"s8", SF_FORMAT_PCM_S8, 1},  {"u8", SF_FORMAT_PCM_U8, 1},  {"s16", SF_FORMAT_PCM_16, 2},
    {"s24", SF_FORMAT_PCM_24, 3}, {"s32", SF_FORMAT_PCM_32, 4}, {"f32", SF_FORMAT_FLOAT, 4},
    {"f64", SF_FORMAT_DOUBLE, 8}, {"ulaw", SF_FORMAT_ULAW, 1},  {"alaw", SF_FORMAT_ALAW, 1},
};

const struct {
    const char *name;
    std::vector<int> formats;
} bitChoices[] = {
    {"8", {SF_FORMAT_PCM_S8, SF_FORMAT_PCM_U8, SF_FORMAT_DPCM_8}},
    {"16", {SF_FORMAT_PCM_16, SF_FORMAT_DPCM_16}},
    {"24", {SF_FORMAT_PCM_24}},
    {"32", {SF_FORMAT_PCM_32}},
    {"float", {SF_FORMAT_FLOAT}},
    {"double", {SF_FORMAT_DOUBLE}},
};

std::string lower(std::string text)
{
    for (char &letter : text)
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
    return text;
}

std::string endingOf(const std::string &path)
{
    const size_t slash = path.find_last_of('/');
    const size_t dot = path.find_last_of('.');
    return dot == std::string::npos || (slash != std::string::npos && dot < slash)
               ? ""
               : lower(path.substr(dot + 1));
}

const NamedFormat &formatNamed(const std::string &name, const std::string &blame)
{
    std::vector<std::string> names;
    for (const NamedFormat &one : named) {
        if (name == one.name)
            return one;
        names.emplace_back(one.name);
    }
    std::string list;
    for (const auto &one : names)
        list += (list.empty() ? "" : ", ") + one;
    failUse(blame + suggestion(name, names) + "; there are " + list);
}

// Formats of samples to try in turn for an input that is stored so.
std::vector<int> likeSamples(int like)
{
    std::vector<int> tries = {like & SF_FORMAT_SUBMASK};
    const auto add = [&](std::initializer_list<int> more) { tries.insert(tries.end(), more); };
    switch (integerBits(like)) {
    case 8:
        add({SF_FORMAT_PCM_U8, SF_FORMAT_PCM_S8});
        break;
    case 24:
        add({SF_FORMAT_PCM_24, SF_FORMAT_PCM_32, SF_FORMAT_FLOAT});
        break;
    case 32:
        add({SF_FORMAT_PCM_32, SF_FORMAT_DOUBLE, SF_FORMAT_FLOAT, SF_FORMAT_PCM_24});
        break;
    case 0:
        add({SF_FORMAT_FLOAT, SF_FORMAT_DOUBLE, SF_FORMAT_PCM_24});
        break;
    default:
        break;
    }
    add({SF_FORMAT_PCM_16, SF_FORMAT_FLOAT, SF_FORMAT_PCM_U8, SF_FORMAT_PCM_S8, SF_FORMAT_ULAW,
         SF_FORMAT_ALAW});
    return tries;
}

} // namespace

RawFormat rawFormat(const std::string &text)
{
    const std::string example = "raw format '" + text + "' is not like s16, f32be or s16:48000:2";
    RawFormat raw;
    const size_t colon = text.find(':');
    std::string name = lower(text.substr(0, colon));
    int order = SF_ENDIAN_CPU;
    if (name.ends_with("le") || name.ends_with("be")) {
        order = name.ends_with("le") ? SF_ENDIAN_LITTLE : SF_ENDIAN_BIG;
        name.resize(name.size() - 2);
    }
    for (const NamedSample &one : samples)
        if (name == one.name)
            raw.format = SF_FORMAT_RAW | order | one.format;
    if (raw.format == 0)
        failUse(example);
    const char *place = colon == std::string::npos ? nullptr : text.c_str() + colon;
    for (int *number : {&raw.rate, &raw.channels}) {
        if (place == nullptr || *place == '\0')
            break;
        const char *end = text.c_str() + text.size();
        const auto read = std::from_chars(place + 1, end, *number);
        if (*place != ':' || read.ec != std::errc() || *number < 1)
            failUse(example);
        place = read.ptr;
    }
    if (place != nullptr && *place != '\0')
        failUse(example);
    if (raw.channels > 1024 || raw.rate > 1000000000)
        failUse(example);
    return raw;
}

int formatFor(const std::string &path, const StoreAs &told, const SF_INFO &like)
{
    const std::string ending = path == "-" ? "wav" : endingOf(path);
    const NamedFormat &format =
        told.format.empty()
            ? formatNamed(ending, path + ": no format has the ending '" + ending + "'; name one by --format")
            : formatNamed(lower(told.format), "there is no format '" + told.format + "'");

    std::vector<int> tries;
    if (!told.bits.empty()) {
        for (const auto &choice : bitChoices)
            if (lower(told.bits) == choice.name)
                tries = choice.formats;
        if (tries.empty())
            failUse("--bits " + told.bits + " is not 8, 16, 24, 32, float or double");
    } else {
        tries = likeSamples(like.format);
        if (format.samples != 0)
            tries = {format.samples};
    }
    for (const int one : tries) {
        SF_INFO info = like;
        info.format = format.major | one;
        if (sf_format_check(&info) != 0 && (format.major != SF_FORMAT_WVE || like.samplerate == 8000))
            return info.format; // WVE has no place for another rate, which libsndfile does not mind
    }
    failUse(path + ": the format " + format.name + " does not store " +
            (told.bits.empty()
                 ? std::to_string(like.channels) + " channels at " + std::to_string(like.samplerate) + " Hz"
                 : "samples of --bits " + told.bits));
}

int rateKept(int format, int rate)
{
    switch (format & SF_FORMAT_TYPEMASK) {
    case SF_FORMAT_HTK: // whole periods of 100 ns
        return 10000000 / std::max(10000000 / rate, 1);
    case SF_FORMAT_SDS: // of 1 ns
        return 1000000000 / std::max(1000000000 / rate, 1);
    default:
        return rate;
    }
}

int bytesOfSample(int format)
{
    for (const NamedSample &one : samples)
        if ((format & SF_FORMAT_SUBMASK) == one.format)
            return one.bytes;
    return 0;
}

int integerBits(int format)
{
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
        return 8;
    case SF_FORMAT_PCM_16:
        return 16;
    case SF_FORMAT_PCM_24:
        return 24;
    case SF_FORMAT_PCM_32:
        return 32;
    default:
        return 0;
    }
}

std::string formatName(int format)
{
    SF_FORMAT_INFO major = {.format = format & SF_FORMAT_TYPEMASK, .name = nullptr, .extension = nullptr};
    SF_FORMAT_INFO sample = {.format = format & SF_FORMAT_SUBMASK, .name = nullptr, .extension = nullptr};
    std::string name = "sound";
    if (sf_command(nullptr, SFC_GET_FORMAT_INFO, &major, sizeof major) == 0 && major.name != nullptr) {
        name = major.name;
        name = name.substr(0, name.find(" ("));
    }
    const int bits = integerBits(format);
    if (bits > 0)
        return name + ", " + std::to_string(bits) + " bit";
    if (sf_command(nullptr, SFC_GET_FORMAT_INFO, &sample, sizeof sample) == 0 && sample.name != nullptr)
        name += std::string(", ") + sample.name;
    return name;
}

} // namespace orva
