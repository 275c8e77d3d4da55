// A second reader of configuration strings, written from the grammar in its own way: regular expressions over
// copies of the text. For short texts, in the C locale.
#pragma once

#include "KTstring_lookup.h"
#include "support/pattern.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace reference
{

struct Value {
    std::string text;
    bool isQuoted;
};

using Config = std::map<std::string, Value>;

// What matches at the beginning of `rest` is taken from it; its first group is given.
inline std::optional<std::string> take(std::string &rest, const support::Pattern &pattern)
{
    const auto groups = pattern.startOf(rest);
    if (!groups)
        return std::nullopt;
    rest.erase(0, (*groups)[0].size());
    return (*groups)[1];
}

// The length of the bracketed text that `text` begins with, 0 if it is not closed.
inline size_t bracketedLength(const std::string &text)
{
    int depth = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        depth += text[i] == '[' ? 1 : text[i] == ']' ? -1 : 0;
        if (depth == 0)
            return i + 1;
    }
    return 0;
}

inline Config read(std::string rest)
{
    static const support::Pattern separators(R"(()[\s;,]+)");
    static const support::Pattern keyAndEquals(R"(([^\s;,="\[\]]+)\s*=\s*)");
    static const support::Pattern word(R"(([^\s;,"\[][^\s;,]*))");
    static const support::Pattern quoted("\"([^\"]*)\"");
    static const support::Pattern other(R"(()[^\s;,]+)");
    Config config;
    while (!rest.empty()) {
        if (take(rest, separators))
            continue;
        const auto key = take(rest, keyAndEquals);
        if (!key) {
            take(rest, other);
            continue;
        }
        if (const auto text = take(rest, word)) {
            config[*key] = {*text, false};
            continue;
        }
        Value value;
        if (rest.starts_with('"')) {
            const auto text = take(rest, quoted);
            if (!text)
                return config;
            value = {*text, true};
        } else if (rest.starts_with('[')) {
            const size_t length = bracketedLength(rest);
            if (length == 0)
                return config;
            value = {rest.substr(0, length), false};
            rest.erase(0, length);
        } else {
            continue;
        }
        if (!take(rest, other))
            config[*key] = value;
    }
    return config;
}

#define REFERENCE_NUMBER R"([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?)"
#define REFERENCE_ROW REFERENCE_NUMBER R"((?:(?:\s+|\s*,\s*))" REFERENCE_NUMBER ")*"

inline bool isNumber(const std::string &text)
{
    static const support::Pattern number(REFERENCE_NUMBER);
    return number.match(text).has_value();
}

inline std::optional<std::string> text(const Config &config, const std::string &key)
{
    const auto found = config.find(key);
    return found == config.end() ? std::nullopt : std::optional(found->second.text);
}

inline std::optional<float> real(const Config &config, const std::string &key)
{
    const auto word = text(config, key);
    if (!word || !isNumber(*word))
        return std::nullopt;
    const float value = std::strtof(word->c_str(), nullptr);
    return std::isinf(value) ? std::nullopt : std::optional(value);
}

// For numbers of few digits, which a long double holds exactly.
inline std::optional<long double> wholeNumber(const Config &config, const std::string &key)
{
    const auto word = text(config, key);
    if (!word || !isNumber(*word))
        return std::nullopt;
    return std::trunc(std::strtold(word->c_str(), nullptr));
}

inline std::optional<int32_t> integer(const Config &config, const std::string &key)
{
    const auto value = wholeNumber(config, key);
    if (!value || *value < INT32_MIN || *value > INT32_MAX)
        return std::nullopt;
    return static_cast<int32_t>(*value);
}

inline std::optional<bool> boolean(const Config &config, const std::string &key)
{
    static const std::map<std::string, bool> words = {{"true", true}, {"false", false}, {"yes", true},
                                                      {"no", false},  {"on", true},     {"off", false}};
    auto word = text(config, key);
    if (!word)
        return std::nullopt;
    for (char &c : *word)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (const auto found = words.find(*word); found != words.end())
        return found->second;
    const auto value = wholeNumber(config, key);
    if (!value || std::abs(*value) >= 9223372036854775808.0L)
        return std::nullopt;
    return *value != 0;
}

inline std::optional<lookup::Matrix> matrix(const Config &config, const std::string &key)
{
    static const support::Pattern flat(R"(\[\s*)" REFERENCE_ROW R"((?:\s*;\s*)" REFERENCE_ROW
                                       R"()*\s*;?\s*\])");
    static const support::Pattern nested(R"(\[\s*\[\s*)" REFERENCE_ROW
                                         R"(\s*\](?:\s*,?\s*\[\s*)" REFERENCE_ROW R"(\s*\])*\s*\])");
    static const support::Pattern row(REFERENCE_ROW);
    static const support::Pattern number(REFERENCE_NUMBER);
    const auto found = config.find(key);
    if (found == config.end() || found->second.isQuoted)
        return std::nullopt;
    const std::string &value = found->second.text;
    if (!isNumber(value) && !flat.match(value) && !nested.match(value))
        return std::nullopt;
    // Only ';' and brackets part two rows.
    lookup::Matrix result = {0, 0, {}};
    for (const auto &line : row.allIn(value)) {
        int32_t columns = 0;
        for (const auto &word : number.allIn(line[0])) {
            result.values.push_back(std::strtod(word[0].c_str(), nullptr));
            ++columns;
        }
        if (result.rows++ > 0 && columns != result.columns)
            return std::nullopt;
        result.columns = columns;
    }
    for (const double x : result.values) {
        if (std::isinf(x))
            return std::nullopt;
    }
    return result;
}

#undef REFERENCE_NUMBER
#undef REFERENCE_ROW

} // namespace reference
