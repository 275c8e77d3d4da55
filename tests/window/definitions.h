// Every window as it is defined, one row a window, and its samples by a plain loop. The tests take from here which windows
// there are.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

struct Definition {
    int32_t type;
    const char *name;
    double storedGain;
    std::vector<float> (*samples)(uint32_t length) = nullptr; // of a shape that is no sum of cosines
    std::vector<double> terms{};                              // of one that is: the factor of each cos(k p)
    double divisorLess = 1;                                   // p = 2 pi i / (length - divisorLess)
    bool mirrored = true;
};

inline std::vector<float> rectangularSamples(uint32_t length)
{
    return std::vector<float>(length, 1.0f);
}

inline std::vector<float> triangularSamples(uint32_t length)
{
    std::vector<float> w(length);
    const double divisor = static_cast<double>(static_cast<float>(length / 2)) - 1.0;
    for (uint32_t i = 0; i < (length + 1) / 2; ++i)
        w[i] = w[length - 1 - i] = static_cast<float>(static_cast<double>(static_cast<float>(i)) / divisor);
    return w;
}

inline std::vector<float> halfTriangularSamples(uint32_t length)
{
    std::vector<float> w(length);
    const float divisor = static_cast<float>(static_cast<double>(length) - 1.0);
    for (uint32_t i = 0; i < length; ++i)
        w[i] = static_cast<float>(i) / divisor;
    return w;
}

inline const std::vector<Definition> definitions{
    {.type = 0, .name = "Rectangular", .storedGain = 1.0, .samples = rectangularSamples},
    {.type = 1, .name = "Triangular", .storedGain = 0.5, .samples = triangularSamples},
    {.type = 2, .name = "Half-Triangular", .storedGain = 0.5, .samples = halfTriangularSamples},
    {.type = 3, .name = "Hanning", .storedGain = 0.5009765625, .terms = {0.5, -0.5}},
    {.type = 4,
     .name = "Hanning-Periodic",
     .storedGain = 0.5009765625,
     .terms = {0.5, -0.5},
     .divisorLess = 0,
     .mirrored = false},
    {.type = 5, .name = "Hamming", .storedGain = 0.5391015625, .terms = {0.54, -0.46}},
    {.type = 6, .name = "Blackman", .storedGain = 0.41671875, .terms = {0.42, -0.5, 0.08}, .divisorLess = 0},
    {.type = 7,
     .name = "Blackman-Harris",
     .storedGain = 0.41671875,
     .terms = {0.35875, -0.48829, 0.14128, -0.01168}},
    {.type = 8,
     .name = "Blackman-Nuttall",
     .storedGain = 0.41671875,
     .terms = {0.355768, -0.487396, 0.144232, -0.012604}},
    {.type = 9,
     .name = "Nuttal",
     .storedGain = 0.41671875,
     .terms = {0.3635819, -0.4891775, 0.1365995, -0.0106411}},
    {.type = 10, .name = "Flat-Top", .storedGain = 0.41671875, .terms = {1.0, -1.93, 1.29, -0.388, 0.028}},
};

// The lowest code that no window has.
inline const auto unknownType = static_cast<int32_t>(definitions.size());

// (((terms[0] + terms[1] cos(p)) + terms[2] cos(2p)) + ...) in double. What an expression subtracts is added here with the
// other sign, and the halves of a difference are the difference of the halves: the same bits.
inline double cosineSum(const std::vector<double> &terms, double p)
{
    double sum = terms[0];
    for (size_t k = 1; k < terms.size(); ++k)
        sum = sum + terms[k] * std::cos(p * static_cast<double>(k));
    return sum;
}

// The samples of a window, in the bits of the definition: the phase is accumulated.
inline std::vector<float> samplesOf(const Definition &definition, uint32_t length)
{
    if (definition.samples != nullptr)
        return definition.samples(length);
    std::vector<float> w(length);
    const double step = 6.283185307179586 / (length - definition.divisorLess);
    double p = 0.0;
    for (uint32_t i = 0; i < (definition.mirrored ? (length + 1) / 2 : length); ++i, p = p + step) {
        w[i] = static_cast<float>(cosineSum(definition.terms, p));
        if (definition.mirrored)
            w[length - 1 - i] = w[i];
    }
    return w;
}
