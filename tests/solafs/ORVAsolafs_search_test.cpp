// The search against its sums written out, one candidate after the other.
#include "solafs/ORVAsolafs_internal.h"
#include "solafs/scaler_pair.h"
#include "solafs/signals.h"

#include <limits>

using namespace orva;

namespace
{

// A record whose buffer holds these samples from stream position 0 on, and which is about to continue with
// `overlap`.
SolafsHandle primed(int32_t frameMs, int32_t sampleRate, const std::vector<float> &samples,
                    const std::vector<float> &overlap)
{
    SolafsHandle solafs(ORVA_SolafsCreate(frameMs, sampleRate, 1));
    EXPECT_EQ(
        ORVA_SolafsInputData(solafs.get(), 0, samples.data(), static_cast<int32_t>(samples.size()), 1.0f),
        static_cast<int32_t>(samples.size()));
    std::copy_n(overlap.begin(), solafs->overlapLength, solafs->overlap);
    return solafs;
}

struct Candidate {
    int32_t skew;
    double score;
};

std::vector<Candidate> allCandidates(const ORVA_SOLAFS &solafs, int32_t analysis)
{
    const int32_t half = solafs.similarityLength;
    std::vector<Candidate> candidates;
    for (int32_t k = 0; k < 2 * solafs.frameLength; k += 4) {
        double energy = 1.0;
        double cross = 0.0;
        for (int32_t i = 0; i < half / 8; ++i) {
            const int32_t slot = analysis + k + 8 * i - solafs.bufferBase; // the lead-in makes up for -half
            const double x =
                slot >= 0 && slot < solafs.bufferEnd - solafs.bufferBase ? double{solafs.buffer[slot]} : 0.0;
            energy += x * x;
            cross += double{solafs.overlap[8 * i]} * x;
        }
        candidates.push_back({k, half < 8 ? 0.0 : cross / std::sqrt(energy)});
    }
    return candidates;
}

int32_t firstOfTheBest(const std::vector<Candidate> &candidates)
{
    Candidate winner = {0, 0.0};
    for (const Candidate &candidate : candidates)
        if (candidate.score > winner.score)
            winner = candidate;
    return winner.skew;
}

} // namespace

TEST(SolafsSearch, RandomInputGivesTheWinnerOfThePlainSums)
{
    support::Random random;
    struct Case {
        int32_t frameMs;
        int32_t sampleRate;
    };
    // Below one comparison point, odd counts of them, just below and above what the kernel takes at once.
    for (const Case &c :
         {Case{1, 8000}, Case{2, 8000}, Case{3, 8000}, Case{7, 11025}, Case{20, 16000}, Case{20, 44100},
          Case{20, 51200}, Case{20, 51600}, Case{20, 52000}, Case{20, 96000}, Case{43, 48000}})
        for (const float scale : {1.0f, 1e-3f, 32768.0f, 1e20f}) {
            const int32_t frame = c.frameMs * c.sampleRate / 1000;
            std::vector<float> samples = random.noise(static_cast<size_t>(5 * frame));
            std::vector<float> overlap = random.noise(static_cast<size_t>(frame));
            for (float &x : samples)
                x *= scale;
            const SolafsHandle solafs = primed(c.frameMs, c.sampleRate, samples, overlap);
            for (const int32_t analysis : {0, 1, frame, 2 * frame + 3, 4 * frame, 6 * frame}) {
                solafs->skew = 1;
                findSkew(solafs.get(), analysis);
                EXPECT_EQ(solafs->skew, firstOfTheBest(allCandidates(*solafs, analysis)))
                    << c.frameMs << " ms at " << c.sampleRate << ", scale " << scale << ", at " << analysis;
            }
        }
}

