// The record itself: what creation writes into it, and how single steps move its positions.
#include "solafs/ORVAsolafs_internal.h"
#include "solafs/scaler_pair.h"
#include "solafs/signals.h"

#include <cstring>
#include <limits>
#include <numeric>

using namespace orva;

namespace
{

int32_t push(ORVA_SOLAFS *solafs, int32_t count, float speed)
{
    const std::vector<float> samples(static_cast<size_t>(count), 0.25f);
    return ORVA_SolafsInputData(solafs, 0, samples.data(), count, speed);
}

int32_t pullHop(ORVA_SOLAFS *solafs)
{
    std::vector<float> frames(static_cast<size_t>(solafs->hop));
    return ORVA_SolafsOutputData(solafs, 0, frames.data(), 0);
}

void expectSegment(const SolafsSegment &segment, int32_t inputStart, int32_t inputEnd, int32_t outputEnd,
                   float speed)
{
    EXPECT_EQ(segment.inputStart, inputStart);
    EXPECT_EQ(segment.inputEnd, inputEnd);
    EXPECT_EQ(segment.outputEnd, outputEnd);
    EXPECT_EQ(segment.speed, speed);
}

} // namespace

TEST(SolafsCreate, WorkedRecordOf20MillisecondsAt44100Hertz)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 2));
    EXPECT_EQ(solafs->speed, 1.0f);
    EXPECT_EQ(solafs->frameLength, 880);
    EXPECT_EQ(solafs->similarityLength, 440);
    EXPECT_EQ(solafs->overlapLength, 440);
    EXPECT_EQ(solafs->maxSkew, 1760);
    EXPECT_EQ(solafs->correlationDecimation, 8);
    EXPECT_EQ(solafs->skewDecimation, 4);
    EXPECT_EQ(solafs->hop, 440);
    EXPECT_EQ(solafs->bufferCapacity, 44100);
    EXPECT_EQ(solafs->bufferEnd, 440);
    EXPECT_EQ(solafs->channelStride, 2);
    for (const int32_t zero :
         {solafs->lastAnalysisA, solafs->lastAnalysisB, solafs->skew, solafs->outputPosition,
          solafs->positionBias, solafs->matchPosition, solafs->bufferBase, solafs->nextSegment,
          solafs->segmentCount, solafs->pendingSegments})
        EXPECT_EQ(zero, 0);
    for (int i = 0; i < 440; ++i)
        ASSERT_TRUE(support::sameBits(solafs->fadeRamp[i], static_cast<float>((i + 1.0) / 441.0))) << i;
    for (int i = 0; i < 55; ++i)
        ASSERT_EQ(solafs->referenceOffsets[i], 8 * i - 439) << i;
    for (int i = 0; i < 44100; ++i)
        ASSERT_TRUE(support::sameBits(solafs->buffer[i], 0.0f)) << i; // the lead-in above all
}

TEST(SolafsCreate, FrameLengthIsAMultipleOfEightOrZero)
{
    struct Case {
        int32_t frameMs;
        int32_t sampleRate;
        int32_t frameLength;
    };
    for (const Case &c : {Case{20, 44100, 880}, Case{20, 48000, 960}, Case{23, 44100, 1008},
                          Case{20, 11025, 216}, Case{1, 8000, 8}, Case{1, 7999, 0}, Case{8, 999, 0},
                          Case{8, 1000, 8}, Case{0, 44100, 0}, Case{-20, 44100, 0}, Case{20, -44100, 0},
                          Case{-20, -44100, 880}, Case{50000, 50000, 0}, // 2500000000 wraps to -1794967296
                          Case{100000, 50000, 705032}}) {                // 5000000000 wraps to 705032704
        const SolafsHandle solafs(ORVA_SolafsCreate(c.frameMs, c.sampleRate, 1));
        ASSERT_NE(solafs, nullptr);
        EXPECT_EQ(solafs->frameLength, c.frameLength) << c.frameMs << " ms at " << c.sampleRate;
    }
}

