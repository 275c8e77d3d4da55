// The pictures of the spectrogram program.
#include "picture.h"
#include "program.h"
#include "sounds.h"
#include "support/recording.h"

extern "C" {
#include "common/colormap.h"
}

#include <gtest/gtest.h>

#include <limits>

namespace
{

// Where the panel stands in the picture.
constexpr int left = 84, top = 72, width = 804, height = 400;

const char *const defaults = "window=Hanning; size=1024; hop=256; range=90; channel=1";

Picture spectrogram(const std::string &sound, const std::string &config, const support::Folder &folder)
{
    const support::Outcome outcome = runProgram("spectrogram", {sound, "picture.png", config}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return readPicture(folder / "picture.png");
}

// The colour of a frequency, as a part of the panel's height, at a time, as a part of its width. A bin need not fall on the
// point itself, so the brightest of the points around it counts; green is what rises with the level all along the scale.
uint32_t colorAt(const Picture &picture, double across, double up)
{
    const int x = left + static_cast<int>(across * width);
    const int y = top + height - 1 - static_cast<int>(up * height);
    uint32_t brightest = 0;
    for (int row = std::max(y - 2, top); row <= std::min(y + 2, top + height - 1); ++row)
        if ((picture.at(x, row) & 0xff00U) >= (brightest & 0xff00U))
            brightest = picture.at(x, row);
    return brightest;
}

// The only line of an output, without its end.
std::string onlyLine(const std::string &text)
{
    EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
    return text.substr(0, text.find('\n'));
}

} // namespace

TEST(Spectrogram, PictureOfTheRecordingHasItsSizeAndIsNotBlank)
{
    const support::Folder folder;
    const Picture picture = spectrogram(support::recordingPath(), defaults, folder);
    EXPECT_EQ(picture.width, 1000);
    EXPECT_EQ(picture.height, 538);
    EXPECT_GT(colorsIn(picture, left, top, width, height), 200U);
    EXPECT_GT(colorsIn(picture, 0, 0, picture.width, top), 10U) << "title";
    EXPECT_GT(colorsIn(picture, 0, 0, left, picture.height), 10U) << "frequency axis";
    EXPECT_GT(colorsIn(picture, 0, top + height + 1, picture.width, 60), 10U) << "time axis";
    EXPECT_GT(colorsIn(picture, left + width + 1, top, 110, height), 200U) << "colour scale";
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"picture.png"});
}

TEST(Spectrogram, ConfigurationMayBeLeftOut)
{
    const support::Folder folder;
    const Picture configured = spectrogram(support::recordingPath(), defaults, folder);
    EXPECT_EQ(runProgram("spectrogram", {support::recordingPath(), "short.png"}, folder).status, 0);
    EXPECT_EQ(readPicture(folder / "short.png").points, configured.points);
}

// A quarter of full scale is 12.04 dB below it; with a range of 80 dB, that is 0.8495 of the colour scale.
TEST(Spectrogram, SineStandsAtItsFrequencyWithTheColourOfItsLevelUnderEveryWindow)
{
    const struct {
        const char *window;
        double amplitude;
        double level; // on the colour scale
    } cases[] = {{"Rectangular", 1.0, 1.0},      {"Triangular", 1.0, 1.0},  {"Half-Triangular", 1.0, 1.0},
                 {"Hanning", 1.0, 1.0},          {"Hanning", 0.25, 0.8495}, {"hanning-periodic", 1.0, 1.0},
                 {"HAMMING", 1.0, 1.0},          {"Blackman", 1.0, 1.0},    {"Blackman-Harris", 0.25, 0.8495},
                 {"Blackman-Nuttall", 1.0, 1.0}, {"Nuttal", 1.0, 1.0},      {"Flat-Top", 1.0, 1.0},
                 {"Flat-Top", 0.01, 0.5}};
    for (const auto &c : cases) {
        const support::Folder folder;
        writeSound(folder / "sine.wav", sine(6000, c.amplitude, 9600));
        const Picture picture = spectrogram("sine.wav", "range=80; window=" + std::string(c.window), folder);
        for (const double across : {0.3, 0.5, 0.7})
            EXPECT_LE(distance(colorAt(picture, across, 0.25), colormapColor(c.level)), 4) // 6 of 24 kHz
                << c.window << ' ' << c.amplitude << " at " << across;
    }
}

TEST(Spectrogram, NothingShowsBesideASine)
{
    const support::Folder folder;
    writeSound(folder / "sine.wav", sine(6000, 1, 9600));
    const Picture picture = spectrogram("sine.wav", defaults, folder);
    for (const double up : {0.0, 0.1, 0.23, 0.27, 0.5, 0.75, 0.9, 1.0})
        EXPECT_LE(distance(colorAt(picture, 0.5, up), colormapColor(0)), 4) << up;
}

