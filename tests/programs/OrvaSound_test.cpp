// Sound that the commands of orva read and write: formats, streams, metadata, full scale.
#include "orva.h"
#include "support/bits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace
{

using testing::HasSubstr;

// The names that a wrong one is answered with.
std::vector<std::string> formatNames()
{
    const support::Folder folder;
    putVoice(folder);
    const std::string says = orvaRun({"resample", "voice.wav", "x", "--rate=8k", "--format=?"}, folder).err;
    std::string list = says.substr(says.find("there are ") + 10);
    std::replace(list.begin(), list.end(), ',', ' ');
    std::istringstream words(list);
    return {std::istream_iterator<std::string>(words), {}};
}

// Every format that libsndfile writes into one file.
std::set<int> majors()
{
    std::set<int> all;
    int count = 0;
    sf_command(nullptr, SFC_GET_FORMAT_MAJOR_COUNT, &count, sizeof count);
    for (int i = 0; i < count; ++i) {
        SF_FORMAT_INFO info{};
        info.format = i;
        sf_command(nullptr, SFC_GET_FORMAT_MAJOR, &info, sizeof info);
        if (info.format != SF_FORMAT_SD2)
            all.insert(info.format);
    }
    return all;
}

std::vector<float> stereo(size_t frames)
{
    support::Random random;
    std::vector<float> samples = random.noise(2 * frames);
    for (float &sample : samples)
        sample *= 0.25f;
    return samples;
}

int formatOf(const std::string &path)
{
    SF_INFO info{};
    support::readSamples(path, info);
    return info.format & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK);
}

} // namespace

TEST(OrvaSound, EveryFormatIsWrittenByItsNameAndReadBack)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", sine(440, 0.5, 16000, 16000),
               {.rate = 16000, .format = SF_FORMAT_WAV | SF_FORMAT_PCM_16});
    std::set<int> seen{SF_FORMAT_RAW};
    const auto names = formatNames();
    ASSERT_GT(names.size(), 20u);
    for (const auto &name : names) {
        const std::string upper = "O." + name;
        const support::Outcome outcome = orvaRun({"resample", "in.wav", upper, "--rate=8k"}, folder);
        EXPECT_EQ(outcome.status, 0) << name << ": " << outcome.err;
        SF_INFO info{};
        if (name != "raw") {
            const auto samples = support::readSamples(folder / upper, info);
            seen.insert(info.format & SF_FORMAT_TYPEMASK);
            EXPECT_NEAR(static_cast<double>(samples.size()), 8000, 2400) << name; // some fill up a last block
        }
        support::Outcome told =
            orvaRun({"resample", "in.wav", "other", "--rate=8k", "--format", name}, folder);
        EXPECT_EQ(told.status, 0) << name << ": " << told.err;
    }
    for (const int major : majors())
        EXPECT_EQ(seen.count(major), 1u) << std::hex << major;
}

