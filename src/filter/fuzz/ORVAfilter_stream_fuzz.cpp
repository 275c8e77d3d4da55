// Fuzz target: a running filter beside its recursion in plainest form. The first bytes choose structure, channels and
// coefficients, the others blocks, new coefficients and resets.
#include "filter/ORVAfilter_reference.h"
#include "support/fuzz.h"

using support::Bytes;

namespace
{

std::vector<double> coefficients(Bytes &bytes, size_t count)
{
    std::vector<double> values(count);
    for (double &value : values)
        value = bytes.coefficient();
    return values;
}

struct Filters {
    Filter filter;
    std::unique_ptr<Reference> plain;
};

Filters make(Bytes &bytes, bool isDirect)
{
    const size_t channels = 1 + bytes.below(9);
    if (!isDirect) {
        const auto records = coefficients(bytes, 5 * bytes.below(7));
        return {fromRecords(channels, records), std::make_unique<BiquadReference>(channels, records)};
    }
    const auto b = coefficients(bytes, 1 + bytes.below(12));
    const auto a = coefficients(bytes, 1 + bytes.below(12));
    return {fromCoefs(channels, b, a), std::make_unique<DirectReference>(channels, b, a)};
}

void reset(Reference &plain)
{
    if (auto *const direct = dynamic_cast<DirectReference *>(&plain))
        for (auto &row : direct->past)
            std::fill(row.begin(), row.end(), 0.0f);
    else if (auto *const biquads = dynamic_cast<BiquadReference *>(&plain))
        for (auto &section : biquads->past)
            std::fill(section.begin(), section.end(), std::array<double, 3>{});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Bytes bytes(data, size);
    auto [filter, plain] = make(bytes, bytes.below(2) == 0);
    support::require(filter != nullptr, "there is a filter");
    for (int call = 0; call < 100 && !bytes.isAtEnd(); ++call) {
        const size_t kind = bytes.below(16);
        if (kind == 0) {
            support::require(ORVA_ResetFilter(filter.get()) == 1, "a filter is reset");
            reset(*plain);
        } else if (kind == 1) {
            if (auto *const biquads = dynamic_cast<BiquadReference *>(plain.get())) {
                auto records = coefficients(bytes, biquads->coefs.size());
                records.push_back(0.0); // never null
                support::require(ORVA_UpdateFilterBiquads(filter.get(),
                                                          static_cast<uint32_t>(records.size() / 5),
                                                          records.data()) == 1,
                                 "records are replaced");
                records.pop_back();
                biquads->coefs = records;
            }
        } else {
            auto input = bytes.block();
            const size_t stride = plain->channels + bytes.below(3);
            const size_t offset = bytes.below(4);
            input.resize(input.size() + 1); // never null
            std::vector<float> output(input.size(), 0.5f);
            auto expected = output;
            plain->run(input.data(), expected.data(), static_cast<int64_t>(input.size()),
                       static_cast<int64_t>(offset), static_cast<int64_t>(stride));
            support::require(ORVA_FilterEx(filter.get(), input.data(), output.data(),
                                           static_cast<uint32_t>(input.size()), static_cast<uint32_t>(offset),
                                           static_cast<uint32_t>(stride)) == 1,
                             "a block is filtered");
            support::requireSameBits(output, expected);
        }
    }
    return 0;
}
