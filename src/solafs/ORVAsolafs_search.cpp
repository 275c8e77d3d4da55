// The search for the skew at which the input best continues what has just been played. It is what time
// scaling costs.
#include "solafs/ORVAsolafs_internal.h"

#include "solafs/kernels/ORVAsolafs_kernels.h"

namespace orva
{
namespace
{

int64_t inGroups(int64_t count)
{
    return (count + candidateGroup - 1) / candidateGroup * candidateGroup;
}

int32_t pointsOf(const ORVA_SOLAFS *solafs)
{
    return solafs->similarityLength / correlationStep;
}

int32_t candidatesOf(const ORVA_SOLAFS *solafs)
{
    return solafs->maxSkew / skewStep;
}

// From the first point of the first candidate to the last one of the last.
int64_t gridLengthOf(int64_t points, int64_t candidates)
{
    return gridPerPoint * (points - 1) + candidates;
}

int64_t gridRoomOf(const ORVA_SOLAFS *solafs)
{
    return inGroups(gridLengthOf(pointsOf(solafs), candidatesOf(solafs)) + candidateGroup);
}

Search searchOf(const ORVA_SOLAFS *solafs)
{
    const int64_t room = gridRoomOf(solafs);
    return {.points = pointsOf(solafs),
            .candidates = candidatesOf(solafs),
            .reference = solafs->reference,
            .grid = solafs->searchWork,
            .eights = solafs->searchWork + gridCopies * room,
            .scores = solafs->searchWork + (gridCopies + 1) * room,
            .gridRoom = room};
}

// Every fourth sample from stream position `first` on. A position that holds no sample reads as 0.
void fillGrid(const ORVA_SOLAFS *solafs, int64_t first, float *grid, int32_t count)
{
    const int64_t begin = slotOf(solafs, first);
    const int64_t end = begin + int64_t{skewStep} * (count - 1) + 1;
    const int64_t held = slotsHeld(solafs);
    if (begin >= 0 && end <= held) {
        kernels<SolafsKernels>().takeEveryFourth(solafs->buffer + begin, grid, count);
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        const int64_t slot = begin + int64_t{skewStep} * i;
        grid[i] = slot >= 0 && slot < held ? solafs->buffer[slot] : 0.0f;
    }
}

} // namespace

int64_t searchWorkLength(const ORVA_SOLAFS *solafs)
{
    return (gridCopies + 1) * gridRoomOf(solafs) + inGroups(candidatesOf(solafs));
}

void findSkew(ORVA_SOLAFS *solafs, int32_t analysis)
{
    solafs->skew = 0;
    const int32_t points = pointsOf(solafs);
    if (points == 0) // every score is 0
        return;
    for (int32_t i = 0; i < points; ++i)
        solafs->reference[i] = solafs->overlap[solafs->referenceOffsets[i] + solafs->overlapLength - 1];
    const Search search = searchOf(solafs);
    const int64_t first = int64_t{analysis} + solafs->referenceOffsets[0] - 1;
    fillGrid(solafs, first, search.grid, static_cast<int32_t>(gridLengthOf(points, search.candidates)));
    solafs->skew = skewStep * kernels<SolafsKernels>().bestCandidate(search);
}

} // namespace orva
