// Root lists with room that starts as not-a-number, and their comparison.
#pragma once

#include "filter/ORVAfilter_design.h"
#include "support/bits.h"
#include "support/random.h"

#include <cmath>
#include <limits>
#include <vector>

using orva::Root;

struct Lists {
    static constexpr double unwritten = std::numeric_limits<double>::quiet_NaN();

    explicit Lists(int32_t size) : poles(static_cast<size_t>(size), {unwritten, unwritten}), zeros(poles) {}

    std::vector<Root> poles, zeros;
    double gain = unwritten;
};

// The first entries have the bits of `expected`.
inline testing::AssertionResult begins(const std::vector<Root> &list, const std::vector<Root> &expected)
{
    if (list.size() < expected.size())
        return testing::AssertionFailure() << list.size() << " entries instead of " << expected.size();
    for (size_t i = 0; i < expected.size(); ++i)
        if (!support::sameBits(list[i].real(), expected[i].real()) ||
            !support::sameBits(list[i].imag(), expected[i].imag()))
            return testing::AssertionFailure() << "entry " << i << ": " << std::setprecision(17) << list[i]
                                               << " instead of " << expected[i];
    return testing::AssertionSuccess();
}

// The first entries are `expected` up to `tolerance` in each part; infinities are alike.
inline testing::AssertionResult near(const std::vector<Root> &list, const std::vector<Root> &expected,
                                     double tolerance)
{
    const auto agree = [=](double a, double b) { return a == b || std::fabs(a - b) <= tolerance; };
    for (size_t i = 0; i < expected.size(); ++i)
        if (i >= list.size() || !agree(list[i].real(), expected[i].real()) ||
            !agree(list[i].imag(), expected[i].imag()))
            return testing::AssertionFailure()
                   << "entry " << i << " of " << list.size() << " is not " << expected[i];
    return testing::AssertionSuccess();
}

// Nothing has been written from entry `first` on.
inline bool isUnwritten(const std::vector<Root> &list, size_t first)
{
    for (size_t i = first; i < list.size(); ++i)
        if (!std::isnan(list[i].real()) || !std::isnan(list[i].imag()))
            return false;
    return true;
}
