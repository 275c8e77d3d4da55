// Fuzz target: a filter from any text. Besides being memory-safe, a text gives a filter and no message, or none and at most
// one; and the same text gives the same filter again. Texts that would only ask for much memory are passed over.
#include <kett/KTdebug.h>
#include <kett/KTstring.h>
#include <orva/ORVAfilter.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

namespace
{

constexpr float largestOrder = 2000.0f;
constexpr float mostChannels = 64.0f;
constexpr uint32_t blockFloats = 256;

void require(bool holds, const char *what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

void count(void *context, int32_t, int32_t, const char *)
{
    ++*static_cast<int *>(context);
}

float number(const std::string &text, const char *key, float defaultValue)
{
    return KTSTRING_GetFloatValueFromString(text.c_str(), key, defaultValue);
}

// Attenuations and edges that no estimate makes a huge order of: no stop edge nearly at a passband edge.
bool isEstimateSmall(const std::string &text)
{
    if (number(text, "As", -1.0f) > 300.0f || std::fabs(number(text, "Ap", 3.0f)) < 1e-3f)
        return false;
    for (const char *stop : {"fstop", "fstop1", "fstop2"}) {
        for (const char *pass : {"fpass", "fpass1", "fpass2"}) {
            const float s = number(text, stop, -1.0f);
            const float p = number(text, pass, -1.0f);
            if (s > 0.0f && p > 0.0f && !(std::fabs(s - p) > 1e-3f * std::max(s, p)))
                return false;
        }
    }
    return true;
}

float channelsOf(const std::string &text)
{
    return number(text, "num_channels", std::trunc(number(text, "nc", 1.0f)));
}

std::vector<float> run(_ORVA_FILTER *filter, uint32_t channels)
{
    std::vector<float> block(blockFloats);
    for (uint32_t i = 0; i < blockFloats; ++i)
        block[i] = static_cast<float>(i % 7) - 3.0f;
    require(ORVA_FilterEx(filter, block.data(), block.data(), blockFloats, 0, std::max(channels, 1u)) == 1,
            "a filter runs");
    require(ORVA_CopyFilterMemories(filter, filter) == 1, "a filter is like itself");
    return block;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const float channels = channelsOf(text);
    if (number(text, "order", 0.0f) > largestOrder || std::fabs(channels) > mostChannels ||
        !isEstimateSmall(text))
        return 0;

    int messages = 0;
    KTDEBUG_SetSink(count, &messages);
    _ORVA_FILTER *filter = ORVA_CreateFilter("%s", text.c_str());
    require(messages <= (filter == nullptr ? 1 : 0), "a refusal has one message at most, a filter none");
    _ORVA_FILTER *again = ORVA_CreateFilter("%s", text.c_str());
    KTDEBUG_SetSink(nullptr, nullptr);
    require((filter == nullptr) == (again == nullptr), "the same text is refused again");
    if (filter != nullptr) {
        const auto stride = static_cast<uint32_t>(channels);
        const auto first = run(filter, stride);
        const auto second = run(again, stride);
        for (size_t i = 0; i < first.size(); ++i)
            require(first[i] == second[i] || (std::isnan(first[i]) && std::isnan(second[i])),
                    "the same text gives the same filter");
        require(ORVA_ResetFilter(filter) == 1, "a filter is reset");
    }
    require(ORVA_DestroyFilter(filter) == (filter != nullptr ? 1 : 0), "what there is is destroyed");
    ORVA_DestroyFilter(again);
    return 0;
}
