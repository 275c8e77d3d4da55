// Hashes of exact results are those of the table, which holds for every system, compiler and level.
#include "comparison.h"
#include "sha256.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::string hashOf(const std::string &text, int32_t times = 1)
{
    bits::Sha256 hash;
    for (int32_t i = 0; i < times; ++i)
        hash.add({reinterpret_cast<const uint8_t *>(text.data()), text.size()});
    return hash.hexadecimal();
}

} // namespace

TEST(Sha256, GivesTheDigestsOfTheStandardsExamples)
{
    EXPECT_EQ(hashOf(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(hashOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(hashOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(hashOf(std::string(1000, 'a'), 1000),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Bits, AreThoseOfTheTableAtEveryLevel)
{
    for (const orva::Level level : orva::allLevels)
        EXPECT_TRUE(bits::compare(level)) << orva::nameOf(level);
}

TEST(Bits, OfTransformsAreNearTheirDefinition)
{
    EXPECT_TRUE(bits::compareDistances());
}
