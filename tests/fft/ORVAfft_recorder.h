// Stands in for the parts of libkett that the engine uses: writes down every call and answers as a test
// wants.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace recorder
{

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

// One text a call, in order; empties the list. A lock taken twice or released twice is a call "WRONG ...".
std::vector<std::string> takeCalls();

} // namespace recorder
