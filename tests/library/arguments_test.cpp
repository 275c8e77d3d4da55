// Every function with every combination of edge arguments that its header admits, in a child process a function: the stated
// result, nothing outside of what it is given, and nothing of the host's changed.
#include "arguments/walk.h"
#include "interface.h"
#include "names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cfenv>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace arguments;

namespace
{

constexpr unsigned mostSeconds = 300; // for one function, under a sanitizer
constexpr rlim_t mostMemory = rlim_t{3} << 30;

std::vector<Row> allRows()
{
    std::vector<Row> rows;
    for (const Row *family : {core, windows, transforms, filters, streams, measures})
        for (const Row *row = family; row->name != nullptr; ++row)
            rows.push_back(*row);
    return rows;
}

// So that lengths that a system with much memory would serve for minutes find none here.
void limitMemory()
{
#ifndef __SANITIZE_ADDRESS__ // which takes terabytes of addresses
    const rlimit limit = {mostMemory, mostMemory};
    setrlimit(RLIMIT_AS, &limit);
#endif
}

// What belongs to the process and no call changes.
std::string processState()
{
    std::ostringstream out;
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) == 0)
            out << reinterpret_cast<void *>(action.sa_handler) << ' ' << action.sa_flags << '\n';
    }
    const mode_t mask = umask(0);
    umask(mask);
    out << mask << ' ' << std::filesystem::current_path();
    return out.str();
}

struct Outcome {
    Findings findings;
    std::string fault; // none if it is empty
};

// What all calls of a function do; in a child, since a fault ends it.
Outcome outcomeOf(const Row &row)
{
    void *const shared =
        mmap(nullptr, sizeof(Findings), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto *const findings = new (shared) Findings{};
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(mostSeconds);
        limitMemory();
        const std::string before = processState();
        {
            Walk walk(*findings);
            while (walk.next())
                row.run(walk);
        }
        _exit(processState() == before ? 0 : 3);
    }
    int status = 0;
    waitpid(child, &status, 0);
    Outcome outcome = {*findings, findings->failure};
    munmap(shared, sizeof(Findings));
    if (WIFSIGNALED(status))
        outcome.fault = "signal " + std::to_string(WTERMSIG(status)) + ", with " + outcome.findings.arguments;
    else if (WEXITSTATUS(status) != 0)
        outcome.fault = "exit code " + std::to_string(WEXITSTATUS(status));
    return outcome;
}

std::string exceptions(int raised)
{
    std::string names;
    for (const auto &[flag, name] : {std::pair{FE_INVALID, "invalid "},
                                     {FE_DIVBYZERO, "division by zero "},
                                     {FE_OVERFLOW, "overflow "},
                                     {FE_UNDERFLOW, "underflow "}})
        if ((raised & flag) != 0)
            names += name;
    return names;
}

} // namespace

TEST(Arguments, EveryFunctionHasARow)
{
    std::vector<std::string> rows;
    for (const Row &row : allRows())
        rows.push_back(row.name);
    Names all;
    for (const Family &family : interfaceFamilies)
        all.insert(family.functions.begin(), family.functions.end());
    EXPECT_EQ(rows.size(), all.size());
    EXPECT_EQ(Names(rows.begin(), rows.end()), all);
}