TEST(SolafsRecord, PredictionAddsUpTheWholeDistanceOfTheTimelines)
{
    // Hops of 440 at speed 1.01: the analysis stands at 444, 888, 1333, 1777 and thus 4, 8, 13, 17 ahead.
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    push(solafs.get(), 20000, 1.01f);
    struct Hop {
        int32_t analysis;
        int32_t skew;
    };
    for (const Hop &hop : {Hop{444, 4}, Hop{888, 12}, Hop{1333, 25}, Hop{1777, 42}}) {
        ASSERT_EQ(pullHop(solafs.get()), 440);
        EXPECT_EQ(solafs->lastAnalysisA, hop.analysis);
        EXPECT_EQ(solafs->lastAnalysisB, hop.analysis);
        EXPECT_EQ(solafs->skew, hop.skew);
        EXPECT_EQ(solafs->matchPosition, hop.analysis + hop.skew);
    }
}

TEST(SolafsRecord, AtSpeedOnePredictionNeverMoves)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    push(solafs.get(), 40000, 1.0f);
    for (int32_t hop = 1; hop <= 20; ++hop) {
        ASSERT_EQ(pullHop(solafs.get()), 440);
        EXPECT_EQ(solafs->skew, 0);
        EXPECT_EQ(solafs->lastAnalysisA, 440 * hop);
    }
}

TEST(SolafsRecord, InputShiftsTheBufferToTwoHalfFramesBehindTheAnalysis)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    std::vector<float> samples(20000);
    std::iota(samples.begin(), samples.end(), 0.0f);
    ORVA_SolafsInputData(solafs.get(), 0, samples.data(), 20000, 1.0f);
    for (const int32_t base : {0, 440, 880}) { // the first shift that the analysis at 440 asks for is of 0
        ASSERT_EQ(pullHop(solafs.get()), 440);
        ORVA_SolafsInputData(solafs.get(), 0, nullptr, 0, 1.0f);
        EXPECT_EQ(solafs->bufferBase, base);
        EXPECT_EQ(solafs->bufferEnd, 20440);
        for (int32_t p = std::max(base - 440, 0); p < 20000; ++p)
            ASSERT_EQ(solafs->buffer[p + 440 - base], static_cast<float>(p));
    }
}

TEST(SolafsRecord, ShiftKeepsWhatIsLeftDownToOneSampleAndNone)
{
    struct Case {
        float speed; // one hop of 80 puts the analysis at 80 times that, and 160 behind it the buffer begins
        int32_t slots;
    };
    for (const Case &c :
         {Case{9.0f, 81}, Case{9.99f, 2}, Case{10.0f, 1}, Case{10.0125f, 0}, Case{12.5f, -199}}) {
        SCOPED_TRACE(c.speed);
        const SolafsHandle solafs(ORVA_SolafsCreate(20, 8000, 1));
        std::vector<float> samples(641);
        std::iota(samples.begin(), samples.end(), 1.0f);
        ASSERT_EQ(ORVA_SolafsInputData(solafs.get(), 0, samples.data(), 641, c.speed), 641);
        ASSERT_EQ(pullHop(solafs.get()), 80);
        ORVA_SolafsInputData(solafs.get(), 0, nullptr, 0, c.speed);
        EXPECT_EQ(solafs->bufferEnd - solafs->bufferBase, c.slots);
        for (int32_t slot = 0; slot < c.slots; ++slot)
            EXPECT_EQ(solafs->buffer[slot], static_cast<float>(641 - c.slots + slot + 1));
    }
}

TEST(SolafsRecord, SpeedChangeWaitsForTheAnalysisAndKeepsItContinuous)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    push(solafs.get(), 1000, 1.0f);
    push(solafs.get(), 20000, 2.0f);
    EXPECT_EQ(solafs->pendingSegments, 1);
    EXPECT_EQ(solafs->nextSegment, 1);
    struct Hop {
        float speed;
        int32_t analysis;
        int32_t bias;
    };
    // The change begins at sample 1000. The hop to 1320 still came from 880; the next one comes from 1320.
    for (const Hop &hop : {Hop{1.0f, 440, 0}, Hop{1.0f, 880, 0}, Hop{1.0f, 1320, 0}, Hop{2.0f, 1760, -1760},
                           Hop{2.0f, 2640, -1760}}) {
        ASSERT_EQ(pullHop(solafs.get()), 440);
        EXPECT_EQ(solafs->speed, hop.speed);
        EXPECT_EQ(solafs->lastAnalysisA, hop.analysis);
        EXPECT_EQ(solafs->positionBias, hop.bias);
    }
    EXPECT_EQ(solafs->pendingSegments, 0);
    EXPECT_EQ(solafs->nextSegment, 2);
}