TEST(SolafsSearch, EveryCandidateCanWin)
{
    // One period of noise, and a continuation cut out of it where the candidate compares.
    support::Random random;
    const std::vector<float> samples = random.noise(1600);
    for (int32_t skew = 0; skew < 640; skew += 4) {
        const std::vector<float> overlap(samples.begin() + 200 + skew, samples.begin() + 200 + skew + 160);
        const SolafsHandle solafs = primed(20, 16000, samples, overlap);
        findSkew(solafs.get(), 360);
        EXPECT_EQ(solafs->skew, firstOfTheBest(allCandidates(*solafs, 360)));
        EXPECT_EQ(solafs->skew, skew);
    }
}

TEST(SolafsSearch, TheLargestSkewIsNotTried)
{
    support::Random random;
    const std::vector<float> samples = random.noise(1600);
    const std::vector<float> overlap(samples.begin() + 200 + 640, samples.begin() + 200 + 640 + 160);
    const SolafsHandle solafs = primed(20, 16000, samples, overlap);
    findSkew(solafs.get(), 360);
    EXPECT_LT(solafs->skew, 640);
}

TEST(SolafsSearch, OfEqualScoresTheSmallestSkewWins)
{
    // A period of 64 samples: each score comes back, to the bit, sixteen candidates on.
    support::Random random;
    const std::vector<float> period = random.noise(64);
    std::vector<float> samples(1600);
    for (size_t n = 0; n < samples.size(); ++n)
        samples[n] = period[n % 64];
    for (int32_t skew = 0; skew < 64; skew += 4) {
        const std::vector<float> overlap(samples.begin() + 200 + skew, samples.begin() + 200 + skew + 160);
        const SolafsHandle solafs = primed(20, 16000, samples, overlap);
        findSkew(solafs.get(), 360);
        const std::vector<Candidate> candidates = allCandidates(*solafs, 360);
        for (size_t k = 16; k < candidates.size(); ++k)
            ASSERT_TRUE(support::sameBits(candidates[k].score, candidates[k - 16].score));
        EXPECT_EQ(solafs->skew, firstOfTheBest(candidates));
        EXPECT_LT(solafs->skew, 64);
    }
}

TEST(SolafsSearch, EnergyStartsAtOne)
{
    // Faint copies of one shape, the second twice as large. Without the 1 their scores would be equal and the
    // first would win.
    std::vector<float> shape = support::Random().noise(160);
    std::vector<float> samples(1600, 0.0f);
    for (size_t i = 0; i < 160; ++i) {
        samples[200 + i] = shape[i] * 0.01f;
        samples[200 + 400 + i] = shape[i] * 0.02f;
    }
    const SolafsHandle solafs = primed(20, 16000, samples, shape);
    findSkew(solafs.get(), 360);
    EXPECT_EQ(solafs->skew, 400);
}

TEST(SolafsSearch, WithoutPositiveCorrelationSkewIsZero)
{
    const std::vector<float> ones(160, 1.0f);
    for (const float level : {0.0f, -0.5f, -1e-30f, -1e30f, -std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN()}) {
        const SolafsHandle solafs = primed(20, 16000, std::vector<float>(1600, level), ones);
        solafs->skew = 8;
        findSkew(solafs.get(), 360);
        EXPECT_EQ(solafs->skew, 0) << level;
    }
}

TEST(SolafsSearch, AnyBitsInTheInputGiveTheWinnerOfThePlainSums)
{
    support::Random random;
    for (int round = 0; round < 100; ++round) {
        std::vector<float> samples(1600);
        std::vector<float> overlap(160);
        const bool isSparse = round % 2 == 0;
        for (float &x : samples)
            x = isSparse && random.integer(0, 99) > 0 ? 0.1f : random.anyFloat();
        for (float &x : overlap)
            x = isSparse && random.integer(0, 99) > 0 ? 0.1f : random.anyFloat();
        const SolafsHandle solafs = primed(20, 16000, samples, overlap);
        findSkew(solafs.get(), 360);
        EXPECT_EQ(solafs->skew, firstOfTheBest(allCandidates(*solafs, 360)));
    }
}
