// orva spectrogram: what its pictures show, what it reads, and what it refuses.
#include "drawing/colormap.h"
#include "orva.h"
#include "picture.h"

#include <orva/ORVAutil.h>

#include <limits>

using orva::colormapColor;

namespace
{

// Where the panel stands in the picture.
constexpr int left = 84, top = 72, width = 804, height = 400;

using Words = std::vector<std::string>;

Picture spectrogram(const std::string &sound, const Words &options, const support::Folder &folder)
{
    Words words{"spectrogram", sound, "picture.png"};
    words.insert(words.end(), options.begin(), options.end());
    const support::Outcome outcome = orvaRun(words, folder);
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

TEST(OrvaSpectrogram, PictureOfTheRecordingHasItsSizeAndIsNotBlank)
{
    const support::Folder folder;
    const Picture picture = spectrogram(support::recordingPath(), {}, folder);
    EXPECT_EQ(picture.width, 1000);
    EXPECT_EQ(picture.height, 538);
    EXPECT_GT(colorsIn(picture, left, top, width, height), 200U);
    EXPECT_GT(colorsIn(picture, 0, 0, picture.width, top), 10U) << "title";
    EXPECT_GT(colorsIn(picture, 0, 0, left, picture.height), 10U) << "frequency axis";
    EXPECT_GT(colorsIn(picture, 0, top + height + 1, picture.width, 60), 10U) << "time axis";
    EXPECT_GT(colorsIn(picture, left + width + 1, top, 110, height), 200U) << "colour scale";
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"picture.png"});
}

TEST(OrvaSpectrogram, PictureHasTheNameOfTheSoundUnlessItIsGivenOne)
{
    const support::Folder folder;
    putVoice(folder);
    std::filesystem::create_directory(folder.path / "sub");
    std::filesystem::copy_file(folder.path / "voice.wav", folder.path / "sub/other.name.wav");
    const std::string out = orvaRun({"spectrogram", "sub/other.name.wav"}, folder).out;
    EXPECT_TRUE(out.starts_with("other.name.png: 1.43 s, 0 to 24000 Hz, frames: 268, loudest point: -"))
        << out;
    const Picture same = spectrogram(
        "voice.wav", {"--frame=1024", "--hop=256", "--range=90", "--window=hanning", "--channel=1"}, folder);
    EXPECT_EQ(colorsIn(same, left, top, width, height),
              colorsIn(readPicture(folder / "other.name.png"), left, top, width, height));
}

// A quarter of full scale is 12.04 dB below it; with a range of 80 dB, that is 0.8495 of the colour scale.
TEST(OrvaSpectrogram, SineStandsAtItsFrequencyWithTheColourOfItsLevelUnderEveryWindow)
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
        const Picture picture = spectrogram("sine.wav", {"--range=80", "--window", c.window}, folder);
        for (const double across : {0.3, 0.5, 0.7})
            EXPECT_LE(distance(colorAt(picture, across, 0.25), colormapColor(c.level)), 4) // 6 of 24 kHz
                << c.window << ' ' << c.amplitude << " at " << across;
    }
}

TEST(OrvaSpectrogram, NothingShowsBesideASine)
{
    const support::Folder folder;
    writeSound(folder / "sine.wav", sine(6000, 1, 9600));
    const Picture picture = spectrogram("sine.wav", {}, folder);
    for (const double up : {0.0, 0.1, 0.23, 0.27, 0.5, 0.75, 0.9, 1.0})
        EXPECT_LE(distance(colorAt(picture, 0.5, up), colormapColor(0)), 4) << up;
}

TEST(OrvaSpectrogram, ShowsTheChannelAskedFor)
{
    const support::Folder folder;
    const int channels = 8;
    const auto tone = sine(12000, 1.0, 9600);
    std::vector<float> samples(tone.size() * channels);
    for (size_t i = 0; i < tone.size(); ++i)
        samples[i * channels + 6] = tone[i];
    writeSound(folder / "eight.wav", samples, {.channels = channels});
    const Picture seventh = spectrogram("eight.wav", {"--channel=7"}, folder);
    EXPECT_LE(distance(colorAt(seventh, 0.5, 0.5), colormapColor(1)), 4);
    const Picture eighth = spectrogram("eight.wav", {"--channel=8"}, folder);
    EXPECT_EQ(colorsIn(eighth, left, top, width, height), 1U);
    EXPECT_EQ(colorAt(eighth, 0.5, 0.5), colormapColor(0));
}

