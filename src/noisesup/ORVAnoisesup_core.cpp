#include "noisesup/ORVAnoisesup_internal.h"

#include <cmath>

namespace
{

// The bands of one frame as the suppressor takes them.
struct Bands {
    float low[bandLength] = {};
    float high[bandLength] = {};
};

void widen(const int16_t *samples, float *band)
{
    for (int32_t i = 0; i < bandLength; ++i)
        band[i] = static_cast<float>(samples[i]);
}

void narrow(const float *band, int16_t *samples)
{
    for (int32_t i = 0; i < bandLength; ++i)
        samples[i] = narrowed(band[i]);
}

void process(NsHandle *ns, const Bands &in, Bands &out, size_t bandCount)
{
    const float *const input[] = {in.low, in.high, nullptr};
    float *const output[] = {out.low, out.high, nullptr};
    WebRtcNs_Process(ns, input, bandCount, output);
}

} // namespace

int16_t narrowed(float v)
{
    if (v > 32767.0f)
        return 32767;
    if (v < -32678.0f)
        return -32768;
    return std::isnan(v) ? int16_t{0} : static_cast<int16_t>(v);
}

int32_t _noisesup_core(ORVA_NOISESUP *suppressor)
{
    Bands in;
    Bands out;
    if (suppressor->sampleRate != 32000) {
        // A whole band at 8000 Hz too, where a frame is half of one; the frame buffers have room for it.
        widen(suppressor->inputFrame, in.low);
        process(suppressor->ns, in, out, 1);
        narrow(out.low, suppressor->outputFrame);
        return 1;
    }
    QmfBlock &split = *suppressor->analysisBlock;
    QmfBlock &merge = *suppressor->synthesisBlock;
    WebRtcSpl_AnalysisQMF(suppressor->inputFrame, 2 * bandLength, split.low, split.high, split.filterState1,
                          split.filterState2);
    widen(split.low, in.low);
    widen(split.high, in.high);
    process(suppressor->ns, in, out, 2);
    narrow(out.low, split.low);
    narrow(out.high, split.high);
    // From the other block, meant so: its bands are never written, and silence comes out at this rate.
    WebRtcSpl_SynthesisQMF(merge.low, merge.high, bandLength, suppressor->outputFrame, merge.filterState1,
                           merge.filterState2);
    return 1;
}
