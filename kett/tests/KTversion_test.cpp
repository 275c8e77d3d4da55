#include <kett/KTversion.h>

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Numbers = std::array<int32_t, 4>;

std::optional<Numbers> find(const char *name)
{
    Numbers numbers{-1, -2, -3, -4};
    if (KTVERSION_Find(name, &numbers[0], &numbers[1], &numbers[2], &numbers[3]))
        return numbers;
    EXPECT_EQ(numbers, (Numbers{-1, -2, -3, -4})) << "written though nothing was found";
    return std::nullopt;
}

} // namespace

TEST(VersionRegister, GivesBackWhatWasRegistered)
{
    EXPECT_TRUE(KTVERSION_Register("liba", 3, 7, 18, 0));
    EXPECT_TRUE(KTVERSION_Register("libb", -1, INT32_MAX, INT32_MIN, 9));
    EXPECT_EQ(find("liba"), (Numbers{3, 7, 18, 0}));
    EXPECT_EQ(find("libb"), (Numbers{-1, INT32_MAX, INT32_MIN, 9}));
}

TEST(VersionRegister, ASecondRegistrationReplacesTheNumbers)
{
    EXPECT_TRUE(KTVERSION_Register("liba", 1, 2, 3, 4));
    EXPECT_TRUE(KTVERSION_Register("liba", 5, 6, 7, 8));
    EXPECT_EQ(find("liba"), (Numbers{5, 6, 7, 8}));
}

TEST(VersionRegister, CopiesTheName)
{
    std::string name = "short-lived";
    EXPECT_TRUE(KTVERSION_Register(name.c_str(), 1, 2, 3, 4));
    name = "changed";
    EXPECT_EQ(find("short-lived"), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(find("changed"), std::nullopt);
}

TEST(VersionRegister, FindsNothingElse)
{
    EXPECT_TRUE(KTVERSION_Register("liba", 1, 2, 3, 4));
    for (const char *name : {"", "lib", "liba ", "LIBA", "libab"})
        EXPECT_EQ(find(name), std::nullopt) << '"' << name << '"';
    EXPECT_EQ(find(nullptr), std::nullopt);
}

TEST(VersionRegister, RefusesANullName)
{
    EXPECT_FALSE(KTVERSION_Register(nullptr, 1, 2, 3, 4));
}

TEST(VersionRegister, WritesOnlyTheNumbersAskedFor)
{
    EXPECT_TRUE(KTVERSION_Register("liba", 1, 2, 3, 4));
    int32_t release = 0;
    EXPECT_TRUE(KTVERSION_Find("liba", nullptr, nullptr, &release, nullptr));
    EXPECT_EQ(release, 3);
    EXPECT_TRUE(KTVERSION_Find("liba", nullptr, nullptr, nullptr, nullptr));
}

// Four equal numbers go in; a mixture would show a torn record.
TEST(VersionRegister, ServesSeveralThreads)
{
    KTVERSION_Register("shared", 0, 0, 0, 0);
    std::vector<std::thread> threads;
    for (int32_t i = 1; i <= 4; ++i)
        threads.emplace_back([i] {
            for (int k = 0; k < 500; ++k) {
                KTVERSION_Register("shared", i, i, i, i);
                KTVERSION_Register(("own" + std::to_string(i)).c_str(), i, k, i, k);
                const auto numbers = find("shared");
                ASSERT_TRUE(numbers.has_value());
                EXPECT_EQ(*numbers, (Numbers{(*numbers)[0], (*numbers)[0], (*numbers)[0], (*numbers)[0]}));
            }
        });
    for (auto &thread : threads)
        thread.join();
    for (int32_t i = 1; i <= 4; ++i)
        EXPECT_EQ(find(("own" + std::to_string(i)).c_str()), (Numbers{i, 499, i, 499}));
}
