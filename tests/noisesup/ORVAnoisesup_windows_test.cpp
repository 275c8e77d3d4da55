// The DLL of the suppressor, which is looked for beside the library when the first suppressor is made.
#include "support/folder.h"
#include "support/log.h"

#include <orva/ORVAnoisesup.h>
#include <orva/ORVAwinfnc.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include <windows.h>

using support::Message;

namespace
{

const std::filesystem::path beside =
    std::filesystem::path(LIBORVA).parent_path() / "libwebrtc_audio_processing-1.dll";

const std::vector<Message> missing = {
    support::error("ORVA_CreateNoiseSup: libwebrtc_audio_processing-1.dll is missing beside liborva.")};

// The messages of a creation that fails.
std::vector<Message> refusalAt(int32_t sampleRate)
{
    const support::Log log;
    EXPECT_EQ(ORVA_CreateNoiseSupEx(sampleRate, 2), nullptr);
    return log.messages;
}

void putBeside(const char *dll)
{
    ASSERT_TRUE(CopyFileA(dll, beside.string().c_str(), FALSE));
}

// The stand-in turns the sign of each sample.
void useStandIn()
{
    const support::Log log;
    ORVA_NOISESUP *suppressor = ORVA_CreateNoiseSupEx(8000, 2);
    ASSERT_NE(suppressor, nullptr);
    std::vector<int16_t> input(80), output(80);
    for (size_t i = 0; i < input.size(); ++i)
        input[i] = static_cast<int16_t>(100 * i);
    EXPECT_EQ(ORVA_DoNoiseSup16(suppressor, input.data(), output.data()), 1);
    for (size_t i = 0; i < input.size(); ++i)
        EXPECT_EQ(output[i], -input[i]) << i;
    EXPECT_TRUE(ORVA_SetNoiseSupIntensity(suppressor, 3));
    EXPECT_FALSE(ORVA_SetNoiseSupIntensity(suppressor, 4));
    EXPECT_TRUE(ORVA_DestroyNoiseSup(suppressor));
    EXPECT_TRUE(log.messages.empty());
}

} // namespace

// One test, since there is one place for it.
TEST(NoiseSupDll, IsTakenAsSoonAsItIsThere)
{
    std::filesystem::remove(beside);
    EXPECT_EQ(refusalAt(16000), missing);
    EXPECT_EQ(refusalAt(16000), missing);
    EXPECT_EQ(refusalAt(44100), std::vector{support::error("ORVA_CreateNoiseSup: Invalid sample rate.")});
    float window[4];
    EXPECT_TRUE(ORVA_CreateWindow(0, window, 4)) << "all else works";

    putBeside(LIBKETT); // which lacks the functions
    EXPECT_EQ(refusalAt(16000), missing);
    EXPECT_EQ(GetModuleHandleA("libwebrtc_audio_processing-1.dll"), nullptr);

    putBeside(STAND_IN);
    useStandIn();
}
