// Sound files read and written, and cut into frames.
#include "sounds.h"
#include "support/bits.h"
#include "support/folder.h"
#include "support/random.h"
#include "support/recording.h"

extern "C" {
#include "common/frames.h"
#include "common/sound.h"
}

#include <gtest/gtest.h>

namespace
{

// Writes samples, in blocks of different sizes, in the likeness of a file of a given format, and tells the
// format used.
SF_INFO written(const support::Folder &folder, int likeFormat, const std::vector<float> &samples,
                int channels)
{
    Sound *like =
        soundOpen(writeSound(folder / "like", sine(1000, 0.5, 4000), {.format = likeFormat}).c_str());
    const std::string path = folder / "new.wav";
    SoundOutput *output = soundCreate(path.c_str(), like, 44100, channels);
    const auto count = static_cast<int64_t>(samples.size()) / channels;
    for (int64_t done = 0, block = 1; done < count; done += block, block *= 3)
        EXPECT_TRUE(soundWrite(output, samples.data() + done * channels, std::min(block, count - done)));
    EXPECT_TRUE(soundFinish(output, true));
    soundClose(like);
    SF_INFO info;
    support::readSamples(path, info);
    return info;
}

} // namespace

TEST(SoundRead, GivesOneChannelOrAllInBlocksOfAnySize)
{
    const support::Folder folder;
    support::Random random;
    const int channels = 3;
    const size_t length = 10000;
    const auto samples = random.noise(length * channels);
    const std::string path = writeSound(folder / "three.wav", samples, {.channels = channels});
    for (int channel = 0; channel <= channels; ++channel) {
        Sound *input = soundOpen(path.c_str());
        ASSERT_NE(input, nullptr);
        EXPECT_EQ(input->length, static_cast<int64_t>(length));
        const size_t width = channel == 0 ? channels : 1;
        std::vector<float> read;
        while (input->position < input->length) {
            std::vector<float> block(width * static_cast<size_t>(random.integer(1, 9000)), 7.0F);
            const auto asked = static_cast<int64_t>(block.size() / width);
            const int64_t expected = std::min(asked, input->length - input->position);
            EXPECT_EQ(soundRead(input, channel, block.data(), asked), expected);
            read.insert(read.end(), block.begin(), block.end());
        }
        for (size_t i = 0; i < read.size(); ++i) {
            const size_t place = channel == 0 ? i : i * channels + static_cast<size_t>(channel) - 1;
            const float expected = place < samples.size() ? samples[place] : 0.0F;
            ASSERT_EQ(read[i], expected) << "channel " << channel << " at " << i;
        }
        soundClose(input);
    }
}

TEST(SoundWrite, KeepsTheSampleFormatOfItsModelWhereAWavFileHasIt)
{
    const struct {
        int like;
        int subtype;
    } cases[] = {{SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_PCM_16},
                 {SF_FORMAT_FLAC | SF_FORMAT_PCM_24, SF_FORMAT_PCM_24},
                 {SF_FORMAT_AIFF | SF_FORMAT_DOUBLE, SF_FORMAT_DOUBLE},
                 {SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_FLOAT},
                 {SF_FORMAT_OGG | SF_FORMAT_VORBIS, SF_FORMAT_FLOAT}};
    for (const auto &c : cases) {
        const support::Folder folder;
        const SF_INFO info = written(folder, c.like, sine(440, 0.5, 2000), 2);
        EXPECT_EQ(info.format & SF_FORMAT_TYPEMASK, SF_FORMAT_WAVEX) << std::hex << c.like;
        EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, c.subtype) << std::hex << c.like;
        EXPECT_EQ(info.channels, 2);
        EXPECT_EQ(info.samplerate, 44100);
        EXPECT_EQ(info.frames, 1000);
        EXPECT_EQ(folder.entries(), (std::vector<std::string>{"like", "new.wav"}));
    }
}

TEST(SoundWrite, FloatsComeBackAndIntegersSaturate)
{
    const support::Folder folder;
    support::Random random;
    SF_INFO info;
    const auto samples = random.noise(3000);
    written(folder, SF_FORMAT_WAV | SF_FORMAT_FLOAT, samples, 1);
    EXPECT_TRUE(support::sameBits(support::readSamples(folder / "new.wav", info), samples));
    written(folder, SF_FORMAT_WAV | SF_FORMAT_PCM_16, {1.5F, -1.5F, 0.0F}, 1);
    const auto clipped = support::readSamples(folder / "new.wav", info);
    EXPECT_EQ(clipped, (std::vector<float>{32767 / 32768.0F, -1.0F, 0.0F}));
}

TEST(SoundWrite, NothingAppearsBeforeItIsComplete)
{
    const support::Folder folder;
    const std::string path = folder / "new.wav";
    support::writeFile(path, "older");
    Sound *like = soundOpen(support::recordingPath());
    SoundOutput *output = soundCreate(path.c_str(), like, 48000, 1);
    const float samples[] = {1, 2, 3};
    EXPECT_TRUE(soundWrite(output, samples, 3));
    EXPECT_EQ(support::readFile(path), "older");
    EXPECT_FALSE(soundFinish(output, false));
    soundClose(like);
    EXPECT_EQ(support::readFile(path), "older");
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"new.wav"});
}

TEST(SoundWrite, RefusesWhatIsNoWavFile)
{
    const support::Folder folder;
    Sound *like = soundOpen(support::recordingPath());
    testing::internal::CaptureStderr();
    EXPECT_EQ(soundCreate((folder / "new.mp3").c_str(), like, 48000, 1), nullptr);
    EXPECT_EQ(soundCreate((folder / "no/new.wav").c_str(), like, 48000, 1), nullptr);
    EXPECT_EQ(soundCreate((folder / "new.wav").c_str(), like, 48000, 0), nullptr);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 3) << said;
    EXPECT_FALSE(soundFinish(nullptr, true));
    soundClose(like);
    EXPECT_TRUE(folder.entries().empty());
}

TEST(Frames, AreCentredOnEveryHopAndPaddedWithZeros)
{
    const support::Folder folder;
    support::Random random;
    for (int round = 0; round < 40; ++round) {
        const auto length = random.integer(1, 3000);
        const auto size = static_cast<int32_t>(random.integer(1, 600));
        const auto hop = static_cast<int32_t>(random.integer(1, 1500));
        const auto samples = random.noise(static_cast<size_t>(length));
        Sound *input = soundOpen(writeSound(folder / "noise.wav", samples).c_str());
        Frames reader = framesBegin(input, 1, size, hop);
        std::vector<float> frame(static_cast<size_t>(size));
        int64_t number = 0;
        double edge = 0;
        for (; framesNext(&reader, frame.data()); ++number) {
            std::vector<float> expected;
            for (int64_t i = 0; i < size; ++i) {
                const int64_t place = number * hop - size / 2 + i;
                expected.push_back(place >= 0 && place < length ? samples[static_cast<size_t>(place)] : 0.0F);
            }
            ASSERT_TRUE(support::sameBits(frame, expected))
                << length << ' ' << size << ' ' << hop << ' ' << number;
            if (number > 0) {
                EXPECT_EQ(framesLeft(&reader), edge); // to the last bit: one begins where the other ends
            }
            edge = framesRight(&reader);
        }
        EXPECT_EQ(number, (length + hop - 1) / hop);
        EXPECT_EQ(edge, 1.0);
        framesEnd(&reader);
        soundClose(input);
    }
}