TEST(Arguments, EdgesOfAllInAllCombinationsAreServedOrRefusedAsStated)
{
    // Where memory is out, and by the mathematics of the C library.
    const Names maySetErrno = {
        "ORVA_FFTProcCreate",        "ORVA_IFFTProcCreate", "ORVA_XcorrProcCreate",
        "ORVA_FMCLTProcCreate",      "ORVA_CreateFilter",   "ORVA_CreateFilterFromBiquads",
        "ORVA_SolafsCreate",         "ORVA_XcorrCoef",      "ORVA_PSDtoDB",
        "ORVAUTIL_Freq2Mels",        "ORVAUTIL_Mels2Freq",  "ORVA_ResampleInit",
        "ORVA_CreateFilterFromCoefs"};
    // Of ordinary numbers: divisions by lengths of 0 and by points that coincide, logarithms of 0, roots of -1; WebRTC's
    // suppressor at 32000 Hz.
    const Names mayRaise = {"ORVA_CreateWindow",
                            "ORVA_GetWindowNormFactor",
                            "ORVA_GetTwoWindowNormFactor",
                            "ORVA_CreatePreEmphAdjust",
                            "ORVA_PSDtoDB",
                            "ORVA_XcorrCoef",
                            "ORVA_FMCLTFreqWindow",
                            "ORVA_CreateFilter",
                            "ORVA_CreateFilterFromCoefs",
                            "ORVA_SolafsInputData",
                            "ORVA_DoNoiseSup",
                            "ORVA_DoNoiseSup16",
                            "ORVASPLINE_Estimate",
                            "ORVASPLINE_Interpolate",
                            "ORVAINTERPOLATE_Linear",
                            "ORVA_CalcZeroCrossRate",
                            "ORVAUTIL_Freq2Mels"};
    constexpr size_t mostStack = 64 * 1024;

    uint64_t calls = 0;
    size_t stack = 0;
    for (const Row &row : allRows()) {
        const auto [findings, fault] = outcomeOf(row);
        EXPECT_EQ(fault, "") << row.name;
        const std::string raised = exceptions(findings.raised);
        EXPECT_GT(findings.calls, 0u) << row.name;
        EXPECT_LE(findings.stack, mostStack) << row.name;
        EXPECT_TRUE(!findings.setsErrno || maySetErrno.contains(row.name)) << row.name << " sets errno";
        EXPECT_TRUE(raised.empty() || mayRaise.contains(row.name)) << row.name << " raises " << raised;
        std::printf("%-36s %7llu calls, %5zu bytes of stack%s%s%s\n", row.name,
                    static_cast<unsigned long long>(findings.calls), findings.stack,
                    findings.setsErrno ? ", sets errno" : "", raised.empty() ? "" : ", raises ",
                    raised.c_str());
        calls += findings.calls;
        stack = std::max(stack, findings.stack);
    }
    std::printf("%llu calls, %zu bytes of stack at most\n", static_cast<unsigned long long>(calls), stack);
}

// The control: what calls must not do would be seen.
TEST(Arguments, AFaultOfACallIsSeen)
{
    const auto faultOf = [](void (*run)(Walk &)) { return outcomeOf({"a function", run}).fault; };
    EXPECT_EQ(faultOf([](Walk &walk) {
                  float *const data = walk.out<float>(3, Walk::neverNull);
                  walk.call([&] { data[walk.pick({0, 1, 2, -1})] = 0.0f; });
              }),
              "nothing outside a room is written, with room, -1");
    EXPECT_EQ(faultOf([](Walk &walk) {
                  const float *const data = walk.in<float>(3);
                  walk.call([&] { const_cast<float *>(data)[2] = 1.0f; });
              }),
              "what is read stays, with ordinary");
    // A signal, or what a sanitizer makes of it.
    EXPECT_NE(faultOf([](Walk &walk) {
                  const volatile float *const data = walk.in<float>(3, Walk::neverNull);
                  walk.pick({0, 1}); // then the room stands at the other end
                  walk.call([&] { return data[3] > data[-1]; });
              }),
              "");
    EXPECT_EQ(faultOf([](Walk &walk) { walk.call([] { std::fesetround(FE_UPWARD); }); }),
              "rounding, and the masks of exceptions and signals, stay, with ");
    EXPECT_EQ(faultOf([](Walk &walk) { walk.call([] { errno = 0; }); }), "errno is never set to 0, with ");
    EXPECT_EQ(faultOf([](Walk &walk) { walk.call([] { std::signal(SIGPIPE, SIG_IGN); }); }), "exit code 3");
    EXPECT_EQ(faultOf([](Walk &walk) { walk.expect(walk.pick({1, 2, 3}) < 3, "small"); }), "small, with 3");
    EXPECT_GT(outcomeOf({"a function",
                         [](Walk &walk) {
                             walk.call([] {
                                 volatile char room[20000];
                                 for (volatile char &c : room)
                                     c = 1;
                             });
                         }})
                  .findings.stack,
              20000u);
}
