// The version, fixed at build time. The numbers that a file name carries stand in the build files as well; a test
// compares them.
#pragma once

#include <cstdint>

namespace orva
{

constexpr int32_t versionMajor = 3;
constexpr int32_t versionMinor = 7;
constexpr int32_t versionRelease = 18;
constexpr int32_t versionBuild = 0;

} // namespace orva
