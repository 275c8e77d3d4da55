// Filters.
#include "walk.h"

#include <orva/ORVAfilter.h>

#include <algorithm>
#include <string>

namespace arguments
{

namespace
{

constexpr double records[] = {-0.9, 0.3, 0.1, 0.2, 0.1, -1.1, 0.4, 0.2, 0.4, 0.2};
constexpr double numerator[] = {0.1, 0.2, 0.3, 0.4};
constexpr double denominator[] = {2.0, -0.5, 0.25};

enum Kind { none, direct, likeDirect, biquads, likeBiquads, twoChannels, highPass };

_ORVA_FILTER *newFilter(int kind)
{
    switch (kind) {
    case direct:
        return ORVA_CreateFilterFromCoefs(1, 4, numerator, 3, denominator);
    case likeDirect:
        return ORVA_CreateFilterFromCoefs(1, 1, numerator, 2, denominator);
    case biquads:
        return ORVA_CreateFilterFromBiquads(1, 2, records);
    case likeBiquads:
        return ORVA_CreateFilterFromBiquads(1, 1, records);
    case twoChannels:
        return ORVA_CreateFilterFromBiquads(2, 2, records);
    case highPass:
        return ORVA_CreateFilter("type=hp; order=4; fpass=0.5");
    default:
        return nullptr;
    }
}

int anyKind(Walk &walk)
{
    return walk.pick({0, 1, 2, 3, 4, 5, 6});
}

// The same filter at each call, in silence.
_ORVA_FILTER *kept(int kind)
{
    static _ORVA_FILTER *made[7] = {};
    if (made[kind] == nullptr)
        made[kind] = newFilter(kind);
    ORVA_ResetFilter(made[kind]);
    return made[kind];
}

bool isRefused(const _ORVA_FILTER *filter, const float *input, const float *output)
{
    return filter == nullptr || input == nullptr || output == nullptr;
}

const std::string endless = "order=2; fpass=0.25; " + std::string(100000, 'x');
const std::string wide = "nc=2; biquads=[" + std::string(20000, '[');

} // namespace

const Row filters[] = {
    {"ORVA_Filter",
     [](Walk &walk) {
         _ORVA_FILTER *const filter = kept(anyKind(walk));
         const auto n = walk.pick({0u, 1u, 2u, 3u, 64u, 1000u, 2147483650u, UINT32_MAX});
         const size_t room = n <= 1000 ? n : 0; // beyond 2147483649 there is no frame
         const float *const input = walk.in<float>(room);
         float *const output = walk.out<float>(room);
         const int32_t done = walk.call([&] { return ORVA_Filter(filter, input, output, n); });
         walk.expect(done == (isRefused(filter, input, output) ? 0 : 1), "the result");
         walk.expect(done == 1 || walk.isUntouched(output), "a refusal writes nothing");
     }},
    {"ORVA_FilterEx",
     [](Walk &walk) {
         _ORVA_FILTER *const filter = kept(anyKind(walk));
         const auto n = walk.pick({0u, 1u, 2u, 65u});
         const auto offset = walk.pick({0u, 1u, 64u, 65u, 2147483647u, 2147483648u, UINT32_MAX});
         const auto stride = walk.pick({1u, 2u, 3u, 65u, 2147483647u, UINT32_MAX});
         const float *const input = walk.in<float>(n);
         float *const output = walk.out<float>(n);
         const int32_t done =
             walk.call([&] { return ORVA_FilterEx(filter, input, output, n, offset, stride); });
         walk.expect(done == (isRefused(filter, input, output) ? 0 : 1), "the result");
         walk.expect((done == 1 && offset < n) || walk.isUntouched(output), "no frame, no output");
     }},
    {"ORVA_ResetFilter",
     [](Walk &walk) {
         _ORVA_FILTER *const filter = kept(anyKind(walk));
         walk.expect(walk.call([&] { return ORVA_ResetFilter(filter); }) == (filter != nullptr ? 1 : 0),
                     "the result");
     }},
    {"ORVA_CopyFilterMemories",
     [](Walk &walk) {
         const int to = anyKind(walk);
         const int from = anyKind(walk);
         const auto structure = [](int kind) {
             return kind == likeDirect || kind == likeBiquads ? kind - 1 : kind;
         };
         _ORVA_FILTER *const destination = kept(to);
         const _ORVA_FILTER *const source = kept(from);
         const int32_t done = walk.call([&] { return ORVA_CopyFilterMemories(destination, source); });
         walk.expect(done == (to != none && structure(to) == structure(from) ? 1 : 0),
                     "those alike are copied");
     }},
    {"ORVA_UpdateFilterBiquads",
     [](Walk &walk) {
         const int kind = anyKind(walk);
         _ORVA_FILTER *const filter = kept(kind);
         const auto count = walk.pick({0u, 1u, 2u, 3u, 65536u, 65537u, UINT32_MAX});
         const double *const coefs = walk.in<double>(count <= 3 ? 5 * count : 0);
         const int32_t done = walk.call([&] { return ORVA_UpdateFilterBiquads(filter, count, coefs); });
         const uint32_t sections = kind == likeBiquads ? 1 : kind >= biquads ? 2 : UINT32_MAX;
         walk.expect(done == (coefs != nullptr && count == sections && kind >= biquads ? 1 : 0),
                     "the result");
     }},
    {"ORVA_DestroyFilter",
     [](Walk &walk) {
         _ORVA_FILTER *const filter = newFilter(anyKind(walk));
         walk.expect(walk.call([&] { return ORVA_DestroyFilter(filter); }) == (filter != nullptr ? 1 : 0),
                     "the result");
     }},
    {"ORVA_CreateFilterFromCoefs",
     [](Walk &walk) {
         const auto channels = walk.pick({0u, 1u, 7u, 2147483647u, 2147483648u, UINT32_MAX});
         const auto numCount = walk.pick({INT32_MIN, -1, 0, 1, 2, 9});
         const auto denCount = walk.pick({0u, 1u, 5u, 2147483648u, UINT32_MAX});
         const double *const b = walk.in<double>(numCount > 0 ? static_cast<size_t>(numCount) : 0);
         const double *const a = walk.in<double>(denCount <= 5 ? denCount : 0);
         _ORVA_FILTER *const filter =
             walk.call([&] { return ORVA_CreateFilterFromCoefs(channels, numCount, b, denCount, a); });
         const bool isAdmitted = channels <= INT32_MAX && numCount > 0 && denCount > 0 && denCount <= 5 &&
                                 b != nullptr && a != nullptr;
         walk.expect(isAdmitted ? filter != nullptr || channels > 7 : filter == nullptr, "a filter or none");
         walk.expect(walk.messages() == 0, "no message");
         ORVA_DestroyFilter(filter);
     }},
    {"ORVA_CreateFilterFromBiquads",
     [](Walk &walk) {
         const int32_t channels = walk.pick({INT32_MIN, -1, 0, 1, 7, INT32_MAX});
         const auto count = walk.pick({0u, 1u, 2u, 65537u, UINT32_MAX});
         const double *const coefs = walk.in<double>(count <= 2 ? 5 * count : 0);
         _ORVA_FILTER *const filter =
             walk.call([&] { return ORVA_CreateFilterFromBiquads(channels, count, coefs); });
         const bool isAdmitted = channels >= 0 && count <= 65536 && coefs != nullptr;
         walk.expect(isAdmitted ? filter != nullptr || channels > 7 : filter == nullptr, "a filter or none");
         walk.expect(walk.messages() == (coefs != nullptr && count > 65536 ? 1 : 0),
                     "a message for too many");
         ORVA_DestroyFilter(filter);
     }},
    {"ORVA_CreateFilter",
     [](Walk &walk) {
         const char *const text = walk.pick(
             {static_cast<const char *>(nullptr), "", "%s", "%%", "order=4; fpass=0.25", "order=4",
              "fpass=0.25",
              "type=bp; approximation=ellip; order=6; Ap=1; As=60; fpass1=0.2; fpass2=0.4; fstop1=0.1; "
              "fstop2=0.5",
              "order=1048577; fpass=0.1", "order=-1; As=-1; fpass=0.1", "biquads=[1 2 3 4 5]; nc=0",
              "biquads=[0 0 1 0 0]; nc=-1", "numerator=[1]; denominator=[0]", "order=3; fpass=nan; fs=inf",
              "order=3; fpass=1e-45", "approximation=ci; order=5; As=1e-30; fpass=3e38; fs=1",
              endless.c_str(), wide.c_str()});
         // The text of the first conversion, if there is one.
         _ORVA_FILTER *const filter =
             walk.call([&] { return ORVA_CreateFilter(text, "order=4; fpass=0.25"); });
         walk.expect(walk.messages() <= (filter == nullptr ? 1 : 0),
                     "one message at most, none for a filter");
         const std::string given = text != nullptr ? text : "";
         walk.expect((given != "%s" && given != "order=4; fpass=0.25") || filter != nullptr, "a filter");
         walk.expect(!given.empty() || filter == nullptr, "none of nothing");
         ORVA_DestroyFilter(filter);
     }},
    {},
};

} // namespace arguments
