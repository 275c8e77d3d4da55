// What the headers say about real-time threads.
#pragma once

#include "support/pattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace realtime
{

// The text of a comment without the asterisks in front of its lines, all white space a single blank.
inline std::string flat(const std::string &comment)
{
    static const support::Pattern lineStart(R"(\n\s*\*)"), whiteSpace(R"(\s+)");
    return whiteSpace.replacedIn(lineStart.replacedIn(comment, "\n"), " ");
}

enum class Claim { none, no, yes };

// "Real time: yes (...)", "... real time: no ...": what does not begin with no or
// not (promised) is yes, with or without a condition.
inline Claim claimIn(const std::string &comment)
{
    static const support::Pattern claim(R"([Rr]eal time: (not?\b)?)");
    const auto groups = claim.firstIn(flat(comment));
    if (!groups)
        return Claim::none;
    return (*groups)[1].empty() ? Claim::yes : Claim::no;
}

struct Declaration {
    std::string name;
    std::string comment; // the one in front of it
};

// The exported functions of a header, each with its comment. `fileComment` receives the one at the top.
inline std::vector<Declaration> declarationsIn(const std::string &header, std::string &fileComment)
{
    std::vector<Declaration> found;
    std::ifstream file(header);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    static const support::Pattern name(R"((\w+)\s*\()");
    std::string comment;
    for (size_t at = 0; at < text.size();) {
        if (text.compare(at, 2, "/*") == 0) {
            const size_t end = std::min(text.find("*/", at), text.size() - 2) + 2;
            comment = text.substr(at, end - at);
            if (comment.find("@file") != std::string::npos)
                fileComment = comment;
            at = end;
            continue;
        }
        const size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        const std::string line = text.substr(at, end - at);
        if (line.starts_with("ORVA_API ") || line.starts_with("KT_API "))
            if (const auto groups = name.firstIn(line))
                found.push_back({(*groups)[1], comment});
        at = end;
    }
    return found;
}

// The names of the functions for which the headers of a folder say yes. One that says nothing takes the word of
// the top of its file, one that refers to another, "real time: as NAME()", that of the other.
inline std::set<std::string> functionsForRealTime(const std::string &folder)
{
    static const support::Pattern reference(R"([Rr]eal time: as (\w+)\(\))");
    std::set<std::string> yes;
    std::vector<std::pair<std::string, std::string>> references;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        std::string fileComment;
        for (const auto &[name, comment] : declarationsIn(entry.path(), fileComment)) {
            Claim claim = claimIn(comment);
            if (const auto groups = reference.firstIn(flat(comment))) {
                references.emplace_back(name, (*groups)[1]);
                continue;
            }
            if (claim == Claim::none)
                claim = claimIn(fileComment);
            EXPECT_NE(claim, Claim::none) << name << " says nothing about real time";
            if (claim == Claim::yes)
                yes.insert(name);
        }
    }
    for (const auto &[name, other] : references)
        if (yes.contains(other))
            yes.insert(name);
    return yes;
}

} // namespace realtime
