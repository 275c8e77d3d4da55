// A save that is killed, or of which a call fails, at each of its calls in turn: afterwards the store holds
// the old text or the new one, whole.
//
// strace does it at every system call. Where the system forbids tracing, what remains is the interposer,
// which does it at every call of the C library for files; that walk runs in any case.
#include "fft/ORVAfft_store.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <map>
#include <sstream>

#include <sys/wait.h>

using store::Store;
using support::readFile;
using support::writeFile;

namespace
{

struct Fault {
    bool kills;
    int error; // otherwise
};

constexpr Fault killed = {true, 0};
constexpr Fault diskFull = {false, ENOSPC};
constexpr Fault diskBroken = {false, EIO};

std::string program(const Store &store)
{
    return std::string("'") + SAVE_STORE_PROGRAM + "' '" + store.folder.path.string() + "'";
}

// As a shell tells it: the exit code, or 128 and the signal.
int run(const std::string &command)
{
    const int status = std::system(("exec " + command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool mayTrace()
{
    static const bool may = run("strace -o /dev/null -e inject=getppid:error=EIO true >/dev/null") == 0;
    return may;
}

// A system call, and which one of its name it is in the life of the process.
struct Call {
    std::string name;
    int number;
};

constexpr const char *beginMark = "/the save begins";
constexpr const char *endMark = "/the save ends";

// The calls between the marks of a trace.
std::vector<Call> callsOfTheSave(const std::string &trace)
{
    std::vector<Call> calls;
    std::map<std::string, int> numbers;
    bool saves = false;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        const std::string name = line.substr(0, line.find('('));
        const int number = ++numbers[name];
        if (line.find(endMark) != std::string::npos)
            break;
        if (saves)
            calls.push_back({name, number});
        saves = saves || line.find(beginMark) != std::string::npos;
    }
    return calls;
}

// Each makes the n-th call of a save suffer the fault; false when there is none.
using Walk = std::function<bool(const Store &, const Fault &, size_t n)>;

bool byStrace(const Store &store, const Fault &fault, size_t n)
{
    static const std::vector<Call> calls = [] {
        const Store scratch;
        const std::string trace = scratch.folder.path / "trace";
        writeFile(scratch.path, store::wisdomOf({16}));
        EXPECT_EQ(run("strace -o " + trace + " " + program(scratch)), 0);
        return callsOfTheSave(readFile(trace));
    }();
    EXPECT_GT(calls.size(), 10u);
    if (n > calls.size())
        return false;
    const Call &call = calls[n - 1];
    // Memory is no part of the walk: FFTW ends the process when it has none.
    if (!fault.kills && (call.name == "brk" || call.name == "mmap" || call.name == "munmap"))
        return true;
    const support::Folder traces;
    const std::string trace = traces.path / "trace";
    run("strace -o " + trace + " -e inject=" + call.name +
        (fault.kills ? ":signal=KILL" : ":error=" + std::to_string(fault.error)) +
        ":when=" + std::to_string(call.number) + " " + program(store));
    const std::string traced = readFile(trace);
    EXPECT_NE(traced.find(beginMark), std::string::npos) << call.name;
    EXPECT_EQ(traced.find(endMark) == std::string::npos, fault.kills) << call.name;
    return true;
}

bool byInterposer(const Store &store, const Fault &fault, size_t n)
{
    const std::string number = std::to_string(n);
    const int code =
        run(program(store) +
            (fault.kills ? " kill " + number : " fail " + number + " " + std::to_string(fault.error)));
    EXPECT_TRUE(code == 3 || (fault.kills ? code == 128 + SIGKILL : code == 0)) << code;
    return code != 3;
}

std::vector<Walk> walks()
{
    if (mayTrace())
        return {byInterposer, byStrace};
    std::printf("tracing is forbidden here: faults come from the interposer alone\n");
    return {byInterposer};
}

struct Texts {
    std::string before = store::wisdomOf({16});
    std::string after = [this] {
        const Store store;
        writeFile(store.path, before);
        EXPECT_EQ(run(program(store)), 0);
        return readFile(store.path);
    }();
};

// Runs the walk to its end, looks at the folder after each step, and wants both texts to have turned up.
void walkThrough(const Walk &walk, const Fault &fault, const std::function<void(const Store &)> &look)
{
    const Texts texts;
    ASSERT_NE(texts.before, texts.after);
    int olds = 0;
    int news = 0;
    for (size_t n = 1; n < 200; ++n) {
        const Store store;
        writeFile(store.path, texts.before);
        if (!walk(store, fault, n))
            break;
        const std::string text = readFile(store.path);
        olds += text == texts.before;
        news += text == texts.after;
        EXPECT_TRUE(text == texts.before || text == texts.after) << "call " << n << ":\n" << text;
        look(store);
        if (testing::Test::HasFailure())
            return;
    }
    EXPECT_GT(olds, 3);
    EXPECT_GT(news, 0);
}

} // namespace

// What a killed save leaves beside the store stays there and is in nobody's way.
TEST(SaveFaults, AKillAtAnyCallLeavesTheOldStoreOrTheNewOne)
{
    for (const Walk &walk : walks()) {
        int leftovers = 0;
        walkThrough(walk, killed, [&leftovers](const Store &store) {
            for (const std::string &name : store.folder.entries())
                if (store.folder.path / name != store.path) {
                    ++leftovers;
                    EXPECT_TRUE(name.starts_with(".kett-") && name.ends_with(".tmp")) << name;
                }
        });
        EXPECT_GT(leftovers, 0);
    }
}

TEST(SaveFaults, TheNextSaveSucceedsBesideALeftover)
{
    const Texts texts;
    const Store store;
    for (size_t n = 1; store.isTidy() && n < 200; ++n) {
        writeFile(store.path, texts.before);
        byInterposer(store, killed, n);
    }
    ASSERT_FALSE(store.isTidy());
    writeFile(store.path, texts.before);
    EXPECT_EQ(run(program(store)), 0);
    EXPECT_EQ(readFile(store.path), texts.after);
}

TEST(SaveFaults, AFullDiskLeavesTheOldStoreOrTheNewOneAndNothingElse)
{
    for (const Walk &walk : walks())
        walkThrough(walk, diskFull, [](const Store &store) { EXPECT_TRUE(store.isTidy()); });
}

TEST(SaveFaults, ABrokenDiskLeavesTheOldStoreOrTheNewOneAndNothingElse)
{
    for (const Walk &walk : walks())
        walkThrough(walk, diskBroken, [](const Store &store) { EXPECT_TRUE(store.isTidy()); });
}
