// The suppressor's steps written out over direct calls of the WebRTC library.
#pragma once

#include "noisesup/ORVAnoisesup_webrtc.h"
#include "platform/heap.h"

#include <orva/ORVAnoisesup.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace noisesup
{

using Frame = std::vector<int16_t>;

struct Destroy {
    void operator()(ORVA_NOISESUP *suppressor) const
    {
        ORVA_DestroyNoiseSup(suppressor);
    }
    void operator()(NsHandle *ns) const
    {
        WebRtcNs_Free(ns);
    }
};
using Suppressor = std::unique_ptr<ORVA_NOISESUP, Destroy>;

inline Suppressor suppressor(int32_t sampleRate, int32_t policy)
{
    return Suppressor(ORVA_CreateNoiseSupEx(sampleRate, policy));
}

// An instance on cleared memory, since parts that its initialisation leaves alone are read.
class Direct
{
public:
    Direct(int32_t rate, int policy) : sampleRate(rate), ns(WebRtcNs_Create())
    {
        std::memset(static_cast<void *>(ns.get()), 0, orva::usableSize(ns.get()));
        WebRtcNs_Init(ns.get(), static_cast<uint32_t>(rate));
        setPolicy(policy);
    }

    void setPolicy(int policy)
    {
        WebRtcNs_set_policy(ns.get(), policy);
    }

    // One band, at 8000 and 16000 Hz.
    Frame run(const Frame &input)
    {
        float in[160] = {}, out[160] = {};
        for (size_t i = 0; i < input.size(); ++i)
            in[i] = static_cast<float>(input[i]);
        const float *const inputs[] = {in};
        float *const outputs[] = {out};
        WebRtcNs_Process(ns.get(), inputs, 1, outputs);
        Frame output;
        for (size_t i = 0; i < input.size(); ++i)
            output.push_back(limited(out[i]));
        return output;
    }

    const int32_t sampleRate;

private:
    static int16_t limited(float v)
    {
        if (v > 32767)
            return 32767;
        if (v < -32678)
            return -32768;
        return static_cast<int16_t>(std::trunc(v));
    }

    std::unique_ptr<NsHandle, Destroy> ns;
};

inline Frame run(const Suppressor &suppressor, const Frame &input)
{
    Frame output(input.size());
    ORVA_DoNoiseSup16(suppressor.get(), input.data(), output.data());
    return output;
}

} // namespace noisesup