TEST(OrvaSpectrogram, ReadsEveryFormatOfTheLibrary)
{
    const struct {
        const char *name;
        SoundFormat how;
        Words options;
        const char *line;
    } cases[] = {
        {"a.wav", {48000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_U8}, {}, "0.50 s, 0 to 24000 Hz, frames: 94"},
        {"b.wav",
         {96000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
         {"--frame=2048"},
         "0.25 s, 0 to 48000 Hz, frames: 47"},
        {"c.flac",
         {44100, 1, SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
         {"--hop=1000"},
         "0.54 s, 0 to 22050 Hz, frames: 24"},
        {"d.ogg",
         {44100, 1, SF_FORMAT_OGG | SF_FORMAT_VORBIS},
         {"--hop=512"},
         "0.54 s, 0 to 22050 Hz, frames: 47"},
        {"e.aiff",
         {11025, 1, SF_FORMAT_AIFF | SF_FORMAT_DOUBLE},
         {"--frame=63", "--hop=100000"},
         "2.18 s, 0 to 5512.5 Hz, frames: 1"},
        {"no ending",
         {8000, 1, SF_FORMAT_AU | SF_FORMAT_ULAW},
         {"--hop=12000"},
         "3.00 s, 0 to 4000 Hz, frames: 2"}};
    for (const auto &c : cases) {
        const support::Folder folder;
        writeSound(folder / c.name, sine(c.how.rate / 4.0, 0.5, 24000, c.how.rate), c.how);
        Words words{"spectrogram", c.name, "p.png"};
        words.insert(words.end(), c.options.begin(), c.options.end());
        const support::Outcome outcome = orvaRun(words, folder);
        EXPECT_EQ(outcome.status, 0) << c.name;
        EXPECT_EQ(outcome.err, "") << c.name;
        const std::string line = onlyLine(outcome.out);
        EXPECT_EQ(line.substr(0, line.find(", loudest")), std::string("p.png: ") + c.line);
        EXPECT_GT(colorsIn(readPicture(folder / "p.png"), left, top, width, height), 1U) << c.name;
    }
}

TEST(OrvaSpectrogram, FileShorterThanAFrameStillGivesAPicture)
{
    for (const size_t length : {1, 100, 1023}) {
        const support::Folder folder;
        writeSound(folder / "short.wav", std::vector<float>(length, 0.5F));
        const Picture picture = spectrogram("short.wav", {}, folder);
        EXPECT_GT(colorsIn(picture, left, top, width, height) + (length == 1 ? 1U : 0U), 1U) << length;
        EXPECT_NE(colorAt(picture, 0.5, 0), colormapColor(0)) << length;
    }
}

TEST(OrvaSpectrogram, WorksAtTheEndsOfEveryRange)
{
    for (const Words &options :
         {Words{"--frame=2", "--window=Rectangular"}, Words{"--frame=3"}, Words{"--frame=4", "--hop=1"},
          Words{"--frame=1048576"}, Words{"--hop=2147483647"}, Words{"--range=1"}, Words{"--range=1000"},
          Words{"--to=1000000"}, Words{"--from=0.0999"}, Words{"--from=0:00:0.05", "--to=0:00.05001"}}) {
        const support::Folder folder;
        writeSound(folder / "sine.wav", sine(6000, 0.9, 4800));
        const Picture picture = spectrogram("sine.wav", options, folder);
        EXPECT_EQ(picture.height, 538) << testing::PrintToString(options);
    }
}

TEST(OrvaSpectrogram, SamplesThatAreNotFiniteAreTakenAsZero)
{
    const support::Folder folder;
    auto samples = sine(6000, 0.5, 48000);
    const std::vector<size_t> places{0, 1, 20000, 20001, 47999};
    for (const size_t place : places)
        samples[place] = 0;
    writeSound(folder / "zero.wav", samples);
    const Picture expected = spectrogram("zero.wav", {}, folder);

    const float inf = std::numeric_limits<float>::infinity();
    const float values[] = {inf, -inf, std::numeric_limits<float>::quiet_NaN(), -inf, inf};
    for (size_t i = 0; i < places.size(); ++i)
        samples[places[i]] = values[i];
    writeSound(folder / "zero.wav", samples);
    const support::Outcome outcome = orvaRun({"spectrogram", "zero.wav", "p.png"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "zero.wav: 5 samples are not finite; taken as 0\n");
    EXPECT_EQ(readPicture(folder / "p.png").points, expected.points);
}

TEST(OrvaSpectrogram, SamplesFarAboveFullScaleHaveTheTopColour)
{
    const support::Folder folder;
    for (const float amplitude : {2.0F, 1e10F, 1e18F}) {
        writeSound(folder / "loud.wav", sine(6000, amplitude, 9600));
        const Picture picture = spectrogram("loud.wav", {}, folder);
        EXPECT_EQ(colorAt(picture, 0.5, 0.25), colormapColor(1)) << amplitude;
    }
}

// 2000 frames a column; a mean over them would lose the click.
TEST(OrvaSpectrogram, ClickInALongFileStaysVisible)
{
    const support::Folder folder;
    std::vector<float> samples(3200000, 0.0F);
    samples[1600000] = 1.0F;
    writeSound(folder / "click.wav", samples, {8000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_U8});
    const Picture picture = spectrogram("click.wav", {"--frame=64", "--hop=16"}, folder);
    EXPECT_GT(colorsIn(picture, left + width / 2 - 1, top, 3, height), 1U) << "the click";
    EXPECT_EQ(colorAt(picture, 0.45, 0.5), colormapColor(0));
    EXPECT_EQ(colorAt(picture, 0.55, 0.5), colormapColor(0));
}

TEST(OrvaSpectrogram, LongFileTakesNoMoreMemoryThanAShortOne)
{
    const support::Folder folder;
    const SoundFormat how{8000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_U8};
    writeSound(folder / "ten seconds.wav", std::vector<float>(80000, 0.1F), how);
    writeSound(folder / "hour.wav", std::vector<float>(28800000, 0.1F), how);
    const long small =
        peakOfProgram("orva", {"spectrogram", "ten seconds.wav", "p.png", "--hop=40000"}, folder);
    const long large = peakOfProgram("orva", {"spectrogram", "hour.wav", "p.png", "--hop=40000"}, folder);
    EXPECT_LT(large, small + 8000); // the file as floats: 115200
}

TEST(OrvaSpectrogram, FileWhoseHeadDoesNotTellItsLengthIsShownWhole)
{
    const support::Folder folder;
    writeSound(folder / "a.flac", sine(6000, 0.5, 50000), {.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16});
    const Picture expected = spectrogram("a.flac", {}, folder);
    // The head "fLaC", then a block of 4 + 34 bytes: its bits 108 to 143 are the number of frames, 0 for not
    // known.
    std::string bytes = support::readFile(folder / "a.flac");
    bytes[21] = static_cast<char>(bytes[21] & 0xf0);
    bytes.replace(22, 4, 4, '\0');
    support::writeFile(folder / "a.flac", bytes);
    EXPECT_EQ(spectrogram("a.flac", {}, folder).points, expected.points);
}

TEST(OrvaSpectrogram, FileThatEndsEarlyIsShownAsFarAsItGoesWithANote)
{
    const support::Folder folder;
    writeHalfSound(folder / "a.flac");
    const support::Outcome outcome = orvaRun({"spectrogram", "a.flac", "p.png"}, folder);
    EXPECT_EQ(outcome.status, 0);
    const std::string line = onlyLine(outcome.err);
    EXPECT_TRUE(line.starts_with("a.flac: ends after ")) << line;
    EXPECT_TRUE(line.ends_with(" of 100000 frames; the rest is missing")) << line;
    EXPECT_NE(colorAt(readPicture(folder / "p.png"), 0.95, 0.5), colormapColor(0));
}

TEST(OrvaSpectrogram, TitleTakesAnyFileName)
{
    std::string longName(250, 'x');
    for (const std::string &name :
         {std::string("two words.wav"), std::string("-dash"), std::string("line\nfeed"),
          std::string("\xff\xc0\xaf\xed\xa0\x80 not UTF-8"), std::string("ton \xc3\xa4.wav"), longName,
          std::string("\xe2\x82")}) {
        const support::Folder folder;
        writeSound(folder / name, sine(6000, 1, 4800));
        const Picture picture = spectrogram("./" + name, {}, folder);
        EXPECT_GT(colorsIn(picture, left, 10, width, 30), 10U) << name;
        EXPECT_EQ(colorsIn(picture, left + width + 1, 10, 100, 30), 1U) << name << " runs over";
    }
}

// One channel below the other, 260 points high each, and 66 between them.
TEST(OrvaSpectrogram, ShowsAllChannels)
{
    const support::Folder folder;
    const auto low = sine(6000, 1, 9600);
    const auto high = sine(18000, 1, 9600);
    std::vector<float> both;
    for (size_t i = 0; i < low.size(); ++i)
        both.insert(both.end(), {low[i], high[i]});
    writeSound(folder / "two.wav", both, {.channels = 2});
    for (const Words &options : {Words{}, Words{"--channel=all"}}) {
        const Picture picture = spectrogram("two.wav", options, folder);
        EXPECT_EQ(picture.height, 72 + 2 * (260 + 66));
        for (int channel = 0; channel < 2; ++channel)
            for (const double up : {0.25, 0.75}) {
                const int y = 72 + channel * (260 + 66) + static_cast<int>(260 * (1 - up));
                const bool shows = (channel == 0) == (up < 0.5);
                EXPECT_LE(distance(picture.at(left + width / 2, y), colormapColor(shows ? 1 : 0)), 8)
                    << channel << ' ' << up;
            }
    }
}

TEST(OrvaSpectrogram, ScalesOfHearingSpreadLowFrequencies)
{
    const support::Folder folder;
    writeSound(folder / "sine.wav", sine(1000, 1, 48000));
    for (const auto &[scale, up] :
         {std::pair{"linear", 1000 / 24000.0},
          std::pair{"mel", ORVAUTIL_Freq2Mels(1000) / ORVAUTIL_Freq2Mels(24000)},
          std::pair{"bark", ORVAUTIL_Freq2Bark(1000) / ORVAUTIL_Freq2Bark(24000)}}) {
        const Picture picture =
            spectrogram("sine.wav", {"--frame=4800", "--range=60", "--scale", scale}, folder);
        EXPECT_LE(distance(colorAt(picture, 0.5, up), colormapColor(1)), 8) << scale;
        for (const double away : {-0.035, 0.05})
            EXPECT_LE(distance(colorAt(picture, 0.5, up + away), colormapColor(0)), 8)
                << scale << ' ' << away;
    }
}

// A second of silence, one with a sine, one of silence.
TEST(OrvaSpectrogram, ShowsTheTimeAskedFor)
{
    const support::Folder folder;
    std::vector<float> samples(8000, 0.0F);
    const auto tone = sine(2000, 1, 8000, 8000);
    samples.insert(samples.end(), tone.begin(), tone.end());
    samples.resize(24000);
    writeSound(folder / "late.wav", samples, {.rate = 8000});
    const Picture part = spectrogram("late.wav", {"--from=0.5", "--to=0:01.5"}, folder);
    EXPECT_EQ(colorAt(part, 0.25, 0.5), colormapColor(0));
    EXPECT_LE(distance(colorAt(part, 0.75, 0.5), colormapColor(1)), 4);
    const Picture middle = spectrogram("late.wav", {"--from=1.2", "--to=1.8"}, folder);
    for (const double across : {0.0, 0.5, 0.99})
        EXPECT_LE(distance(colorAt(middle, across, 0.5), colormapColor(1)), 4) << across;
    EXPECT_LE(distance(colorAt(middle, 0.0, 0.9), colormapColor(0)), 4) << "no click where it begins";
    const support::Outcome outcome = orvaRun({"spectrogram", "late.wav", "--from=2.5", "--to=9"}, folder);
    EXPECT_EQ(outcome.out, "late.png: 0.50 s, 0 to 4000 Hz, frames: 16, nothing above -90 dB\n");
}

TEST(OrvaSpectrogram, PipesGiveThePictureOfTheFile)
{
    const support::Folder folder;
    putVoice(folder);
    const auto points = [&](const char *line) {
        const support::Outcome outcome = orvaShell(line, folder);
        EXPECT_EQ(outcome.status, 0) << line << outcome.err;
        EXPECT_EQ(outcome.err, "") << line;
        const Picture picture = readPicture(folder / "p.png");
        std::vector<uint32_t> panel;
        for (int y = top; y < top + height; ++y)
            for (int x = left; x < left + width; ++x)
                panel.push_back(picture.at(x, y));
        return panel;
    };
    const auto expected = points("orva spectrogram voice.wav p.png");
    EXPECT_EQ(points("orva spectrogram - p.png <voice.wav"), expected);
    EXPECT_EQ(points("cat voice.wav | orva spectrogram - - >p.png"), expected);
    EXPECT_EQ(points("orva filter voice.wav - 'biquads=[0 0 1 0 0]' | orva spectrogram - p.png"), expected);
    EXPECT_EQ(points("orva filter voice.wav - 'biquads=[0 0 1 0 0]' --raw s16 | "
                     "orva spectrogram --raw s16:48000:1 - p.png"),
              expected);
}

TEST(OrvaSpectrogram, RefusesInOneLineAndWritesNothing)
{
    const support::Folder folder;
    putVoice(folder);
    writeSound(folder / "two.wav", std::vector<float>(200), {.channels = 2});
    writeSound(folder / "many.wav", std::vector<float>(330), {.channels = 33});
    writeSound(folder / "none.wav", {});
    std::filesystem::create_directory(folder.path / "folder.png");
    const std::string name = ": the name of a picture ends in .png, .svg or .pdf";
    const std::string time = "' is not a number of seconds, or such as 1:30 or 0:01:30.5";
    const struct {
        Words words;
        int status;
        std::string says;
    } cases[] = {
        {{"missing.wav"}, 1, "missing.wav: No such file or directory"},
        {{"none.wav"}, 1, "none.wav: holds no samples"},
        {{"voice.wav", "p.jpg"}, 2, "p.jpg" + name},
        {{"voice.wav", "voice.wav"}, 2, "voice.wav" + name},
        {{"voice.wav", "folder.png"}, 1, "folder.png: Is a directory"},
        {{"voice.wav", "no/p.png"}, 1, "no/p.png: No such file or directory"},
        {{"-"}, 2, "the picture of standard input needs a name"},
        {{"voice.wav", "--channel=2"}, 1, "voice.wav: has 1 channel, so there is no channel 2"},
        {{"two.wav", "--channel=3"}, 1, "two.wav: has 2 channels, so there is no channel 3"},
        {{"many.wav"}, 1, "many.wav: has 33 channels; name one by --channel"},
        {{"voice.wav", "--channel=0"}, 2, "channel '0' is not 'all' or a number, 1 for the first"},
        {{"voice.wav", "--channel=1x"}, 2, "channel '1x' is not 'all' or a number, 1 for the first"},
        {{"voice.wav", "--from=1.43"}, 1, "voice.wav: ends before --from"},
        {{"voice.wav", "--from=2", "--to=1"}, 2, "--to must be after --from"},
        {{"voice.wav", "--from=-1"}, 2, "time '-1" + time},
        {{"voice.wav", "--from=1:60"}, 2, "time '1:60" + time},
        {{"voice.wav", "--to=1:2:3:4"}, 2, "time '1:2:3:4" + time},
        {{"voice.wav", "--to=1.5:3"}, 2, "time '1.5:3" + time},
        {{"voice.wav", "--window=Hann"},
         2,
         "there is no window 'Hann'; the windows are Rectangular, Triangular, Half-Triangular, Hanning, "
         "Hanning-Periodic, Hamming, Blackman, Blackman-Harris, Blackman-Nuttall, Nuttal, Flat-Top"},
        {{"voice.wav", "--frame=2"}, 2, "the window has no gain with frames of 2 samples"},
        {{"voice.wav", "--size=9"},
         2,
         "size '9' is not a width and a height in cm from 1 to 200, such as 16x9"},
        {{"voice.wav", "--size=3x3"}, 2, "--size is too small; this picture needs 5.4x3.4 at least"},
    };
    for (const auto &[words, status, says] : cases) {
        Words all{"spectrogram"};
        all.insert(all.end(), words.begin(), words.end());
        expectRefused(all, folder, status, "orva spectrogram: " + says);
    }
}

TEST(OrvaSpectrogram, FullDiskLeavesTheOldPicture)
{
    const support::Folder folder;
    support::writeFile(folder / "p.png", "an older picture");
    const support::Outcome outcome =
        runProgramOnFullDisk("orva", {"spectrogram", support::recordingPath(), "p.png"}, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "orva spectrogram: p.png: File too large\n");
    EXPECT_EQ(folder.entries(), Words{"p.png"});
    EXPECT_EQ(support::readFile(folder / "p.png"), "an older picture");
}