TEST(OrvaSound, SamplesAreStoredAsToldOrLikeTheInput)
{
    const support::Folder folder;
    writeSound(folder / "f.wav", stereo(1000), {.channels = 2});
    writeSound(folder / "s.flac", stereo(1000), {.channels = 2, .format = SF_FORMAT_FLAC | SF_FORMAT_PCM_24});
    writeSound(folder / "u.wav", stereo(1000), {.channels = 2, .format = SF_FORMAT_WAV | SF_FORMAT_PCM_U8});
    const struct {
        const char *in, *out;
        std::vector<std::string> how;
        int format;
    } cases[] = {{"f.wav", "o.WAV", {}, SF_FORMAT_WAV | SF_FORMAT_FLOAT},
                 {"f.wav", "o.flac", {}, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
                 {"f.wav", "o.Wav", {"--bits=16"}, SF_FORMAT_WAV | SF_FORMAT_PCM_16},
                 {"f.wav", "o.wav", {"--bits=double"}, SF_FORMAT_WAV | SF_FORMAT_DOUBLE},
                 {"f.wav", "o.aiff", {"--bits=8"}, SF_FORMAT_AIFF | SF_FORMAT_PCM_S8},
                 {"s.flac", "o.wav", {}, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
                 {"s.flac", "o.wav", {"--format=FLAC"}, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
                 {"u.wav", "o.flac", {}, SF_FORMAT_FLAC | SF_FORMAT_PCM_S8},
                 {"u.wav", "o.ogg", {}, SF_FORMAT_OGG | SF_FORMAT_VORBIS},
                 {"u.wav", "o.opus", {}, SF_FORMAT_OGG | SF_FORMAT_OPUS}};
    for (const auto &[in, out, how, format] : cases) {
        std::vector<std::string> words{"resample", in, out, "--rate=16k"};
        words.insert(words.end(), how.begin(), how.end());
        const support::Outcome outcome = orvaRun(words, folder);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        const int got = formatOf(folder / out);
        const int plain =
            (got & SF_FORMAT_TYPEMASK) == SF_FORMAT_WAVEX ? SF_FORMAT_WAV | (got & SF_FORMAT_SUBMASK) : got;
        EXPECT_EQ(plain, format) << in << ' ' << out << std::hex << ' ' << got;
    }
    for (const auto &[how, says] :
         {std::pair{"--bits=12", "--bits 12 is not 8, 16, 24, 32, float or double"},
          {"--format=flak", "there is no format 'flak', did you mean 'flac'?; there are wav, "},
          {"--format=mp3 --bits=24", "o.wav: the format mp3 does not store samples of --bits 24"},
          {"--raw=s12", "raw format 's12' is not like s16, f32be or s16:48000:2"}}) {
        const support::Outcome outcome =
            orvaShell(std::string("orva resample f.wav o.wav --rate 8k ") + how, folder);
        EXPECT_EQ(outcome.status, 2) << how;
        EXPECT_THAT(outcome.err, HasSubstr(says));
    }
}

TEST(OrvaSound, CommandsPipeIntoEachOther)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", stereo(9000), {.channels = 2, .format = SF_FORMAT_WAV | SF_FORMAT_PCM_16});
    orvaShell("orva resample in.wav direct.wav --rate 16k", folder);
    SF_INFO info{};
    const auto direct = support::readSamples(folder / "direct.wav", info);
    for (const char *line : {
             "orva resample in.wav - --rate 16k >o.wav",
             "orva resample - - --rate 16k <in.wav | cat >o.wav",
             "cat in.wav | orva resample - o.wav --rate 16k",
             "cat in.wav | orva resample - - --rate 16k --format flac | cat >o.wav",
             "cat in.wav | orva resample - - --rate 16k --format au | cat >o.wav",
             "mkfifo pipe; orva resample in.wav pipe --format wav --rate 16k >line & sleep 0.1; cat pipe "
             ">o.wav; wait",
             "orva resample in.wav - --rate 16k --raw s16be | orva resample - o.wav --raw s16be:32000:2 "
             "--rate 32k "
             "--hold || orva resample in.wav o.wav --rate 16k",
         }) {
        std::filesystem::remove(folder / "o.wav");
        const support::Outcome outcome = orvaShell(line, folder);
        EXPECT_EQ(outcome.status, 0) << line << '\n' << outcome.err;
        EXPECT_TRUE(support::sameBits(support::readSamples(folder / "o.wav", info), direct)) << line;
        EXPECT_EQ(info.samplerate, 16000);
        EXPECT_EQ(info.channels, 2);
    }
    const support::Outcome raw =
        orvaShell("orva resample in.wav - --rate 16k --raw f32be | orva info - --raw f32be:16000:2", folder);
    EXPECT_THAT(raw.out, HasSubstr("standard input: 16000 Hz, 2 channels, 0.188 s (3000 frames), RAW"));
    EXPECT_EQ(orvaShell("orva info - --raw s16 <in.wav", folder).err,
              "orva info: --raw for standard input needs a rate, such as s16:48000:2\n");
    const support::Outcome cutShort =
        orvaShell("head -c 9000 in.wav | orva resample - o.wav --rate 16k", folder);
    EXPECT_EQ(cutShort.err, "standard input: ends after 2239 of 9000 frames; the rest is missing\n");
    EXPECT_EQ(orvaShell("orva info - <in.wav", folder).out.find("standard input: 48000 Hz"), 0u);
    EXPECT_EQ(orvaShell("orva info - </dev/null", folder).err, "orva info: standard input: is empty\n");
}

TEST(OrvaSound, TextsOfTheInputAreCarriedOver)
{
    const support::Folder folder;
    const std::string path = folder / "in.wav";
    SF_INFO info{.frames = 0,
                 .samplerate = 48000,
                 .channels = 1,
                 .format = SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                 .sections = 0,
                 .seekable = 0};
    SNDFILE *file = sf_open(path.c_str(), SFM_WRITE, &info);
    sf_set_string(file, SF_STR_TITLE, "A title");
    sf_set_string(file, SF_STR_ARTIST, "Somebody");
    sf_set_string(file, SF_STR_COMMENT, "Gr\u00fc\u00dfe");
    const auto samples = sine(440, 0.5, 4800);
    sf_write_float(file, samples.data(), 4800);
    sf_close(file);
    for (const char *name : {"o.wav", "o.flac", "o.aiff", "o.ogg", "o.caf"}) {
        ASSERT_EQ(orvaRun({"resample", "in.wav", name, "--rate=16k"}, folder).status, 0);
        SNDFILE *written = sf_open((folder / name).c_str(), SFM_READ, &info);
        ASSERT_NE(written, nullptr);
        EXPECT_STREQ(sf_get_string(written, SF_STR_TITLE), "A title") << name;
        EXPECT_STREQ(sf_get_string(written, SF_STR_ARTIST), "Somebody") << name;
        EXPECT_STREQ(sf_get_string(written, SF_STR_COMMENT), "Gr\u00fc\u00dfe") << name;
        sf_close(written);
    }
}

TEST(OrvaSound, TellsWhatIsCutAndTheGainThatAvoidsIt)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", sine(440, 0.5, 48000), {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16});
    support::Outcome outcome = orvaRun({"resample", "in.wav", "o.wav", "--rate=16k", "--gain=12"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err,
                testing::MatchesRegex(
                    "o.wav: [0-9]+ samples are cut at full scale; --gain [0-9.]+ would avoid it\n"));
    const std::string gain = outcome.err.substr(outcome.err.find("--gain ") + 7, 3);
    EXPECT_NEAR(std::stod(gain), 6, 0.11);
    outcome = orvaRun({"resample", "in.wav", "o.wav", "--rate=16k", "--gain", gain}, folder);
    EXPECT_EQ(outcome.err, "");
    outcome = orvaRun({"resample", "in.wav", "o.wav", "--rate=16k", "--gain=12", "--bits=float"}, folder);
    EXPECT_EQ(outcome.err, "") << "floats are not cut";
}

TEST(OrvaSound, TellsWhereAFormatCannotKeepTheRate)
{
    const support::Folder folder;
    putVoice(folder);
    SF_INFO info{};
    for (const std::string name : {"o.htk", "o.sds", "o.au"}) {
        const support::Outcome outcome = orvaRun({"resample", "voice.wav", name, "--rate=44.1k"}, folder);
        EXPECT_EQ(outcome.status, 0);
        support::readSamples(folder / name, info);
        EXPECT_EQ(info.samplerate == 44100, name == "o.au") << name;
        EXPECT_EQ(outcome.err, info.samplerate == 44100 ? ""
                                                        : name + ": its format keeps the rate as " +
                                                              std::to_string(info.samplerate) + " Hz\n");
    }
    expectRefused({"resample", "voice.wav", "o.wve", "--rate=44.1k"}, folder, 2,
                  "orva resample: o.wve: the format wve does not store 1 channels at 44100 Hz");
}
