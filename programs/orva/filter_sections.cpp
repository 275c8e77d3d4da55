#include "filter_sections.h"

#include "failure.h"
#include "filter/ORVAfilter_internal.h"
#include "filter_from.h"

#include <kett/KTstring.h>
#include <orva/ORVAversion.h>

namespace orva
{
namespace
{

const uint32_t columns = 5; // of a record: a1, a2, b0, b1, b2

std::vector<Section> fromRecords(const double *records, int32_t count)
{
    std::vector<Section> sections;
    for (const double *r = records; r < records + ptrdiff_t{columns} * count; r += columns)
        sections.push_back({{r[2], r[3], r[4]}, {1, r[0], r[1]}});
    return sections;
}

// As the direct form runs: divided by a0, and then rounded to float.
std::vector<double> vectorFrom(const std::string &text, const char *key, int32_t size, double divisor)
{
    std::vector<double> values(static_cast<size_t>(size));
    KTSTRING_GetDoubleVectorValuesFromString(text.c_str(), key, values.data(), size);
    for (double &value : values)
        value = divisor == 0 ? value : static_cast<double>(static_cast<float>(value / divisor));
    return values;
}

// The interface keeps the sections of a design to itself. This program is made from the same sources as the library, so it
// reads them from the library's own record, after it has made sure that it runs with the version that it was made with.
std::vector<Section> fromDesign(const _ORVA_FILTER &filter)
{
    int32_t major = 0;
    int32_t minor = 0;
    int32_t release = 0;
    ORVAVERSION_Number(&major, &minor, &release, nullptr);
    const std::string present =
        std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(release);
    if (present != ORVA_PROGRAM_VERSION)
        fail("this program is of version " ORVA_PROGRAM_VERSION " and the library of version " + present);
    const auto &state = *static_cast<const _DFIISOSstate *>(filter.state);
    return fromRecords(state.coefs, state.numBiquads);
}

} // namespace

std::vector<Section> sectionsFrom(const std::string &text, int rate)
{
    const Filter filter = filterFrom(text, rate, 1);
    int32_t rows = 0;
    int32_t width = 0;
    int32_t numerator = 0;
    int32_t denominator = 0;
    if (KTSTRING_GetMatrixSizeFromString(text.c_str(), "biquads", &rows, &width) != 0) {
        std::vector<double> records(static_cast<size_t>(rows) * columns);
        KTSTRING_GetDoubleMatrixValuesFromString(text.c_str(), "biquads", records.data(), rows, width);
        return fromRecords(records.data(), rows);
    }
    if (KTSTRING_GetVectorSizeFromString(text.c_str(), "numerator", &numerator) != 0 &&
        KTSTRING_GetVectorSizeFromString(text.c_str(), "denominator", &denominator) != 0) {
        const double a0 = vectorFrom(text, "denominator", denominator, 0)[0];
        return {
            {vectorFrom(text, "numerator", numerator, a0), vectorFrom(text, "denominator", denominator, a0)}};
    }
    return fromDesign(*filter);
}

PolesAndZeros polesAndZerosOf(const std::vector<Section> &sections)
{
    PolesAndZeros all;
    int64_t atZero = 0; // zeros there less poles there
    const auto add = [](std::vector<std::complex<double>> &to, const std::vector<double> &coefficients) {
        for (const auto &root : rootsOf(coefficients))
            if (root != 0.0)
                to.push_back(root);
    };
    for (const Section &section : sections) {
        const size_t zeros = all.zeros.size();
        const size_t poles = all.poles.size();
        add(all.zeros, section.b);
        add(all.poles, section.a);
        // In powers of z, each polynomial of n roots other than 0 has its k-th and last coefficient at z^-k.
        size_t first = 0; // samples by which the numerator is late
        while (first < section.b.size() && section.b[first] == 0)
            ++first;
        if (first < section.b.size())
            atZero += static_cast<int64_t>(all.poles.size() - poles) -
                      static_cast<int64_t>(all.zeros.size() - zeros + first);
    }
    for (; atZero > 0; --atZero)
        all.zeros.emplace_back(0);
    for (; atZero < 0; ++atZero)
        all.poles.emplace_back(0);
    return all;
}

} // namespace orva
