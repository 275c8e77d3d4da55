// SHA-256 of FIPS 180-4.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace bits
{

class Sha256
{
public:
    void add(std::span<const uint8_t> bytes);

    // Of all that has been added, in hexadecimal digits.
    std::string hexadecimal() const;

private:
    void addBlock();
    void append(uint8_t byte);

    std::array<uint32_t, 8> hash = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                    0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<uint8_t, 64> block = {};
    size_t filled = 0;  // of the block
    uint64_t total = 0; // bytes
};

} // namespace bits