TEST(SolafsRecord, OneSpeedChangeComesIntoForceAtAHop)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    push(solafs.get(), 100, 1.0f);
    for (const float speed : {1.5f, 2.0f, 2.5f})
        push(solafs.get(), 100, speed);
    push(solafs.get(), 20000, 2.5f);
    for (const float speed : {1.0f, 1.5f, 2.0f, 2.5f, 2.5f}) {
        ASSERT_EQ(pullHop(solafs.get()), 440);
        EXPECT_EQ(solafs->speed, speed);
    }
}

TEST(SolafsRecord, EmptyCallsOnAFreshRecordAddSegments)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    push(solafs.get(), 0, 2.0f);
    EXPECT_EQ(solafs->segmentCount, 1);
    EXPECT_EQ(solafs->nextSegment, 1);
    EXPECT_EQ(solafs->bufferEnd, 440);
    push(solafs.get(), 900, 3.0f);
    EXPECT_EQ(solafs->segmentCount, 2);
    EXPECT_EQ(solafs->nextSegment, 2);
    EXPECT_EQ(solafs->pendingSegments, 0);
    EXPECT_EQ(solafs->speed, 3.0f);
    expectSegment(solafs->segments[0], 0, 0, 0, 2.0f);
    expectSegment(solafs->segments[1], 0, 900, 300, 3.0f);
}

TEST(SolafsRecord, AFullBufferStillTakesTheSpeed)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 8000, 1));
    ASSERT_EQ(push(solafs.get(), 9000, 1.0f), 7920);
    ASSERT_EQ(push(solafs.get(), 9000, 1.5f), 0);
    EXPECT_EQ(solafs->segmentCount, 2);
    EXPECT_EQ(solafs->pendingSegments, 1);
    EXPECT_EQ(solafs->speed, 1.0f);
    expectSegment(solafs->segments[0], 0, 7920, 7920, 1.0f);
    expectSegment(solafs->segments[1], 7920, 7920, 7920, 1.5f);
}

TEST(SolafsRecord, SegmentsAddUpTruncatedAtEveryCall)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    for (int i = 0; i < 3; ++i)
        push(solafs.get(), 100, 1.5f); // 66.67 each: 66, 132.67, 198.67
    push(solafs.get(), 100, 3.0f);
    expectSegment(solafs->segments[0], 0, 300, 198, 1.5f);
    expectSegment(solafs->segments[1], 300, 400, 231, 3.0f);
}

TEST(SolafsRecord, AFullTableExtendsItsLastEntryAtItsOwnSpeed)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    for (int i = 0; i < 256; ++i)
        push(solafs.get(), 10, i % 2 == 0 ? 1.0f : 2.0f);
    EXPECT_EQ(solafs->segmentCount, 256);
    expectSegment(solafs->segments[255], 2550, 2560, 1920, 2.0f);
    push(solafs.get(), 100, 4.0f);
    push(solafs.get(), 100, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(solafs->segmentCount, 256);
    EXPECT_EQ(solafs->pendingSegments, 255);
    expectSegment(solafs->segments[255], 2550, 2760, 2020, 2.0f);
}

TEST(SolafsRecord, AnEntryWithTheSpeedInForceStaysPending)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    push(solafs.get(), 0, 1.0f);
    push(solafs.get(), 10000, 1.0f);
    push(solafs.get(), 10000, 2.0f);
    solafs->segments[2].speed = 1.0f; // calls alone do not lead there
    solafs->segments[2].inputStart = 0;
    ASSERT_EQ(pullHop(solafs.get()), 440);
    EXPECT_EQ(solafs->pendingSegments, 1);
    EXPECT_EQ(solafs->nextSegment, 2);
}

