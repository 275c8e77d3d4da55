// The functions of the WebRTC audio processing library that the suppressor calls. Debian's libwebrtc-audio-processing 0.3
// exports them but installs no header for them.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

struct NsHandleT;
typedef struct NsHandleT NsHandle;

NsHandle *WebRtcNs_Create(void);
void WebRtcNs_Free(NsHandle *ns);
int WebRtcNs_Init(NsHandle *ns, uint32_t sampleRate);
int WebRtcNs_set_policy(NsHandle *ns, int policy);
void WebRtcNs_Process(NsHandle *ns, const float *const *input, size_t bandCount, float *const *output);

void WebRtcSpl_AnalysisQMF(const int16_t *input, size_t inputLength, int16_t *low, int16_t *high,
                           int32_t *filterState1, int32_t *filterState2);
void WebRtcSpl_SynthesisQMF(const int16_t *low, const int16_t *high, size_t bandLength, int16_t *output,
                            int32_t *filterState1, int32_t *filterState2);
}

namespace orva
{

// Creation and destruction in the form of the other calls: 0 is success.
int createNs(NsHandle **ns);
int freeNs(NsHandle *ns);

} // namespace orva
