// Stands in for the DLL of the WebRTC library: a suppressor that turns the sign of each sample.
#include "noisesup/ORVAnoisesup_webrtc.h"

#include <cstdlib>

struct NsHandleT {
    uint32_t sampleRate;
    int policy;
};

NsHandle *WebRtcNs_Create(void)
{
    auto *ns = static_cast<NsHandle *>(std::malloc(sizeof(NsHandle)));
    ns->policy = 7; // what a heap leaves behind
    return ns;
}

void WebRtcNs_Free(NsHandle *ns)
{
    std::free(ns);
}

// Succeeds on an instance that was cleared.
int WebRtcNs_Init(NsHandle *ns, uint32_t sampleRate)
{
    ns->sampleRate = sampleRate;
    return ns->policy == 0 ? 0 : -1;
}

int WebRtcNs_set_policy(NsHandle *ns, int policy)
{
    ns->policy = policy;
    return policy >= 0 && policy <= 3 ? 0 : -1;
}

void WebRtcNs_Process(NsHandle *ns, const float *const *input, size_t bandCount, float *const *output)
{
    const size_t count = ns->sampleRate == 8000 ? 80 : 160;
    for (size_t band = 0; band < bandCount; ++band)
        for (size_t i = 0; i < count; ++i)
            output[band][i] = -input[band][i];
}

void WebRtcSpl_AnalysisQMF(const int16_t *, size_t, int16_t *, int16_t *, int32_t *, int32_t *) {}

void WebRtcSpl_SynthesisQMF(const int16_t *, const int16_t *, size_t, int16_t *, int32_t *, int32_t *) {}
