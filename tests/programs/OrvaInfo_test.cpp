// What orva info tells of a sound.
#include "long_sounds.h"
#include "orva.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

TEST(OrvaInfo, TellsLengthAndLevelsInALineAFile)
{
    const support::Folder folder;
    writeSound(folder / "sine.wav", sine(1000, 0.5, 48000), {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16});
    writeSound(folder / "stereo.flac", {0.25f, -0.25f, 0.25f, -0.25f},
               {.rate = 8000, .channels = 2, .format = SF_FORMAT_FLAC | SF_FORMAT_PCM_24});
    writeSound(folder / "silent.wav", std::vector<float>(100));
    const support::Outcome outcome = orvaRun({"info", "sine.wav", "stereo.flac", "silent.wav"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out,
        "sine.wav: 48000 Hz, 1 channel, 1.000 s (48000 frames), WAV, 16 bit, peak -6.0 dB, rms -9.0 dB, "
        "DC 0.00000, clipped 0\n"
        "stereo.flac: 8000 Hz, 2 channels, 0.000 s (2 frames), FLAC, 24 bit, peak -12.0 dB, rms -12.0 dB, "
        "DC 0.00000, clipped 0\n"
        "silent.wav: 48000 Hz, 1 channel, 0.002 s (100 frames), WAV, 32 bit float, peak none, rms none, "
        "DC 0.00000, clipped 0\n");
}

TEST(OrvaInfo, WritesJsonWithEachChannel)
{
    const support::Folder folder;
    writeSound(folder / "a\n\"\xff.wav", {0.5f, 0.0f, 0.5f, 1.0f}, {.rate = 8000, .channels = 2});
    const support::Outcome outcome = orvaRun({"info", "--json", "a\n\"\xff.wav"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "{\"file\":\"a\\u000a\\\"\uFFFD.wav\",\"rate\":8000,\"channels\":2,\"frames\":2,"
                           "\"format\":\"WAV, 32 bit float\",\"notFinite\":0,"
                           "\"peak\":1,\"rms\":0.612372436,\"dc\":0.5,\"clipped\":1,\"each\":["
                           "{\"peak\":0.5,\"rms\":0.5,\"dc\":0.5,\"clipped\":0},"
                           "{\"peak\":1,\"rms\":0.707106781,\"dc\":0.5,\"clipped\":1}]}\n");
}

TEST(OrvaInfo, CountsWhatStandsAtTheEndsOfTheFormat)
{
    const support::Folder folder;
    const struct {
        int format, bits;
    } cases[] = {{SF_FORMAT_PCM_U8, 8},
                 {SF_FORMAT_PCM_16, 16},
                 {SF_FORMAT_PCM_24, 24},
                 {SF_FORMAT_PCM_32, 32},
                 {SF_FORMAT_DOUBLE, 32}};
    for (const auto &[format, bits] : cases) {
        const double full = std::ldexp(1.0, bits - 1);
        const auto least = static_cast<float>(full / (full - 1)); // libsndfile multiplies by full - 1
        writeSound(folder / "full.wav", {1.0f, -least, 0.98f, -0.98f}, {.format = SF_FORMAT_WAV | format});
        EXPECT_THAT(orvaRun({"info", "full.wav"}, folder).out, HasSubstr("clipped 2\n"))
            << std::hex << format;
    }
}

TEST(OrvaInfo, TellsWhatIsBrokenAndGoesOnWithTheRest)
{
    const support::Folder folder;
    putVoice(folder);
    writeSound(folder / "none.wav", {});
    support::writeFile(folder / "text.wav", "This is a text, and no sound at all.\n");
    support::writeFile(folder / "empty.wav", "");
    writeHalfSound(folder / "half.flac");
    std::filesystem::create_directory(folder.path / "folder.wav");
    writeSound(folder / "nan.wav", {0.5f, std::nanf(""), HUGE_VALF});
    const support::Outcome outcome = orvaRun({"info", "missing.wav", "none.wav", "text.wav", "empty.wav",
                                              "folder.wav", "half.flac", "nan.wav", "voice.wav"},
                                             folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 3) << outcome.out;
    EXPECT_THAT(outcome.out,
                HasSubstr("voice.wav: 48000 Hz, 1 channel, 1.428 s (68545 frames), WAV, 16 bit"));
    EXPECT_THAT(outcome.err,
                testing::MatchesRegex("orva info: missing.wav: No such file or directory\n"
                                      "orva info: none.wav: holds no samples\n"
                                      "orva info: text.wav: Format not recognised.\n"
                                      "orva info: empty.wav: is empty\n"
                                      "orva info: folder.wav: Is a directory\n"
                                      "half.flac: ends after [0-9]+ of 100000 frames; the rest is missing\n"
                                      "nan.wav: 2 samples are not finite; taken as 0\n"));
}

TEST(OrvaInfo, LongFilesRunInConstantMemory)
{
    expectConstantMemory("orva", {"info", "in.wav"}, 300, 2000);
}
