#include "filter_from.h"

#include "failure.h"
#include "library_message.h"

extern "C" {
#include "common/filter_text.h"
}

#include <algorithm>
#include <cmath>

namespace orva
{

Filter filterFrom(const std::string &text, int rate, int channels)
{
    Filter filter(filterFromText(text.c_str(), rate, channels));
    keepLibraryMessages();
    if (filter == nullptr)
        throw Failure{usedWrongly, ""}; // it has been told why
    return filter;
}

std::vector<float> answerOf(const std::string &text, int rate)
{
    const Filter filter = filterFrom(text, rate, 1);
    std::vector<float> answer(answerSamples);
    answer[0] = 1;
    ORVA_Filter(filter.get(), answer.data(), answer.data(), answerSamples);
    float greatest = 0;
    for (const float sample : answer) {
        if (!std::isfinite(sample))
            failUse("configuration: this filter is not stable");
        greatest = std::max(greatest, std::fabs(sample));
    }
    while (answer.size() > 1 && std::fabs(answer.back()) <= 1e-12F * greatest)
        answer.pop_back();
    return answer;
}

} // namespace orva
