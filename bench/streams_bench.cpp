// Cost is linear: a resampler, a filter and a time scaler over streams of 10^4 to 10^8 samples in blocks of 1024, each
// from its creation to its end, and over a stream of 10^6 samples in blocks of 1 to 10^6. Times are for a sample of
// input.
#include "cases.h"
#include "solafs/ORVAsolafs_internal.h"

#include <orva/orva.h>

#include <algorithm>
#include <cmath>

namespace
{

constexpr size_t noiseLength = 1'000'000;

const float *input()
{
    static const std::vector<float> samples = noise(noiseLength);
    return samples.data();
}

// Takes blocks of up to `most` samples.
class Resampling
{
public:
    explicit Resampling(size_t most) : output(2 * most + 2) {}

    void operator()(const float *block, size_t count)
    {
        ORVA_Resample(handle.get(), block, output.data(), static_cast<int32_t>(count));
    }

private:
    Owned<ORVA_RESAMPLER, ORVA_ResampleDestroy> handle{ORVA_ResampleInit(44100, 48000, "order=30")};
    std::vector<float> output;
};

class Filtering
{
public:
    explicit Filtering(size_t most) : output(most) {}

    void operator()(const float *block, size_t count)
    {
        ORVA_Filter(handle.get(), block, output.data(), static_cast<uint32_t>(count));
    }

private:
    static constexpr double section[] = {-0.94, 0.33, 0.3, 0.2, 0.1};
    static _ORVA_FILTER *create()
    {
        std::vector<double> sections;
        for (int i = 0; i < 4; ++i)
            sections.insert(sections.end(), std::begin(section), std::end(section));
        return ORVA_CreateFilterFromBiquads(1, 4, sections.data());
    }

    Owned<_ORVA_FILTER, ORVA_DestroyFilter> handle{create()};
    std::vector<float> output;
};

// ORVA_SolafsDestroy() would keep the memory.
void freeScaler(ORVA_SOLAFS *solafs)
{
    KTMEM_DisposeMemDescr(solafs->memDescr);
}

class Scaling
{
public:
    explicit Scaling(size_t) {}

    // In pieces, since a record holds one second.
    void operator()(const float *block, size_t count)
    {
        for (size_t first = 0; first < count; first += piece) {
            ORVA_SolafsInputData(handle.get(), 0, block + first,
                                 static_cast<int32_t>(std::min(piece, count - first)), 1.5f);
            ORVA_SolafsOutputData(handle.get(), 0, output.data(), piece);
        }
    }

private:
    static constexpr size_t piece = 16384;
    Owned<ORVA_SOLAFS, freeScaler> handle{ORVA_SolafsCreate(20, 44100, 1)};
    std::vector<float> output = std::vector<float>(piece);
};

template <class Path> void run(Path &path, size_t length, size_t blockLength)
{
    for (size_t done = 0; done < length; done += blockLength)
        path(input() + done % noiseLength,
             std::min({blockLength, length - done, noiseLength - done % noiseLength}));
}

template <class Path> void addPath(const std::string &path)
{
    for (int power = 4; power <= 8; ++power) {
        const auto length = static_cast<size_t>(std::pow(10, power));
        addCase(path + ", stream of 10^" + std::to_string(power) + "/orva", length, [=] {
            return [=] {
                Path fresh(1000);
                run(fresh, length, 1000);
            };
        });
    }
    for (int power = 0; power <= 6; ++power) {
        const auto blockLength = static_cast<size_t>(std::pow(10, power));
        addCase(path + ", blocks of 10^" + std::to_string(power) + "/orva", noiseLength, [=] {
            return [=, one = std::make_shared<Path>(blockLength)] { run(*one, noiseLength, blockLength); };
        });
    }
}

const bool registered = [] {
    addPath<Resampling>("44100 to 48000 Hz, order 30");
    addPath<Filtering>("4 sections");
    addPath<Scaling>("time scaling, 1.5");
    return true;
}();

} // namespace
