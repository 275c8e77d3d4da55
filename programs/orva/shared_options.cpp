#include "shared_options.h"

#include "failure.h"

#include <charconv>
#include <cmath>

namespace orva
{
namespace
{

int rateFrom(const std::string &text)
{
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    std::string unit(read.ptr, text.data() + text.size());
    if (unit.ends_with("Hz") || unit.ends_with("hz"))
        unit.resize(unit.size() - 2);
    if (unit == "k" || unit == "K")
        value *= 1000;
    else if (!unit.empty())
        value = 0;
    if (read.ec != std::errc() || !(value >= 1 && value <= 1000000) || value != std::floor(value))
        failUse("rate '" + text +
                "' is not a whole number of hertz from 1 to 1000000, such as 44100 or 44.1k");
    return static_cast<int>(value);
}

// "16x9": centimetres.
void readSize(const std::string &text, PictureOptions &picture)
{
    const char *end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, picture.widthCm);
    const bool both = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
    const auto height = std::from_chars(both ? width.ptr + 1 : end, end, picture.heightCm);
    const auto fits = [](double cm) { return cm >= 1 && cm <= 200; };
    if (height.ec != std::errc() || height.ptr != end || !fits(picture.widthCm) || !fits(picture.heightCm))
        failUse("size '" + text + "' is not a width and a height in cm from 1 to 200, such as 16x9");
}

double secondsFrom(const std::string &text)
{
    const char *place = text.data();
    const char *end = place + text.size();
    double seconds = 0;
    for (int parts = 1;; ++parts) {
        double value = 0;
        const auto read = std::from_chars(place, end, value);
        const bool last = read.ptr == end;
        if (read.ec != std::errc() || !(value >= 0 && value <= 1e9) || (parts > 1 && value >= 60) ||
            (!last && (*read.ptr != ':' || parts == 3 || value != std::floor(value))))
            failUse("time '" + text + "' is not a number of seconds, or such as 1:30 or 0:01:30.5");
        seconds = 60 * seconds + value;
        if (last)
            return seconds;
        place = read.ptr + 1;
    }
}

void addRaw(CLI::App &command, RawFormat &raw, const std::string &description)
{
    addRead(command, {"--raw", "FORMAT", description},
            [&raw](const std::string &text) { raw = rawFormat(text); });
}

} // namespace

void addInput(CLI::App &command, std::string &input)
{
    addText(command, {"input", "FILE", "Sound file; - is standard input", Need::required}, input);
}

void addOutput(CLI::App &command, std::string &output)
{
    addText(command, {"output", "FILE", "Sound file; - is standard output", Need::required}, output);
}

void addInputAndOutput(CLI::App &command, SoundOptions &options)
{
    addInput(command, options.input);
    addOutput(command, options.output);
}

void addInputOptions(CLI::App &command, RawFormat &raw)
{
    addRaw(command, raw,
           "Samples of standard input, which has no head: s8 u8 s16 s24 s32 f32 f64 ulaw alaw, with le or be "
           "after it if need be, and then :RATE:CHANNELS");
}

void addOutputOptions(CLI::App &command, OutputOptions &options)
{
    addText(command, {"--format", "NAME", "Format of the file; else the name's ending tells it"},
            options.as.format);
    addText(command, {"--bits", "BITS", "8, 16, 24, 32, float or double; else as the input has them"},
            options.as.bits);
    addNumber(command, {"--gain", "DB", "Decibels by which the result is made louder"}, options.gain, -200,
              200);
    addRaw(command, options.raw,
           "Samples of standard input and output, which then have no head: s8 u8 s16 s24 s32 f32 f64 "
           "ulaw alaw, with le or be after it if need be, and for input :RATE:CHANNELS");
}

void addRateOption(CLI::App &command, int &rate, const std::string &description, Need need)
{
    addRead(command, {"-r,--rate", "HZ", description, need},
            [&rate](const std::string &text) { rate = rateFrom(text); });
}

void addChannelOption(CLI::App &command, std::string &channel)
{
    const auto read = [&channel](const std::string &text) {
        int number = 0;
        const auto got = std::from_chars(text.data(), text.data() + text.size(), number);
        if (text != "all" && (got.ec != std::errc() || *got.ptr != '\0' || number < 1))
            failUse("channel '" + text + "' is not 'all' or a number, 1 for the first");
        channel = text;
    };
    addRead(command, {"--channel", "N", "One channel, 1 for the first (all)"}, read);
}

void addTimeOption(CLI::App &command, const std::string &name, double &seconds,
                   const std::string &description)
{
    addRead(command, {name, "TIME", description},
            [&seconds](const std::string &text) { seconds = secondsFrom(text); });
}

void addPictureOptions(CLI::App &command, PictureOptions &picture)
{
    addRead(command, {"--size", "WxH", "Width and height of the picture in cm; else as it needs, 16.9 wide"},
            [&picture](const std::string &text) { readSize(text, picture); });
    addNumber(command, {"--dpi", "N", "Dots per inch of a PNG (150)"}, picture.dotsPerInch, 30, 1200);
}

void addPictureAsked(CLI::App &command, PictureOptions &picture, const std::string &what)
{
    const auto read = [&picture](const std::string &path) {
        if (path == "-")
            failUse("--picture needs a name, since standard output has the text");
        picture.path = path;
    };
    addRead(command, {"--picture", "PICTURE", "PNG, SVG or PDF of " + what}, read);
    addPictureOptions(command, picture);
}

} // namespace orva
