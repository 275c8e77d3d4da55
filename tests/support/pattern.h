// Regular expressions, compiled in one place: a file that names std::regex takes five seconds of a processor longer to
// compile, and more than ten under a sanitizer.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace support
{

// The text that matches, and after it those of the groups; empty is a group that has no part in it.
using Groups = std::vector<std::string>;

class Pattern
{
public:
    explicit Pattern(const std::string &expression);

    std::optional<Groups> match(const std::string &text) const;   // of the whole text
    std::optional<Groups> startOf(const std::string &text) const; // of what it begins with
    std::optional<Groups> firstIn(const std::string &text) const;
    std::vector<Groups> allIn(const std::string &text) const;
    std::string replacedIn(const std::string &text, const std::string &by) const; // all of them

private:
    struct Compiled;
    std::shared_ptr<const Compiled> compiled;
};

} // namespace support
