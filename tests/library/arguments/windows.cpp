// Windows.
#include "walk.h"

#include <orva/ORVAwinfnc.h>

#include <cmath>
#include <string>

namespace arguments
{

namespace
{

const std::string endless(5000, 'w');

const char *anyName(Walk &walk)
{
    return walk.pick({static_cast<const char *>(nullptr), "", "Hanning", "FLAT-TOP", "Hannin", "\xff\x80 ",
                      endless.c_str()});
}

// Lengths for which there is room, and those for which nothing may be touched.
int32_t length(Walk &walk)
{
    return walk.pick({INT32_MIN, -2, -1, 0, 1, 2, 3, 5, 64, 1000});
}

size_t countOf(int32_t length)
{
    return length > 0 ? static_cast<size_t>(length) : 0;
}

bool isMean(double mean, int32_t length)
{
    return length > 0 || (length == 0 ? std::isnan(mean) : mean == 0.0 && std::signbit(mean));
}

} // namespace

const Row windows[] = {
    {"ORVA_CreateWindow",
     [](Walk &walk) {
         const auto type = walk.pick({INT32_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 255, INT32_MAX});
         const auto length = walk.pick({0u, 1u, 2u, 3u, 4u, 5u, 64u, 2000u, UINT32_MAX});
         float *const window = length == UINT32_MAX ? nullptr : walk.out<float>(length);
         const bool done = walk.call([&] { return ORVA_CreateWindow(type, window, length); });
         walk.expect(done == (window != nullptr && type >= 0 && type <= 10), "the result");
         walk.expect(done || walk.isUntouched(window), "a refusal writes nothing");
     }},
    {"ORVA_ApplyWindow",
     [](Walk &walk) {
         const int32_t n = length(walk);
         const float *const window = walk.in<float>(countOf(n), n > 0 ? Walk::neverNull : Walk::any);
         float *const data = walk.inOut<float>(countOf(n), n > 0 ? Walk::neverNull : Walk::any);
         walk.expect(walk.call([&] { return ORVA_ApplyWindow(window, data, n); }), "true");
     }},
    {"ORVA_GetWindowType",
     [](Walk &walk) {
         const char *const name = anyName(walk);
         const int32_t type = walk.call([&] { return ORVA_GetWindowType(name); });
         const std::string text = name != nullptr ? name : "";
         walk.expect(type == (text == "Hanning" ? 3 : text == "FLAT-TOP" ? 10 : 0), "the code");
     }},
    {"ORVA_GetWindowName",
     [](Walk &walk) {
         const int32_t type = walk.integer();
         const char *const name = walk.call([&] { return ORVA_GetWindowName(type); });
         walk.expect((name != nullptr) == (type >= 0 && type <= 10), "a name for each code");
     }},
    {"ORVA_GetWindowNormFactor",
     [](Walk &walk) {
         const int32_t n = length(walk);
         const float *const window = walk.in<float>(countOf(n));
         const double mean = walk.call([&] { return ORVA_GetWindowNormFactor(window, n); });
         walk.expect(window == nullptr ? mean == 0.0 && !std::signbit(mean) : isMean(mean, n), "the mean");
     }},
    {"ORVA_GetTwoWindowNormFactor",
     [](Walk &walk) {
         const int32_t n = length(walk);
         const float *const first = walk.in<float>(countOf(n));
         const float *const second = walk.in<float>(countOf(n));
         const double mean = walk.call([&] { return ORVA_GetTwoWindowNormFactor(first, second, n); });
         const bool isNull = first == nullptr || second == nullptr;
         walk.expect(isNull ? mean == 0.0 && !std::signbit(mean) : isMean(mean, n), "the mean");
     }},
    {"ORVA_GetWindowTypeFromStringConfig",
     [](Walk &walk) {
         const char *const config = walk.pick({static_cast<const char *>(nullptr), "", "window=hamming",
                                               "window=none", "window=", "=;\"[", endless.c_str()});
         const char *const key =
             walk.pick({static_cast<const char *>(nullptr), "", "window", "Window", endless.c_str()});
         const int32_t otherwise = walk.integer();
         const int32_t type =
             walk.call([&] { return ORVA_GetWindowTypeFromStringConfig(config, key, otherwise); });
         const std::string text =
             config != nullptr && key != nullptr && std::string(key) == "window" ? config : "";
         walk.expect(type == (text == "window=hamming" ? 5
                              : text == "window=none"  ? 0
                                                       : otherwise),
                     "the code");
     }},
    {},
};

} // namespace arguments
