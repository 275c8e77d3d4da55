// Creation and destruction.
#include "solafs/ORVAsolafs_internal.h"

#include <algorithm>

using namespace orva;

namespace orva
{
namespace
{

// frameMs milliseconds in samples, a multiple of 8. The product is one of 32 bits, so it wraps; what is then
// below zero is no frame.
int32_t frameLengthOf(int32_t frameMs, int32_t sampleRate)
{
    const auto product =
        static_cast<int32_t>(static_cast<uint32_t>(frameMs) * static_cast<uint32_t>(sampleRate));
    return std::max(product / 1000, 0) & ~7;
}

bool allocateArrays(ORVA_SOLAFS *solafs)
{
    KT_MEM *memory = solafs->memDescr;
    const int32_t points = solafs->similarityLength / correlationStep;
    solafs->fadeRamp = KTMEM_NewFloatVector(memory, solafs->overlapLength);
    // One block for the search: its work, on a cache line, and the reference.
    const auto workLength = static_cast<uint64_t>(searchWorkLength(solafs));
    const uint64_t searchSize = (workLength + static_cast<uint64_t>(points)) * sizeof(float);
    solafs->searchWork = static_cast<float *>(KTMEM_NewAligned(memory, 64, searchSize));
    solafs->referenceOffsets =
        static_cast<int32_t *>(KTMEM_NewEx(memory, static_cast<uint64_t>(points) * sizeof(int32_t), 0));
    solafs->buffer = KTMEM_NewFloatVector(memory, std::max(solafs->bufferCapacity, 0));
    solafs->overlap = KTMEM_NewFloatVector(memory, solafs->overlapLength);
    if (solafs->fadeRamp == nullptr || solafs->searchWork == nullptr || solafs->referenceOffsets == nullptr ||
        solafs->buffer == nullptr || solafs->overlap == nullptr)
        return false;
    solafs->reference = solafs->searchWork + workLength;
    return true;
}

} // namespace
} // namespace orva

ORVA_SOLAFS *ORVA_SolafsCreate(int32_t frameMs, int32_t sampleRate, int32_t channelStride)
{
    KT_MEM *memory = KTMEM_CreateMemDescrEx("Solafs channel", 0, 8);
    auto *solafs = static_cast<ORVA_SOLAFS *>(KTMEM_NewEx(memory, sizeof(ORVA_SOLAFS), 0)); // zeroed
    if (solafs == nullptr) {
        KTMEM_DisposeMemDescr(memory);
        return nullptr;
    }
    solafs->memDescr = memory;
    solafs->speed = 1.0f;
    solafs->frameLength = frameLengthOf(frameMs, sampleRate);
    solafs->similarityLength = solafs->frameLength >> 1;
    solafs->overlapLength = solafs->frameLength >> 1;
    solafs->maxSkew = 2 * solafs->frameLength;
    solafs->correlationDecimation = correlationStep;
    solafs->skewDecimation = skewStep;
    solafs->hop = solafs->frameLength - solafs->overlapLength;
    solafs->bufferCapacity = sampleRate;
    solafs->bufferEnd = solafs->similarityLength;
    solafs->channelStride = channelStride;
    if (!allocateArrays(solafs)) {
        KTMEM_DisposeMemDescr(memory);
        return nullptr;
    }
    for (int32_t i = 0; i < solafs->overlapLength; ++i)
        solafs->fadeRamp[i] = static_cast<float>((i + 1.0) / (solafs->overlapLength + 1.0));
    for (int32_t i = 0; i < solafs->similarityLength / correlationStep; ++i)
        solafs->referenceOffsets[i] = correlationStep * i + 1 - solafs->similarityLength;
    return solafs;
}

// Shown and not disposed of, unlike every other object of the library. This is deliberate: the record outlives
// this call, and KTMEM_DisposeDisplayed() is how its memory comes back.
void ORVA_SolafsDestroy(ORVA_SOLAFS *solafs)
{
    if (solafs != nullptr)
        KTMEM_DisplayMemDescr(solafs->memDescr);
}
