// The levels of the kernels, and the one in force.
//
// A family's hot loops stand in a record of functions, its kernels. They exist once a level: `plain`, the definition term
// by term; `baseline`, the vectors that every processor of the architecture has; and, on x86-64, `avx2` and `avx512`. All
// give the same bits. The record of a level is defined in that level's object:
//
//     template <> const WindowKernels &kernelsAt<WindowKernels, Level::avx2>()
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orva
{

enum class Level : int32_t { plain, baseline, avx2, avx512 };

inline constexpr std::array allLevels = {Level::plain, Level::baseline, Level::avx2, Level::avx512};

const char *nameOf(Level level);

// Whether the processor, its operating system and this build can run a level.
bool isAvailable(Level level);

// The best level that is available, found at load, unless another one is forced.
Level levelInForce();

// For tests and benchmarks, while nothing else runs. False, with nothing changed, for a level that is not available.
bool forceLevel(Level level);

// Whether the processor takes many times as long over subnormal numbers: all for x86-64 do but AMD's. Found at load.
bool hasSlowSubnormals();

// Defined for no family here: the object of each level defines its own.
template <class Kernels, Level level> const Kernels &kernelsAt();

// The kernels of a family at a level that is available.
template <class Kernels> const Kernels &kernelsAt(Level level)
{
    using Get = const Kernels &(*) ();
    static constexpr Get table[] = {
        kernelsAt<Kernels, Level::plain>,
        kernelsAt<Kernels, Level::baseline>,
#ifdef __x86_64__
        kernelsAt<Kernels, Level::avx2>,
        kernelsAt<Kernels, Level::avx512>,
#endif
    };
    return table[static_cast<size_t>(level)]();
}

// The kernels of a family at the level in force.
template <class Kernels> const Kernels &kernels()
{
    return kernelsAt<Kernels>(levelInForce());
}

} // namespace orva
