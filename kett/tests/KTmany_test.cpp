// Many names: the time that each takes does not grow with their number. Were it so, these would take minutes.
#include <kett/kett.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace
{

constexpr int many = 60000;

// Runs the step for each number, and holds all of them to a few seconds.
template <class Step> void forMany(Step step)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < many; ++i)
        step(i);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

std::string nameOf(int i)
{
    return "kett.many." + std::to_string(i);
}

} // namespace

TEST(Many, Settings)
{
    forMany([](int i) { EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "%s=%d", nameOf(i).c_str(), i)); });
    forMany([](int i) { ASSERT_EQ(KTSETTINGS_GetIntEx(nullptr, nameOf(i).c_str()), i); });
    forMany([](int i) { EXPECT_TRUE(KTSETTINGS_UnsetEx(nullptr, nameOf(i).c_str())); });
    forMany([](int i) { ASSERT_EQ(KTSETTINGS_GetIntEx(nullptr, nameOf(i).c_str()), 0); });
}

TEST(Many, PublishedValues)
{
    forMany([](int i) { EXPECT_TRUE(KTENV_SetEnvValue(nameOf(i).c_str(), std::to_string(i).c_str())); });
    forMany([](int i) { ASSERT_EQ(KTENV_GetEnvValue(nameOf(i).c_str()), std::to_string(i)); });
}

// Each that was given out stays valid.
TEST(Many, ValuesOfOneName)
{
    std::vector<const char *> given;
    forMany([&](int i) {
        EXPECT_TRUE(KTENV_SetEnvValue("KETT_MANY", nameOf(i).c_str()));
        given.push_back(KTENV_GetEnvValue("KETT_MANY"));
    });
    forMany([&](int i) { ASSERT_EQ(given[static_cast<size_t>(i)], nameOf(i)); });
    EXPECT_TRUE(KTENV_SetEnvValue("KETT_MANY", nameOf(7).c_str()));
    EXPECT_EQ(KTENV_GetEnvValue("KETT_MANY"), given[7]) << "a text that is there is used again";
}

TEST(Many, Versions)
{
    forMany([](int i) { EXPECT_TRUE(KTVERSION_Register(nameOf(i).c_str(), i, 0, 0, 0)); });
    forMany([](int i) {
        int32_t major = -1;
        ASSERT_TRUE(KTVERSION_Find(nameOf(i).c_str(), &major, nullptr, nullptr, nullptr));
        ASSERT_EQ(major, i);
    });
}

TEST(Many, ShownDescriptors)
{
    std::vector<KT_MEM *> shown;
    forMany([&](int) {
        shown.push_back(KTMEM_CreateMemDescrEx("many", 0, 0));
        KTMEM_DisplayMemDescr(shown.back());
    });
    forMany([&](int i) { // the first, the last and those between go
        if (i % 3 != 1)
            KTMEM_DisposeMemDescr(shown[static_cast<size_t>(i)]);
    });
    EXPECT_EQ(KTMEM_DisposeDisplayed(), many / 3);
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 0);
}