TEST(Spectrogram, ShowsTheChannelAskedFor)
{
    const support::Folder folder;
    const int channels = 8;
    const auto tone = sine(12000, 1.0, 9600);
    std::vector<float> samples(tone.size() * channels);
    for (size_t i = 0; i < tone.size(); ++i)
        samples[i * channels + 6] = tone[i];
    writeSound(folder / "eight.wav", samples, {.channels = channels});
    const Picture seventh = spectrogram("eight.wav", "channel=7", folder);
    EXPECT_LE(distance(colorAt(seventh, 0.5, 0.5), colormapColor(1)), 4);
    const Picture eighth = spectrogram("eight.wav", "channel=8", folder);
    EXPECT_EQ(colorsIn(eighth, left, top, width, height), 1U);
    EXPECT_EQ(colorAt(eighth, 0.5, 0.5), colormapColor(0));
}

TEST(Spectrogram, ReadsEveryFormatOfTheLibrary)
{
    const struct {
        const char *name;
        SoundFormat how;
        const char *config;
        const char *line;
    } cases[] = {
        {"a.wav", {48000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_U8}, "", "0.50 s, 0 to 24000 Hz, frames: 94"},
        {"b.wav",
         {96000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
         "size=2048",
         "0.25 s, 0 to 48000 Hz, frames: 47"},
        {"c.flac",
         {44100, 1, SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
         "hop=1000",
         "0.54 s, 0 to 22050 Hz, frames: 24"},
        {"d.ogg",
         {44100, 1, SF_FORMAT_OGG | SF_FORMAT_VORBIS},
         "hop=512",
         "0.54 s, 0 to 22050 Hz, frames: 47"},
        {"e.aiff",
         {11025, 1, SF_FORMAT_AIFF | SF_FORMAT_DOUBLE},
         "size=63; hop=100000",
         "2.18 s, 0 to 5512.5 Hz, frames: 1"},
        {"no ending",
         {8000, 1, SF_FORMAT_AU | SF_FORMAT_ULAW},
         "hop=12000",
         "3.00 s, 0 to 4000 Hz, frames: 2"}};
    for (const auto &c : cases) {
        const support::Folder folder;
        writeSound(folder / c.name, sine(c.how.rate / 4.0, 0.5, 24000, c.how.rate), c.how);
        const support::Outcome outcome = runProgram("spectrogram", {c.name, "p.png", c.config}, folder);
        EXPECT_EQ(outcome.status, 0) << c.name;
        EXPECT_EQ(outcome.err, "") << c.name;
        const std::string line = onlyLine(outcome.out);
        EXPECT_EQ(line.substr(0, line.find(", loudest")), std::string("p.png: ") + c.line);
        EXPECT_GT(colorsIn(readPicture(folder / "p.png"), left, top, width, height), 1U) << c.name;
    }
}

TEST(Spectrogram, FileShorterThanAFrameStillGivesAPicture)
{
    for (const size_t length : {1, 100, 1023}) {
        const support::Folder folder;
        writeSound(folder / "short.wav", std::vector<float>(length, 0.5F));
        const Picture picture = spectrogram("short.wav", defaults, folder);
        EXPECT_GT(colorsIn(picture, left, top, width, height) + (length == 1 ? 1U : 0U), 1U) << length;
        EXPECT_NE(colorAt(picture, 0.5, 0), colormapColor(0)) << length;
    }
}

TEST(Spectrogram, WorksAtTheEndsOfEveryRange)
{
    for (const char *config :
         {"size=2; window=Rectangular", "size=3", "size=4; hop=1", "size=1048576", "hop=2147483647",
          "range=1e-30", "range=1e30", "channel=1.9", "hop=1e2, size=\t+64 ,", "; window=\"Nuttal\""}) {
        const support::Folder folder;
        writeSound(folder / "sine.wav", sine(6000, 0.9, 4800));
        const Picture picture = spectrogram("sine.wav", config, folder);
        EXPECT_EQ(picture.height, 538) << config;
    }
}

TEST(Spectrogram, SamplesThatAreNotFiniteAreTakenAsZero)
{
    const support::Folder folder;
    auto samples = sine(6000, 0.5, 48000);
    const std::vector<size_t> places{0, 1, 20000, 20001, 47999};
    for (const size_t place : places)
        samples[place] = 0;
    writeSound(folder / "zero.wav", samples);
    const Picture expected = spectrogram("zero.wav", defaults, folder);

    const float inf = std::numeric_limits<float>::infinity();
    const float values[] = {inf, -inf, std::numeric_limits<float>::quiet_NaN(), -inf, inf};
    for (size_t i = 0; i < places.size(); ++i)
        samples[places[i]] = values[i];
    writeSound(folder / "zero.wav", samples);
    const support::Outcome outcome = runProgram("spectrogram", {"zero.wav", "p.png", defaults}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "zero.wav: 5 samples are not finite; they were taken as 0\n");
    EXPECT_EQ(readPicture(folder / "p.png").points, expected.points);
}

TEST(Spectrogram, SamplesFarAboveFullScaleHaveTheTopColour)
{
    const support::Folder folder;
    for (const float amplitude : {2.0F, 1e10F, 1e18F}) {
        writeSound(folder / "loud.wav", sine(6000, amplitude, 9600));
        const Picture picture = spectrogram("loud.wav", defaults, folder);
        EXPECT_EQ(colorAt(picture, 0.5, 0.25), colormapColor(1)) << amplitude;
    }
}

// 2000 frames a column; a mean over them would lose the click.
TEST(Spectrogram, ClickInALongFileStaysVisible)
{
    const support::Folder folder;
    std::vector<float> samples(3200000, 0.0F);
    samples[1600000] = 1.0F;
    writeSound(folder / "click.wav", samples, {8000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_U8});
    const Picture picture = spectrogram("click.wav", "size=64; hop=16", folder);
    EXPECT_NE(colorAt(picture, 0.5, 0.5), colormapColor(0));
    EXPECT_EQ(colorAt(picture, 0.45, 0.5), colormapColor(0));
    EXPECT_EQ(colorAt(picture, 0.55, 0.5), colormapColor(0));
}

TEST(Spectrogram, LongFileTakesNoMoreMemoryThanAShortOne)
{
    const support::Folder folder;
    const SoundFormat how{8000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_U8};
    writeSound(folder / "ten seconds.wav", std::vector<float>(80000, 0.1F), how);
    writeSound(folder / "hour.wav", std::vector<float>(28800000, 0.1F), how);
    const long small = peakOfProgram("spectrogram", {"ten seconds.wav", "p.png", "hop=40000"}, folder);
    const long large = peakOfProgram("spectrogram", {"hour.wav", "p.png", "hop=40000"}, folder);
    EXPECT_LT(large, small + 8000); // the file as floats: 115200
}

TEST(Spectrogram, FileWhoseHeadDoesNotTellItsLengthIsCounted)
{
    const support::Folder folder;
    writeSound(folder / "a.flac", sine(6000, 0.5, 50000), {.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16});
    const Picture expected = spectrogram("a.flac", defaults, folder);
    // The head "fLaC", then a block of 4 + 34 bytes: its bits 108 to 143 are the number of frames, 0 for not
    // known.
    std::string bytes = support::readFile(folder / "a.flac");
    bytes[21] = static_cast<char>(bytes[21] & 0xf0);
    bytes.replace(22, 4, 4, '\0');
    support::writeFile(folder / "a.flac", bytes);
    EXPECT_EQ(spectrogram("a.flac", defaults, folder).points, expected.points);
}

TEST(Spectrogram, FileThatEndsEarlyIsShownWithANote)
{
    const support::Folder folder;
    writeHalfSound(folder / "a.flac");
    const support::Outcome outcome = runProgram("spectrogram", {"a.flac", "p.png"}, folder);
    EXPECT_EQ(outcome.status, 0);
    const std::string line = onlyLine(outcome.err);
    EXPECT_TRUE(line.starts_with("a.flac: ends after ")) << line;
    EXPECT_TRUE(line.ends_with(" of 100000 frames; the rest was taken as silence")) << line;
    const Picture picture = readPicture(folder / "p.png");
    EXPECT_NE(colorAt(picture, 0.2, 0.5), colormapColor(0));
    EXPECT_EQ(colorAt(picture, 0.8, 0.5), colormapColor(0));
}

TEST(Spectrogram, TitleTakesAnyFileName)
{
    std::string longName(250, 'x');
    for (const std::string &name :
         {std::string("two words.wav"), std::string("-dash"), std::string("line\nfeed"),
          std::string("\xff\xc0\xaf\xed\xa0\x80 not UTF-8"), std::string("ton \xc3\xa4.wav"), longName,
          std::string("\xe2\x82")}) {
        const support::Folder folder;
        writeSound(folder / name, sine(6000, 1, 4800));
        const Picture picture = spectrogram(name, defaults, folder);
        EXPECT_GT(colorsIn(picture, left, 10, width, 30), 10U) << name;
        EXPECT_EQ(colorsIn(picture, left + width + 1, 10, 100, 30), 1U) << name << " runs over";
    }
}