TEST(SolafsRecord, ZeroOfEitherSignIsOneSpeedButDividesByItsOwnSign)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    push(solafs.get(), 100, 0.0f);
    EXPECT_EQ(solafs->segments[0].outputEnd, INT32_MAX);
    push(solafs.get(), 100, -0.0f);
    EXPECT_EQ(solafs->segmentCount, 1);
    EXPECT_EQ(solafs->segments[0].outputEnd, INT32_MIN);
}

TEST(SolafsRecord, TooLittleInputLeavesEveryFieldAndArray)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    push(solafs.get(), 8000, 1.3f);
    while (pullHop(solafs.get()) > 0) {
    }
    push(solafs.get(), 10, 0.9f); // a change that waits
    ORVA_SOLAFS before;
    std::memcpy(&before, solafs.get(), sizeof before);
    const std::vector<float> overlap(solafs->overlap, solafs->overlap + 440);
    const std::vector<float> reference(solafs->reference, solafs->reference + 55);
    const std::vector<float> buffer(solafs->buffer, solafs->buffer + 44100);
    EXPECT_EQ(pullHop(solafs.get()), 0);
    EXPECT_EQ(std::memcmp(&before, solafs.get(), sizeof before), 0);
    EXPECT_TRUE(support::sameBits<float>({solafs->overlap, 440}, overlap));
    EXPECT_TRUE(support::sameBits<float>({solafs->reference, 55}, reference));
    EXPECT_TRUE(support::sameBits<float>({solafs->buffer, 44100}, buffer));
}

TEST(SolafsRecord, AnalysisPositionIsComputedInSinglePrecision)
{
    struct Case {
        int32_t outputPosition;
        float speed;
        int32_t bias;
        int32_t position;
    };
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const Case &c : {
             Case{16777215, 1.0f, 0, 16777215},
             Case{16777217, 1.0f, 0, 16777216}, // ties to even
             Case{16777219, 1.0f, 0, 16777220},
             Case{16777216, 1.0f, 1, 16777216},
             Case{33554434, 0.5f, 0, 16777216}, // the position is rounded before it is scaled
             Case{10, 0.1f, 0, 1},              // 0.1f is above 0.1, and the product is rounded to 1
             Case{7, 1.5f, 0, 10},
             Case{7, -1.5f, 0, -10}, // toward zero
             Case{7, 1.5f, -11, 0},
             Case{0, infinity, 5, 0}, // 0 times infinity is not a number
             Case{1, infinity, 0, INT32_MAX},
             Case{1, -infinity, 0, INT32_MIN},
             Case{1000, 3e6f, 0, INT32_MAX},
             Case{1000, -3e6f, 0, INT32_MIN},
             Case{1, 2147483648.0f, 0, INT32_MAX},
             Case{1, -2147483648.0f, 0, INT32_MIN},
             Case{1, 2147483520.0f, 0, 2147483520},
             Case{1, std::numeric_limits<float>::quiet_NaN(), 0, 0},
         }) {
        const SolafsHandle solafs(ORVA_SolafsCreate(20, 8000, 1));
        solafs->outputPosition = c.outputPosition;
        solafs->speed = c.speed;
        solafs->positionBias = c.bias;
        EXPECT_EQ(analysisPosition(solafs.get()), c.position)
            << c.outputPosition << " * " << c.speed << " + " << c.bias;
    }
}

TEST(SolafsRecord, StreamEndsWhereItsPositionsEnd)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 8000, 1));
    push(solafs.get(), 2000, 1.0f);
    solafs->bufferEnd = INT32_MAX - 5;
    solafs->bufferBase = solafs->bufferEnd - 2080;
    EXPECT_EQ(push(solafs.get(), 100, 1.0f), 5);
    EXPECT_EQ(push(solafs.get(), 100, 1.0f), 0);
    EXPECT_EQ(solafs->bufferEnd, INT32_MAX);

    solafs->speed = 0.0f; // the input never runs out
    solafs->outputPosition = INT32_MAX - 200;
    EXPECT_EQ(pullHop(solafs.get()), 80);
    EXPECT_EQ(pullHop(solafs.get()), 80);
    EXPECT_EQ(pullHop(solafs.get()), 0);
    EXPECT_EQ(solafs->outputPosition, INT32_MAX - 40);
}
