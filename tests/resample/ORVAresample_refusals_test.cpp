// What is refused, and how: every message whole and counted.
#include "ORVAresample_reference.h"
#include "common/memory.h"
#include "resample/ORVAresample_handle.h"
#include "resample/ORVAresample_polyphase.h"
#include "support/bits.h"
#include "support/log.h"

#include <kett/KTdebug.h>

#include <gmock/gmock.h>

#include <limits>

using namespace orva;

namespace
{

using support::Message;

constexpr int32_t most = std::numeric_limits<int32_t>::max();
constexpr int32_t least = std::numeric_limits<int32_t>::min();

const Message invalidParameters = support::error("ORVA_ResampleInit: Parametros invalidos");
const std::string notInitialized = "ORVA_Resample: Estrutura de dados nao foi inicializada corretamente!\n";

// A handle that is neither polyphase nor hold, as a host that writes over it would leave it.
ORVA_RESAMPLER *damaged(int32_t mode)
{
    auto *handle = newZeroed<ORVA_RESAMPLER>(1);
    handle->mode = mode;
    return handle;
}

// Log to standard error with level and code, for what a process says before it ends.
void sayAll()
{
    KTDEBUG_SetSink([](void *, int32_t level, int32_t code,
                       const char *text) { std::fprintf(stderr, "%d %d %s", level, code, text); },
                    nullptr);
}

std::string said(int32_t level)
{
    return std::to_string(level) + " -1 " + notInitialized;
}

} // namespace

TEST(ResampleRefusals, ARateBelowOneGivesNull)
{
    for (const char *config : {"", "type=zoh", "order=0"})
        for (const Rates rates :
             {Rates{0, 8000}, {8000, 0}, {-1, 8000}, {8000, -1}, {0, 0}, {least, least}}) {
            support::Log log;
            EXPECT_EQ(ORVA_ResampleInit(rates.input, rates.output, config), nullptr) << rates;
            EXPECT_EQ(log.messages, std::vector{invalidParameters}) << rates;
        }
}

TEST(ResampleRefusals, AnOrderBelowOneGivesAHandleWithoutAConverter)
{
    for (const char *order : {"0", "-1", "-2147483648", "0.9"}) {
        support::Log log;
        const auto resampler = newResampler({44100, 48000}, std::string("order=") + order);
        ASSERT_NE(resampler, nullptr);
        EXPECT_EQ(log.messages,
                  std::vector{support::terminalError("ORVA_ResampleInit: Parametros invalidos")});
        EXPECT_EQ(resampler->mode, 0);
        EXPECT_EQ(resampler->impl, nullptr);
    }
}

TEST(ResampleRefusals, AHandleWithoutAConverterRefusesInSilence)
{
    for (const int32_t mode : {0, 1}) {
        support::Log log;
        const Floats input(10, 1.0f);
        float output[10] = {unwritten};
        ORVA_RESAMPLER *handle = damaged(mode);
        for (const int32_t count : {1, 10, 0, -1, most})
            EXPECT_EQ(ORVA_Resample(handle, input.data(), output, count), -1);
        EXPECT_EQ(ORVA_ResampleFlushBufferSize(handle), -1);
        for (const int32_t count : {0, 1, most})
            EXPECT_EQ(ORVA_ResampleFlushBuffersEx(handle, output, count), 0);
        EXPECT_EQ(output[0], unwritten);
        EXPECT_EQ(ORVA_ResampleDestroy(handle), 1);
        EXPECT_TRUE(log.messages.empty());
    }
}

TEST(ResampleRefusals, ADesignThatDoesNotFitGivesNull)
{
    const struct {
        Rates rates;
        const char *config;
    } cases[] = {
        {{1, most}, ""}, // N
        {{most, 1}, ""},
        {{most, most - 1}, "order=1"},
        {{8000, 8000}, "order=2147483647"}, // N beyond 32 bits
        {{8000, 8000}, "order=1073741824"}, // N itself is 2^31
        {{8000, 8000}, "order=1073741823"}, // N + 1 fits; the bytes do not
        {{8000, 8000}, "order=22369621"},   // 1 GiB and 16 bytes
        {{1, 30000001}, "order=1"},
    };
    for (const auto &[rates, config] : cases) {
        support::Log log;
        EXPECT_EQ(ORVA_ResampleInit(rates.input, rates.output, config), nullptr) << rates << ' ' << config;
        EXPECT_EQ(log.messages, std::vector{invalidParameters}) << rates << ' ' << config;
    }
}

