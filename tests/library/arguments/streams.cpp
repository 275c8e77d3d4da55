// Resamplers, time scaling, noise suppressors.
#include "walk.h"

#include <kett/KTmem.h>
#include <orva/ORVAnoisesup.h>
#include <orva/ORVAresample.h>
#include <orva/ORVAsolafs.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace arguments
{

namespace
{

struct Converter {
    int32_t input, output;
    const char *config;
    bool converts;
};

constexpr Converter converters[] = {
    {2, 3, "order=4", true},          {3, 1, "order=3; delaycompensation=0", true},
    {44100, 48000, "type=zoh", true}, {48000, 16000, "type=zoh", true},
    {8000, 8000, "type=zoh", true},   {1, 2, "order=0", false},
};
constexpr size_t nothing = std::size(converters); // a null handle

size_t anyConverter(Walk &walk)
{
    return static_cast<size_t>(walk.pick({0, 1, 2, 3, 4, 5, 6}));
}

ORVA_RESAMPLER *newConverter(size_t which)
{
    if (which == nothing)
        return nullptr;
    const Converter &c = converters[which];
    return ORVA_ResampleInit(c.input, c.output, c.config);
}

size_t roomOf(size_t which, int32_t count)
{
    if (which == nothing || count <= 0)
        return 0;
    const Converter &c = converters[which];
    return std::string(c.config) == "type=zoh"
               ? static_cast<size_t>(count) * static_cast<size_t>(c.output / c.input + 1)
               : static_cast<size_t>(count) * static_cast<size_t>(c.output) / static_cast<size_t>(c.input) +
                     1;
}

const std::string endless = "order=2; " + std::string(5000, 'x');

constexpr int32_t frames = 300;

struct Scaler {
    int32_t frameMs, rate, stride;
};

constexpr Scaler scalers[] = {{20, 8000, 1},   {1, 8000, 2},  {220, 100, 1},
                              {1000, 8000, 1}, {20, 8000, 0}, {10, 0, 1}};
constexpr size_t noScaler = std::size(scalers);

ORVA_SOLAFS *newScaler(size_t which)
{
    return which == noScaler
               ? nullptr
               : ORVA_SolafsCreate(scalers[which].frameMs, scalers[which].rate, scalers[which].stride);
}

size_t anyScaler(Walk &walk)
{
    return static_cast<size_t>(walk.pick({0, 1, 2, 3, 4, 5, 6}));
}

size_t floatsOf(size_t which, int32_t count)
{
    if (which == noScaler || count <= 0)
        return 0;
    return static_cast<size_t>(count - 1) * static_cast<size_t>(scalers[which].stride) + 1;
}

// Null or a suppressor that has heard nothing.
ORVA_NOISESUP *newSuppressor(Walk &walk, int32_t rate)
{
    return walk.pick({false, true}) ? ORVA_CreateNoiseSupEx(rate, 2) : nullptr;
}

template <class Sample>
void suppress(Walk &walk, int32_t (*execute)(ORVA_NOISESUP *, const Sample *, Sample *))
{
    const int32_t rate = walk.pick({8000, 16000, 32000});
    ORVA_NOISESUP *const handle = newSuppressor(walk, rate);
    const auto *const input = walk.in<Sample>(static_cast<size_t>(rate / 100));
    auto *const output = walk.out<Sample>(static_cast<size_t>(rate / 100));
    const int32_t done = walk.call([&] { return execute(handle, input, output); });
    walk.expect(done == (handle != nullptr && input != nullptr && output != nullptr ? 1 : 0), "the result");
    walk.expect(done == 1 || walk.isUntouched(output), "a refusal writes nothing");
    ORVA_DestroyNoiseSup(handle);
}

} // namespace

const Row streams[] = {
    {"ORVA_ResampleInit",
     [](Walk &walk) {
         const auto rates = {INT32_MIN, -1, 0, 1, 2, 80, 441, INT32_MAX - 1, INT32_MAX};
         const int32_t input = walk.pick(rates);
         const int32_t output = walk.pick(rates);
         const char *const config =
             walk.pick({static_cast<const char *>(nullptr), "", "order=1", "order=0", "order=-2147483648",
                        "order=2147483647", "type=zoh", "type=;order=x", "ORDER=2;DelayCompensation=0",
                        endless.c_str(), "=\"[;"});
         ORVA_RESAMPLER *const handle = walk.call([&] { return ORVA_ResampleInit(input, output, config); });
         walk.expect(handle == nullptr || (input > 0 && output > 0), "rates are above 0");
         walk.expect(handle != nullptr || walk.messages() > 0, "a refusal has a message");
         if (handle != nullptr)
             walk.expect(ORVA_ResampleDestroy(handle) == 1, "it is destroyed");
     }},
    {"ORVA_Resample",
     [](Walk &walk) {
         const size_t which = anyConverter(walk);
         const int32_t count = walk.pick({INT32_MIN, -1, 0, 1, 2, 7, 100, 555});
         const float *const input = walk.in<float>(count > 0 ? static_cast<size_t>(count) : 0);
         float *const output = walk.out<float>(roomOf(which, count));
         ORVA_RESAMPLER *const handle = newConverter(which);
         const int32_t written = walk.call([&] { return ORVA_Resample(handle, input, output, count); });
         if (which == nothing || !converters[which].converts)
             walk.expect(written == -1, "no converter");
         else if (input == nullptr || output == nullptr)
             walk.expect(written == -1 || (written == 0 && count <= 0), "null is refused");
         else
             walk.expect(written >= 0 && static_cast<size_t>(written) <= roomOf(which, count), "the result");
         walk.expect(walk.messages() == (which == nothing ? 1 : 0), "a message for null");
         walk.expect(written > 0 || walk.isUntouched(output), "a refusal writes nothing");
         ORVA_ResampleDestroy(handle);
     }},
    {"ORVA_ResampleFlushBufferSize",
     [](Walk &walk) {
         const size_t which = anyConverter(walk);
         ORVA_RESAMPLER *const handle = newConverter(which);
         const int32_t size = walk.call([&] { return ORVA_ResampleFlushBufferSize(handle); });
         constexpr int32_t sizes[nothing + 1] = {6, 3, 0, 0, 0, -1, -1};
         walk.expect(size == sizes[which], "the delay");
         walk.expect(walk.messages() == (which == nothing ? 1 : 0), "a message for null");
         ORVA_ResampleDestroy(handle);
     }},
    // Null ends the process, as its header says.
    {"ORVA_ResampleFlushBuffersEx",
     [](Walk &walk) {
         const auto which = static_cast<size_t>(walk.pick({0, 1, 2, 3, 4, 5}));
         const int32_t most = walk.integer();
         ORVA_RESAMPLER *const handle = newConverter(which);
         const int32_t size = std::max(ORVA_ResampleFlushBufferSize(handle), 0);
         float *const output = walk.out<float>(static_cast<size_t>(most > 0 ? std::min(most, size) : size));
         const int32_t written = walk.call([&] { return ORVA_ResampleFlushBuffersEx(handle, output, most); });
         if (output != nullptr)
             walk.expect(written == (most > 0 ? std::min(most, size) : size), "the rest of the stream");
         else
             walk.expect(written == 0, "null writes nothing");
         ORVA_ResampleDestroy(handle);
     }},
    {"ORVA_ResampleDestroy",
     [](Walk &walk) {
         const size_t which = anyConverter(walk);
         ORVA_RESAMPLER *const handle = newConverter(which);
         walk.expect(walk.call([&] { return ORVA_ResampleDestroy(handle); }) == (which == nothing ? 0 : 1),
                     "the result");
         walk.expect(walk.messages() == (which == nothing ? 1 : 0), "a message for null");
     }},

    {"ORVA_SolafsCreate",
     [](Walk &walk) {
         const int32_t frameMs = walk.integer();
         const int32_t rate = walk.integer();
         const int32_t stride = walk.integer();
         ORVA_SOLAFS *const solafs = walk.call([&] { return ORVA_SolafsCreate(frameMs, rate, stride); });
         const bool isSmall = frameMs <= 3 && rate <= 65536 && frameMs >= 0 && rate >= 0;
         walk.expect(solafs != nullptr || !isSmall, "a record, unless memory is out");
         walk.expect(ORVA_SolafsInputData(solafs, 0, nullptr, 0, 1.0f) == 0, "it takes nothing of nothing");
         ORVA_SolafsDestroy(solafs);
         KTMEM_DisposeDisplayed();
     }},
    {"ORVA_SolafsInputData",
     [](Walk &walk) {
         const size_t which = anyScaler(walk);
         const int32_t count = walk.pick({INT32_MIN, -1, 0, 1, 2, 300});
         const int32_t offset = walk.pick({0, 3});
         const float speed = walk.real<float>();
         const float *const data = walk.in<float>(static_cast<size_t>(offset) + floatsOf(which, count));
         ORVA_SOLAFS *const solafs = newScaler(which);
         const int32_t taken =
             walk.call([&] { return ORVA_SolafsInputData(solafs, offset, data, count, speed); });
         walk.expect(taken >= 0 && taken <= std::max(count, 0), "as many as fit");
         walk.expect(taken == 0 || (which != noScaler && data != nullptr), "null takes none");
         ORVA_SolafsDestroy(solafs);
         KTMEM_DisposeDisplayed();
     }},
    // Records with hops of 0 that have taken input must not be run.
    {"ORVA_SolafsOutputData",
     [](Walk &walk) {
         const size_t which = anyScaler(walk);
         ORVA_SOLAFS *const solafs = newScaler(which);
         const float speed =
             walk.pick({1.0f, 0.5f, 2.9f, 1e-30f, 1e30f, std::numeric_limits<float>::quiet_NaN(),
                        std::numeric_limits<float>::infinity(), -1.0f, 0.0f});
         const int32_t hop =
             which == noScaler ? 0 : scalers[which].frameMs * scalers[which].rate / 1000 / 8 * 4;
         const float *const input = walk.in<float>(floatsOf(which, frames), Walk::neverNull);
         if (hop > 0)
             for (int i = 0; i < 3; ++i)
                 ORVA_SolafsInputData(solafs, 0, input, frames, speed);
         const int32_t capacity = walk.pick({INT32_MIN, -1, 0, 1, 79, 80, 160});
         const int32_t offset = walk.pick({0, 5});
         // One hop at least; with none, nothing.
         const int32_t room = std::max(capacity, hop) + offset;
         float *const output =
             hop > 1000 ? nullptr : walk.out<float>(static_cast<size_t>(offset) + floatsOf(which, room));
         const int32_t written =
             walk.call([&] { return ORVA_SolafsOutputData(solafs, offset, output, capacity); });
         walk.expect(written >= 0 && written <= std::max(capacity, hop), "no more than the room");
         walk.expect(hop == 0 ? written == 0 : written % hop == 0, "whole hops");
         walk.expect(output != nullptr || written == 0, "null writes nothing");
         ORVA_SolafsDestroy(solafs);
         KTMEM_DisposeDisplayed();
     }},
    {"ORVA_SolafsTranslateCursorPosition",
     [](Walk &walk) {
         const size_t which = anyScaler(walk);
         const float speed = walk.real<float>();
         const float *const data = walk.in<float>(floatsOf(which, 2), Walk::neverNull);
         ORVA_SOLAFS *const solafs = newScaler(which);
         ORVA_SolafsInputData(solafs, 0, data, 2, speed);
         const auto position =
             walk.pick<int64_t>({INT64_MIN, INT32_MIN, -1, 0, 1, 2, INT32_MAX, int64_t{1} << 33, INT64_MAX});
         const int64_t heard =
             walk.call([&] { return ORVA_SolafsTranslateCursorPosition(solafs, position); });
         walk.expect(which != noScaler || heard == 0, "null gives 0");
         ORVA_SolafsDestroy(solafs);
         KTMEM_DisposeDisplayed();
     }},
    {"ORVA_SolafsDestroy",
     [](Walk &walk) {
         ORVA_SOLAFS *const solafs = newScaler(anyScaler(walk));
         walk.call([&] { ORVA_SolafsDestroy(solafs); });
         walk.expect(KTMEM_DisposeDisplayed() == (solafs != nullptr ? 1 : 0), "a host frees it");
     }},

    {"ORVA_CreateNoiseSupEx",
     [](Walk &walk) {
         const int32_t rate = walk.pick({INT32_MIN, -1, 0, 1, 7999, 8000, 16000, 32000, 48000, INT32_MAX});
         const int32_t policy = walk.integer();
         ORVA_NOISESUP *const handle = walk.call([&] { return ORVA_CreateNoiseSupEx(rate, policy); });
         const bool isRate = rate == 8000 || rate == 16000 || rate == 32000;
         walk.expect((handle != nullptr) == (isRate && policy >= 0 && policy <= 3), "a suppressor or none");
         walk.expect(walk.messages() == (isRate ? 0 : 1), "a message for a rate");
         ORVA_DestroyNoiseSup(handle);
     }},
    {"ORVA_NoiseSupBufferSize",
     [](Walk &walk) {
         const int32_t rate = walk.pick({8000, 16000, 32000});
         ORVA_NOISESUP *const handle = newSuppressor(walk, rate);
         walk.expect(walk.call([&] { return ORVA_NoiseSupBufferSize(handle); }) ==
                         (handle != nullptr ? rate / 100 : -1),
                     "a frame");
         ORVA_DestroyNoiseSup(handle);
     }},
    {"ORVA_SetNoiseSupIntensity",
     [](Walk &walk) {
         ORVA_NOISESUP *const handle = newSuppressor(walk, 16000);
         const int32_t policy = walk.integer();
         walk.expect(walk.call([&] { return ORVA_SetNoiseSupIntensity(handle, policy); }) ==
                         (handle != nullptr && policy >= 0 && policy <= 3),
                     "the result");
         ORVA_DestroyNoiseSup(handle);
     }},
    {"ORVA_DoNoiseSup", [](Walk &walk) { suppress<float>(walk, ORVA_DoNoiseSup); }},
    {"ORVA_DoNoiseSup16", [](Walk &walk) { suppress<int16_t>(walk, ORVA_DoNoiseSup16); }},
    {"ORVA_DestroyNoiseSup",
     [](Walk &walk) {
         ORVA_NOISESUP *const handle =
             walk.pick({false, true}) ? ORVA_CreateNoiseSupEx(walk.pick({8000, 16000, 32000}), 0) : nullptr;
         walk.expect(walk.call([&] { return ORVA_DestroyNoiseSup(handle); }) == (handle != nullptr),
                     "the result");
     }},
    {},
};

} // namespace arguments
