#include <orva/ORVAnoisesup.h>

#include "noisesup/ORVAnoisesup_internal.h"

#include <kett/KTdebug.h>
#include <kett/KTutils.h>

#include <algorithm>

namespace orva
{
namespace
{

// Samples in 10 ms, or 0 for a rate that the suppressor does not run at.
int32_t frameSizeOf(int32_t sampleRate)
{
    switch (sampleRate) {
    case 8000:
        return 80;
    case 16000:
        return 160;
    case 32000:
        return 320;
    default:
        return 0;
    }
}

bool allocateBlocks(ORVA_NOISESUP &suppressor)
{
    if (suppressor.sampleRate != 32000)
        return true;
    suppressor.analysisBlock = static_cast<QmfBlock *>(KTMEM_NewEx(suppressor.memDescr, sizeof(QmfBlock), 0));
    suppressor.synthesisBlock =
        static_cast<QmfBlock *>(KTMEM_NewEx(suppressor.memDescr, sizeof(QmfBlock), 0));
    return suppressor.analysisBlock != nullptr && suppressor.synthesisBlock != nullptr;
}

bool allocateFrames(ORVA_NOISESUP &suppressor)
{
    const auto size = static_cast<uint64_t>(suppressor.frameSize) * sizeof(int16_t);
    suppressor.inputFrame = static_cast<int16_t *>(KTMEM_NewEx(suppressor.memDescr, size, 0));
    suppressor.outputFrame = static_cast<int16_t *>(KTMEM_NewEx(suppressor.memDescr, size, 0));
    return suppressor.inputFrame != nullptr && suppressor.outputFrame != nullptr;
}

bool startNs(ORVA_NOISESUP &suppressor, int32_t policy)
{
    return createNs(&suppressor.ns) == 0 &&
           WebRtcNs_Init(suppressor.ns, static_cast<uint32_t>(suppressor.sampleRate)) == 0 &&
           WebRtcNs_set_policy(suppressor.ns, policy) == 0;
}

} // namespace
} // namespace orva

using namespace orva;

ORVA_NOISESUP *ORVA_CreateNoiseSupEx(int32_t sampleRate, int32_t policy)
{
    KT_MEM *memory = KTMEM_CreateMemDescrEx("Noise suppressor memory", 0, 8);
    auto *suppressor = static_cast<ORVA_NOISESUP *>(KTMEM_NewEx(memory, sizeof(ORVA_NOISESUP), 0));
    if (suppressor == nullptr) {
        KTMEM_DisposeMemDescr(memory);
        return nullptr;
    }
    suppressor->memDescr = memory;
    suppressor->sampleRate = sampleRate;
    suppressor->frameSize = frameSizeOf(sampleRate);
    if (suppressor->frameSize == 0) {
        KTDEBUG_Error(-1, "ORVA_CreateNoiseSup: Invalid sample rate.");
        KTMEM_DisposeMemDescr(memory);
        return nullptr;
    }
    // An instance that refuses its policy is not freed, as hosts of this interface are told.
    if (!allocateBlocks(*suppressor) || !startNs(*suppressor, policy)) {
        KTMEM_DisposeMemDescr(memory);
        return nullptr;
    }
    if (!allocateFrames(*suppressor)) {
        ORVA_DestroyNoiseSup(suppressor);
        return nullptr;
    }
    return suppressor;
}

int32_t ORVA_NoiseSupBufferSize(const ORVA_NOISESUP *suppressor)
{
    return suppressor != nullptr ? suppressor->frameSize : -1;
}

bool ORVA_SetNoiseSupIntensity(ORVA_NOISESUP *suppressor, int32_t policy)
{
    return suppressor != nullptr && WebRtcNs_set_policy(suppressor->ns, policy) == 0;
}

int32_t ORVA_DoNoiseSup(ORVA_NOISESUP *suppressor, const float *input, float *output)
{
    if (suppressor == nullptr || input == nullptr || output == nullptr)
        return 0;
    KTUTILS_ConvertIEEEFloatToWord16(input, suppressor->inputFrame, suppressor->frameSize);
    _noisesup_core(suppressor);
    KTUTILS_ConvertWord16ToIEEEFloat(suppressor->outputFrame, output, suppressor->frameSize);
    return 1;
}

int32_t ORVA_DoNoiseSup16(ORVA_NOISESUP *suppressor, const int16_t *input, int16_t *output)
{
    if (suppressor == nullptr || input == nullptr || output == nullptr)
        return 0;
    std::copy_n(input, suppressor->frameSize, suppressor->inputFrame);
    _noisesup_core(suppressor);
    std::copy_n(suppressor->outputFrame, suppressor->frameSize, output);
    return 1;
}

bool ORVA_DestroyNoiseSup(ORVA_NOISESUP *suppressor)
{
    if (suppressor == nullptr)
        return false;
    const bool freed = freeNs(suppressor->ns) == 0;
    const bool disposed = KTMEM_DisposeMemDescr(suppressor->memDescr) != 0;
    return freed && disposed;
}