TEST(ResampleDesignBytes, CountPrototypePhasesPointersAndDelayLine)
{
    const struct {
        int32_t order, up, down;
        int64_t bytes;
    } cases[] = {
        {1, 1, 1, 8 * (3 + 3 + 3) + 8},
        {30, 160, 147, 8 * (9601 + 160 * 61 + 61) + 160 * 8},
        {30, 1, 3, 8 * (181 + 181 + 181) + 8},
        {30, 3, 1, 8 * (181 + 3 * 61 + 61) + 3 * 8},
        {22369620, 1, 1, (int64_t{1} << 30) - 32}, // the longest of equal rates
        {22369621, 1, 1, (int64_t{1} << 30) + 16},
        {1073741823, 1, 1, 24 * int64_t{2147483647} + 8},
        {1073741824, 1, 1, -1},
        {most, most, 1, -1},
        {1, most, 1, -1},
    };
    for (const auto &c : cases)
        EXPECT_EQ(polyphaseDesignBytes(c.order, c.up, c.down), c.bytes)
            << c.order << ' ' << c.up << '/' << c.down;
    EXPECT_EQ(maxDesignBytes, int64_t{1} << 30);
}

TEST(ResampleRefusals, ABlockWithMoreResultsThanCanBeCountedIsRefused)
{
    const auto resampler = newResampler({1, 3}, "order=1");
    support::Log log;
    const float input[] = {1.0f, 2.0f};
    float output[6] = {unwritten};
    EXPECT_EQ(ORVA_Resample(resampler.get(), input, output, most / 3 + 2), -1);
    EXPECT_EQ(ORVA_Resample(resampler.get(), input, output, most), -1);
    EXPECT_EQ(output[0], unwritten);
    EXPECT_EQ(log.messages, (std::vector{invalidParameters, invalidParameters}));
    EXPECT_EQ(convert(resampler.get(), input, 6).size(), 3u); // 6 less a delay of 3
}

TEST(ResampleRefusals, NullBuffersAreRefusedInSilenceAndChangeNothing)
{
    for (const char *config : {"order=2", "type=zoh"}) {
        support::Log log;
        const Rates rates{8000, 16000};
        const auto resampler = newResampler(rates, config), untouched = newResampler(rates, config);
        const Floats input(20, 0.5f);
        float output = unwritten;
        EXPECT_EQ(ORVA_Resample(resampler.get(), nullptr, &output, 20), -1);
        EXPECT_EQ(ORVA_Resample(resampler.get(), input.data(), nullptr, 20), -1);
        EXPECT_EQ(ORVA_Resample(resampler.get(), nullptr, nullptr, 0), 0);
        EXPECT_EQ(ORVA_ResampleFlushBuffersEx(resampler.get(), nullptr, 3), 0);
        EXPECT_EQ(output, unwritten);
        EXPECT_TRUE(
            support::sameBits(convert(resampler.get(), input, 40), convert(untouched.get(), input, 40)));
        EXPECT_TRUE(support::sameBits(flush(resampler.get(), 0), flush(untouched.get(), 0)));
        EXPECT_TRUE(log.messages.empty());
    }
}

TEST(ResampleRefusals, ACountOfZeroOrBelowGivesZeroAndChangesNothing)
{
    for (const char *config : {"order=2", "type=zoh"}) {
        support::Log log;
        const Rates rates{16000, 8000};
        const auto resampler = newResampler(rates, config), untouched = newResampler(rates, config);
        const Floats input(20, 0.5f);
        float output = unwritten;
        for (const int32_t count : {0, -1, least}) {
            EXPECT_EQ(ORVA_Resample(resampler.get(), input.data(), &output, count), 0);
            EXPECT_TRUE(
                support::sameBits(convert(resampler.get(), input, 11), convert(untouched.get(), input, 11)));
        }
        EXPECT_EQ(output, unwritten);
        EXPECT_TRUE(log.messages.empty());
    }
}

