#include "png_resolution.h"

#include <cmath>
#include <cstdint>

namespace orva
{
namespace
{

std::string bigEndian(uint32_t value)
{
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 255U);
    return bytes;
}

// The check that ends a chunk: CRC-32, least bit first.
uint32_t checkOf(const std::string &bytes)
{
    uint32_t rest = 0xffffffffU;
    for (const char byte : bytes) {
        rest ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            rest = rest >> 1 ^ (rest & 1U ? 0xedb88320U : 0U);
    }
    return ~rest;
}

} // namespace

void tellResolution(std::string &png, int dotsPerInch)
{
    const size_t head = 8 + 4 + 4 + 13 + 4; // the signature, and the chunk IHDR
    const auto dotsOfMetre = static_cast<uint32_t>(std::lround(dotsPerInch / 0.0254));
    const std::string chunk = "pHYs" + bigEndian(dotsOfMetre) + bigEndian(dotsOfMetre) + '\1';
    png.insert(head, bigEndian(9) + chunk + bigEndian(checkOf(chunk)));
}

} // namespace orva
