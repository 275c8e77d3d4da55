// The guard of the binary interface: it names what has changed. That nothing has is the test by which ctest builds the
// libraries that this one looks at.
#include "support/program.h"

#include <gtest/gtest.h>

namespace
{

namespace fs = std::filesystem;

// The part of a record from `begin` to after `end`.
std::string part(const std::string &record, const std::string &begin, const std::string &end)
{
    const size_t at = record.find(begin);
    if (at == std::string::npos)
        throw std::runtime_error("no " + begin);
    return record.substr(at, record.find(end, at) + end.size() - at);
}

std::string symbolIn(const std::string &record, const std::string &function)
{
    return part(record, "    <elf-symbol name='" + function + "'", "/>\n");
}

std::string declarationIn(const std::string &record, const std::string &function)
{
    return part(record, "    <function-decl name='" + function + "'", "</function-decl>\n");
}

// As in 'a6c45d85', quotes included.
std::string typeIn(const std::string &record, const std::string &declaration)
{
    const std::string line = part(record, "<" + declaration, "/>");
    const size_t at = line.find(" id=") + 4;
    return line.substr(at, line.size() - 2 - at);
}

std::string replaced(std::string text, const std::string &piece, const std::string &other)
{
    size_t at = text.find(piece);
    EXPECT_NE(at, std::string::npos) << piece;
    for (; at != std::string::npos; at = text.find(piece, at + other.size()))
        text.replace(at, piece.size(), other);
    return text;
}

// A library whose interface was another before: its record then, made from that of now, and what is told of the change.
struct Change {
    std::string library;
    std::string (*before)(const std::string &record);
    std::string told;
};

const Change changes[] = {
    {"liborva",
     [](const std::string &record) {
         const std::string symbol = symbolIn(record, "ORVA_RemoveDC");
         return replaced(replaced(record, symbol, ""), declarationIn(record, "ORVA_RemoveDC"), "");
     },
     "[A] 'function void ORVA_RemoveDC(const float*, float*, int32_t)'"},
    {"libkett",
     [](const std::string &record) {
         const std::string symbol = symbolIn(record, "KTUTILS_sleep_msec");
         const std::string declaration = declarationIn(record, "KTUTILS_sleep_msec");
         return replaced(replaced(record, symbol, symbol + replaced(symbol, "sleep", "pause")), declaration,
                         declaration + replaced(declaration, "sleep", "pause"));
     },
     "[D] 'function void KTUTILS_pause_msec(int32_t)'"},
    {"liborva",
     [](const std::string &record) {
         const std::string declaration = declarationIn(record, "ORVAUTIL_Freq2Mels");
         return replaced(record, declaration,
                         replaced(declaration,
                                  "parameter type-id=" + typeIn(record, "type-decl name='double'"),
                                  "parameter type-id=" + typeIn(record, "type-decl name='float'")));
     },
     "[C] 'function double ORVAUTIL_Freq2Mels(float)'"},
    {"liborva",
     [](const std::string &record) {
         const std::string member = part(record, "<var-decl name='im'", "\n");
         return replaced(record, member,
                         replaced(member, typeIn(record, "type-decl name='float'"),
                                  typeIn(record, "typedef-decl name='int32_t'")));
     },
     "type of 'int32_t im' changed"},
};

} // namespace

TEST(Interface, WhatHasChangedIsNamed)
{
    for (const auto &[library, before, told] : changes) {
        const support::Folder records;
        fs::copy(SOURCE_DIR "/abi", records.path);
        const std::string record = records / (library + ".abi");
        support::writeFile(record, before(support::readFile(record)));

        const support::Outcome outcome =
            support::run({SOURCE_DIR "/script/abi", "compare", records.path, ABI_BUILD}, records);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.out.find(told), std::string::npos) << told << " is not in\n" << outcome.out;
        EXPECT_NE(outcome.out.find("abi: " + library + " differs from " + record +
                                   "; if that is deliberate, run: script/abi renew\n"),
                  std::string::npos)
            << outcome.out;
        const std::string other = library == "liborva" ? "libkett" : "liborva";
        EXPECT_NE(outcome.out.find("abi: " + other + " has the recorded interface\n"), std::string::npos);
        EXPECT_EQ(outcome.err, "");
    }
}

TEST(Interface, ARecordThatIsMissingFails)
{
    const support::Folder records;
    fs::copy(SOURCE_DIR "/abi/libkett.abi", records.path);
    const support::Outcome outcome =
        support::run({SOURCE_DIR "/script/abi", "compare", records.path, ABI_BUILD}, records);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("liborva.abi"), std::string::npos);
}

TEST(Interface, RenewedItNamesNoFolderOfTheMachine)
{
    const support::Folder records;
    const support::Outcome outcome =
        support::run({SOURCE_DIR "/script/abi", "renew", records.path, ABI_BUILD}, records);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    for (const char *library : {"liborva.abi", "libkett.abi"}) {
        const std::string record = support::readFile(records / library);
        EXPECT_NE(record.find(" path='src/"), std::string::npos);
        for (const char *folder : {" path='/", "../", SOURCE_DIR, ABI_BUILD})
            EXPECT_EQ(record.find(folder), std::string::npos) << library << " holds " << folder;
    }
}