// The four operations on a null or damaged handle: they differ deliberately.
TEST(ResampleHandles, NullIsReportedByEachAsItsOwnFailure)
{
    support::Log log;
    float sample = unwritten;
    for (const int32_t count : {1, 0, -1}) {
        EXPECT_EQ(ORVA_Resample(nullptr, &sample, &sample, count), -1);
        EXPECT_EQ(log.messages, std::vector{support::error(notInitialized)});
        log.messages.clear();
    }
    EXPECT_EQ(ORVA_ResampleFlushBufferSize(nullptr), -1);
    EXPECT_EQ(log.messages, std::vector{support::error(notInitialized)});
    log.messages.clear();
    EXPECT_EQ(ORVA_ResampleDestroy(nullptr), 0);
    EXPECT_EQ(log.messages, std::vector{support::error(notInitialized)});
    EXPECT_EQ(sample, unwritten);
}

TEST(ResampleHandles, AnUnknownModeIsReportedByTheTwoThatReturn)
{
    for (const int32_t mode : {2, -1, most, least}) {
        support::Log log;
        ORVA_RESAMPLER *handle = damaged(mode);
        EXPECT_EQ(ORVA_ResampleFlushBufferSize(handle), -1);
        EXPECT_EQ(log.messages, std::vector{support::error(notInitialized)});
        log.messages.clear();
        EXPECT_EQ(ORVA_ResampleDestroy(handle), 0); // and frees it
        EXPECT_EQ(log.messages, std::vector{support::error(notInitialized)});
    }
}

TEST(ResampleHandlesDeathTest, AnUnknownModeEndsTheProcessThatConverts)
{
    for (const int32_t mode : {2, -1}) {
        ORVA_RESAMPLER *handle = damaged(mode);
        for (const int32_t count : {1, 0, -1}) {
            float sample = 0.0f;
            EXPECT_EXIT((sayAll(), ORVA_Resample(handle, &sample, &sample, count)),
                        testing::ExitedWithCode(1), testing::Eq(said(KTDEBUG_LEVEL_ERROR)));
        }
        std::free(handle);
    }
}

TEST(ResampleHandlesDeathTest, NullAndAnUnknownModeEndTheProcessThatFlushes)
{
    float sample = 0.0f;
    EXPECT_EXIT((sayAll(), ORVA_ResampleFlushBuffersEx(nullptr, &sample, 1)), testing::ExitedWithCode(1),
                testing::Eq(said(KTDEBUG_LEVEL_TERMINAL)));
    for (const int32_t mode : {2, -1}) {
        ORVA_RESAMPLER *handle = damaged(mode);
        for (float *output : {&sample, static_cast<float *>(nullptr)})
            EXPECT_EXIT((sayAll(), ORVA_ResampleFlushBuffersEx(handle, output, 0)),
                        testing::ExitedWithCode(1), testing::Eq(said(KTDEBUG_LEVEL_TERMINAL)));
        std::free(handle);
    }
}

// By exit(), so that the host's own functions for the end of the process run.
TEST(ResampleHandlesDeathTest, TheProcessEndsInOrder)
{
    ORVA_RESAMPLER *handle = damaged(2);
    float sample = 0.0f;
    const auto atTheEnd = [] { std::fputs("bye", stderr); };
    EXPECT_EXIT((sayAll(), std::atexit(atTheEnd), ORVA_Resample(handle, &sample, &sample, 1)),
                testing::ExitedWithCode(1), testing::Eq(said(KTDEBUG_LEVEL_ERROR) + "bye"));
    EXPECT_EXIT((sayAll(), std::atexit(atTheEnd), ORVA_ResampleFlushBuffersEx(handle, &sample, 1)),
                testing::ExitedWithCode(1), testing::Eq(said(KTDEBUG_LEVEL_TERMINAL) + "bye"));
    std::free(handle);
}
