// Stands in for the parts of libkett that the engine uses: writes down every call and answers as a test
// wants.
#pragma once

#include "platform/path.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <source_location>
#include <string>
#include <vector>

namespace recorder
{

// Writes a call down, for a test that stands in for more of libkett.
void note(const std::string &call);

struct Answers {
    std::function<const char *()> folder = [] { return nullptr; };
    bool useWisdom = true;
    bool preparePlans = false;
    std::function<int64_t()> maxPlanLength = [] { return 4096; };
    bool fileExists = false;
    bool opensToRead = true;
    bool opensToWrite = true;
    std::function<int64_t()> fileSize; // unless set, that of the content
    std::string content;               // what a read gives; what was written last
    bool threadStarts = true;
    std::function<void()> duringJoin = [] {};
};

extern Answers answers;

using Calls = std::vector<std::string>;

// One text a call, in order; empties the list. A lock taken twice or released twice is a call "WRONG ...".
Calls takeCalls();

// Texts of calls, and lists of them.
inline const std::string folder = "ask KT_DATA_PATH";
inline const std::string use = "setting orva.fftw.use_wisdom=[1]";
inline const std::string prepare = "setting orva.fftw.prepare_plans=[0]";
inline const std::string longest = "setting orva.fftw.max_plan_len=[4096]";
inline const std::string path = std::string("/data") + orva::pathSeparator + "ruko.optimization";

inline Calls operator+(Calls first, const Calls &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

inline Calls times(int count, const Calls &calls)
{
    Calls all;
    for (; count > 0; --count)
        all = all + calls;
    return all;
}

inline void announceFolder()
{
    answers.folder = [] { return "/data"; };
}

inline void expectCalls(const Calls &expected, std::source_location at = std::source_location::current())
{
    const testing::ScopedTrace where(at.file_name(), static_cast<int>(at.line()), "expected here");
    EXPECT_EQ(takeCalls(), expected);
}

inline const Calls doneLoad = {"lock", "unlock"};
inline const Calls missingLoad = {"lock", folder, use, "exists " + path, "unlock"};

} // namespace recorder
