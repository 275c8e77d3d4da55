#include "support/pattern.h"

#include <regex>

namespace support
{

struct Pattern::Compiled {
    std::regex expression;
};

namespace
{

Groups groupsOf(const std::smatch &match)
{
    return {match.begin(), match.end()};
}

} // namespace

Pattern::Pattern(const std::string &expression) : compiled(new Compiled{std::regex(expression)}) {}

std::optional<Groups> Pattern::match(const std::string &text) const
{
    std::smatch match;
    return std::regex_match(text, match, compiled->expression) ? std::optional(groupsOf(match))
                                                               : std::nullopt;
}

std::optional<Groups> Pattern::startOf(const std::string &text) const
{
    std::smatch match;
    return std::regex_search(text, match, compiled->expression, std::regex_constants::match_continuous)
               ? std::optional(groupsOf(match))
               : std::nullopt;
}

std::optional<Groups> Pattern::firstIn(const std::string &text) const
{
    std::smatch match;
    return std::regex_search(text, match, compiled->expression) ? std::optional(groupsOf(match))
                                                                : std::nullopt;
}

std::vector<Groups> Pattern::allIn(const std::string &text) const
{
    std::vector<Groups> all;
    for (std::sregex_iterator i(text.begin(), text.end(), compiled->expression), end; i != end; ++i)
        all.push_back(groupsOf(*i));
    return all;
}

std::string Pattern::replacedIn(const std::string &text, const std::string &by) const
{
    return std::regex_replace(text, compiled->expression, by);
}

} // namespace support
