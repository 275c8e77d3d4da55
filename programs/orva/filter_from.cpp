#include "filter_from.h"

#include "failure.h"
#include "filter_text.h"
#include "library_message.h"

#include <algorithm>
#include <cmath>

namespace orva
{

Filter filterFrom(const std::string &text, int rate, int channels)
{
    checkFilterText(text, rate);
    libraryMessage(""); // forgets what was said before
    Filter filter(ORVA_CreateFilter("%s; fs=%d; num_channels=%d", text.c_str(), rate, channels));
    if (filter == nullptr)
        failUse(libraryMessage("no filter has these edges, attenuations and order"));
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
            failUse("this filter is not stable");
        greatest = std::max(greatest, std::fabs(sample));
    }
    while (answer.size() > 1 && std::fabs(answer.back()) <= 1e-12F * greatest)
        answer.pop_back();
    return answer;
}

} // namespace orva
