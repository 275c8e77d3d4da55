// Every call that creates or sets up, with its first allocation failing, then its second, until there is none left: the stated
// result, nothing kept, and whatever came of it can be used as stated and destroyed. A new function is a row of the table.
// Each failure has a process of its own, since FFTW ends it where it gets no memory. Test programs run with malloc's own
// caches off, so that what is in use can be counted.
#include "names.h"
#include "realtime_claims.h"
#include "support/folder.h"
#include "support/interposer.h"
#include "support/log.h"

#include <kett/KTenv.h>
#include <kett/KTmem.h>
#include <orva/orva.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using support::Message;
using Messages = std::vector<Message>;

constexpr int32_t length = 64;
alignas(64) std::array<float, 2 * length> input, output;
const std::array<double, 5> record = {1.0, 0.5, 0.25, 0.5, 0.25};

enum class Code { ours, FFTW, WebRTC }; // whose allocations are among those of a call

struct Row {
    const char *function;
    const char *title;
    uint64_t refusals;          // so many allocations are our own, at least
    std::function<bool()> call; // makes, looks and destroys; false for the failure result
    Messages refusal = {};      // the messages that come with it
    Code among = Code::ours;
    bool goesOn = false; // without the memory; what comes of it is then as if there had been enough
    std::function<void()> before = [] {}, after = [] {}; // without a failure
};

bool exists(bool made, bool destroyed)
{
    EXPECT_EQ(made, destroyed);
    return made;
}

bool filter(_ORVA_FILTER *made)
{
    return exists(made != nullptr, ORVA_DestroyFilter(made) == 1);
}

Row filterText(const char *title, const std::string &text)
{
    return {"ORVA_CreateFilter", title, 6, [text] { return filter(ORVA_CreateFilter("%s", text.c_str())); }};
}

Row resampler(const char *title, int32_t inputRate, int32_t outputRate, const char *config, uint64_t refusals)
{
    return {"ORVA_ResampleInit",
            title,
            refusals,
            [=] {
                ORVA_RESAMPLER *const made = ORVA_ResampleInit(inputRate, outputRate, config);
                return made != nullptr && ORVA_ResampleDestroy(made) == 1;
            },
            {support::error("ORVA_ResampleInit: Parametros invalidos")}};
}

Row suppressor(const char *title, int32_t rate, uint64_t refusals)
{
    return {"ORVA_CreateNoiseSupEx",
            title,
            refusals,
            [=] {
                ORVA_NOISESUP *const made = ORVA_CreateNoiseSupEx(rate, 2);
                return exists(made != nullptr, ORVA_DestroyNoiseSup(made));
            },
            {},
            Code::WebRTC};
}

Row transform(const char *function, ORVA_FFT *(*create)(int32_t))
{
    return {function,
            "64 samples",
            4, // record, samples, bins, what FFTW is about to take
            [=] {
                ORVA_FFT *const made = create(length);
                return exists(made != nullptr, ORVA_FFTProcDestroy(made));
            },
            {},
            Code::FFTW};
}

const Message spectraMessage = support::error("ORVAXcorrProcCreate: Erro na alocacao dos vetores!\n");

// Null, or a processor that executes, or one that executes nothing and touches nothing.
bool correlation()
{
    ORVA_XCORR *const made = ORVA_XcorrProcCreate(length, length);
    if (made == nullptr)
        return false;
    EXPECT_EQ(ORVA_XcorrVectorLength(made), 2 * length - 1);
    output.fill(7.0f);
    const int32_t plain = ORVA_XcorrProcExecute(made, input.data(), input.data(), output.data());
    EXPECT_EQ(ORVA_XcorrPhatProcess(made, input.data(), input.data(), output.data()), plain);
    EXPECT_TRUE(plain == 2 * length - 1 || plain == -1) << plain;
    EXPECT_EQ(output[0] == 7.0f, plain == -1);
    EXPECT_TRUE(ORVA_XcorrProcDestroy(made));
    return plain != -1;
}

bool coefficient()
{
    int32_t lag = 12345;
    const double result = ORVA_XcorrCoef(input.data(), length, input.data(), length, &lag);
    if (result == -1.0) {
        EXPECT_EQ(lag, 12345);
        return false;
    }
    EXPECT_NEAR(result, 1.0, 1e-6);
    EXPECT_EQ(lag, 0);
    return true;
}

bool spline()
{
    const std::array<float, 4> x = {0, 1, 2, 3}, y = {1, 0, 4, 2}, untouched = {-77, -77, -77, -77};
    std::array<float, 4> derivatives = untouched;
    ORVASPLINE_Estimate(x.data(), y.data(), 4, 1e30f, 1e30f, derivatives.data());
    return derivatives != untouched;
}

bool scaler()
{
    ORVA_SOLAFS *const made = ORVA_SolafsCreate(20, 16000, 1);
    ORVA_SolafsDestroy(made);
    KTMEM_DisposeDisplayed();
    return made != nullptr;
}

bool suppliesTransforms()
{
    ORVA_FFT *const fft = ORVA_FFTProcCreate(length);
    return ORVA_FFTProcExecute(fft, input.data(), reinterpret_cast<ORVA_COMPLEX *>(output.data())) ==
               length / 2 + 1 &&
           ORVA_FFTProcDestroy(fft);
}

ORVA_FFT *const fft = ORVA_FFTProcCreate(length);

const Row table[] = {
    {"ORVA_CreateComplexVector", "64 samples", 1,
     [] {
         ORVA_COMPLEX *const made = ORVA_CreateComplexVector(fft);
         return exists(made != nullptr, ORVA_DestroyComplexVector(made));
     }},
    {"ORVA_FFTProcExecutePSDEx", "without a work array", 1,
     [] {
         output.fill(7.0f);
         const int32_t bins = ORVA_FFTProcExecutePSDEx(fft, input.data(), output.data(), nullptr);
         EXPECT_EQ(output[0] == 7.0f, bins == 0);
         return bins == length / 2 + 1;
     }},
    transform("ORVA_FFTProcCreate", ORVA_FFTProcCreate),
    transform("ORVA_IFFTProcCreate", ORVA_IFFTProcCreate),
    {"ORVA_FMCLTProcCreate",
     "64 samples",
     3, // record, buffer, what FFTW is about to take
     [] {
         ORVA_FMCLT *const made = ORVA_FMCLTProcCreate(length);
         return exists(made != nullptr, ORVA_FMCLTProcDestroy(made) == 1);
     },
     {},
     Code::FFTW},
    {"ORVA_XcorrProcCreate", "64 samples", 10, correlation, {spectraMessage}, Code::FFTW},
    {"ORVA_XcorrCoef", "64 samples", 12, coefficient, {spectraMessage}, Code::FFTW},
    {"ORVA_CreateFilterFromCoefs", "2 channels", 5,
     [] { return filter(ORVA_CreateFilterFromCoefs(2, 5, record.data(), 3, record.data())); }},
    {"ORVA_CreateFilterFromBiquads", "2 channels", 4,
     [] { return filter(ORVA_CreateFilterFromBiquads(2, 1, record.data())); }},
    filterText("designed", "order=5 fpass=0.25"),
    filterText("band-pass", "type=bp order=4 fpass1=0.25 fpass2=0.5"),
    filterText("records", "biquads=[1 2 3 4 5; 1 2 3 4 5]"),
    filterText("a long text", std::string(3000, ' ') + "order=3 fpass=0.25"),
    filterText("coefficients", "numerator=[1 2 3] denominator=[1 0.5]"),
    resampler("polyphase", 44100, 48000, "order=4", 5), // handle, record, prototype, bank, delay line
    resampler("hold", 44100, 48000, "type=zoh", 3),     // handle, record, states
    {"ORVA_SolafsCreate", "20 ms", 8, scaler},          // descriptor, its name, the record, five arrays
    suppressor("8000 Hz", 8000, 5),                     // descriptor, record and frames
    suppressor("16000 Hz", 16000, 5),
    suppressor("32000 Hz", 32000, 7), // two blocks more
    {"ORVASPLINE_Estimate", "4 points", 1, spline},
    {"ORVAVERSION_String", "", 0, [] { return ORVAVERSION_String()[0] != '\0'; }, {}, Code::ours, true},
    {"ORVA_InitializeFFT", "", 0, ORVA_InitializeFFT, {}, Code::ours, true, [] { ORVA_FinalizeFFT(); }},
    {"ORVA_FinalizeFFT",
     "with a save",
     0,
     ORVA_FinalizeFFT,
     {},
     Code::FFTW,
     true,
     [] {
         ORVA_FinalizeFFT();
         ORVA_InitializeFFT();
     },
     [] { ORVA_InitializeFFT(); }},
    {"ORVA_OptimizeFFT", "", 0, [] { return ORVA_OptimizeFFT(true); }, {}, Code::ours, true},
    {"ORVA_Initialize",
     "",
     0,
     [] {
         ORVA_Initialize();
         return true;
     },
     {},
     Code::ours,
     true,
     ORVA_Finalize},
    {"ORVA_Finalize",
     "",
     0,
     [] {
         ORVA_Finalize();
         return true;
     },
     {},
     Code::FFTW,
     true,
     [] {},
     ORVA_Initialize},
};

// What a child tells before it ends; `isTold` stays false if it ends before.
struct Outcome {
    bool isTold, hasFailed, isDone;
};

size_t inUse()
{
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

void callOnce(const Row &row, uint64_t n, Outcome &outcome)
{
    support::Log log;
    support::failAllocation(n);
    outcome.isDone = row.call();
    outcome.hasFailed = support::endFailure();
    for (const Message &message : log.messages)
        EXPECT_NE(std::find(row.refusal.begin(), row.refusal.end(), message), row.refusal.end()) << message;
    EXPECT_LE(log.messages.size(), outcome.isDone ? 0u : 1u);
}

// Calls some times, if nothing is to be left: a block that is lost each time adds up, which what malloc rounds does not.
void run(const Row &row, uint64_t n, Outcome &outcome)
{
    constexpr int rounds = 8;
    constexpr size_t smallestBlock = 32;
    row.before();
    callOnce(row, n, outcome);
    if (!row.goesOn) {
        const size_t before = inUse();
        for (int round = 0; round < rounds; ++round)
            callOnce(row, n, outcome);
        EXPECT_LT(inUse(), before + rounds * smallestBlock) << "is kept";
    }
    row.after();
    EXPECT_TRUE(suppliesTransforms()) << "afterwards";
    outcome.isTold = true;
}

// Runs a row in a child whose n-th allocation fails. Where another's code ends the child, it does so in its own way.
Outcome outcomeOf(const Row &row, uint64_t n, const support::Folder &folder)
{
    static auto *const shared = static_cast<Outcome *>(
        mmap(nullptr, sizeof(Outcome), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    *shared = {};
    const std::string errors = folder / "errors";
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(open(errors.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600), STDERR_FILENO);
        run(row, n, *shared);
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    std::ifstream file(errors);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    if (shared->isTold) {
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << text;
    } else if (row.among == Code::FFTW) {
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT && text.starts_with("fftw: ")) << text;
    } else {
        EXPECT_TRUE(row.among == Code::WebRTC && WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV) << text;
    }
    return *shared;
}

} // namespace

TEST(Allocations, EachOneThatFailsGivesTheStatedResultAndKeepsNothing)
{
    ASSERT_NE(std::getenv("GLIBC_TUNABLES"), nullptr) << "to be run by ctest, which sets it";
    const support::Folder folder;
    KTENV_SetEnvValue("KT_DATA_PATH", folder.path.string().c_str());
    input.fill(0.5f);
    for (const Row &row : table) {
        SCOPED_TRACE(std::string(row.function) + ", " + row.title);
        row.before(); // once with all its memory, so that FFTW and the C library are set up
        EXPECT_TRUE(row.call());
        row.after();
        uint64_t refusals = 0, ends = 0, n = 1;
        for (;; ++n) {
            SCOPED_TRACE("allocation " + std::to_string(n));
            const Outcome outcome = outcomeOf(row, n, folder);
            if (outcome.isTold && !outcome.hasFailed) {
                EXPECT_TRUE(outcome.isDone);
                break;
            }
            if (outcome.isTold) {
                EXPECT_EQ(outcome.isDone, row.goesOn);
            }
            refusals += outcome.isTold && !outcome.isDone;
            ends += !outcome.isTold;
            if (HasFailure())
                return; // a child would take it for its own
        }
        EXPECT_GE(refusals, row.refusals);
        if (row.among == Code::WebRTC) {
            EXPECT_EQ(ends, 1u) << "its instance";
        }
        std::printf("%-30s %-20s %4llu allocations: %llu refused, %llu end in the code of others\n",
                    row.function, row.title, static_cast<unsigned long long>(n - 1),
                    static_cast<unsigned long long>(refusals), static_cast<unsigned long long>(ends));
    }
}

TEST(Allocations, TheTableHoldsWhatHeadersKeepFromRealTimeThreads)
{
    Names listed;
    for (const Row &row : table)
        listed.insert(row.function);
    for (const char *const gone : {"ORVA_DestroyComplexVector", "ORVA_FFTProcDestroy",
                                   "ORVA_FMCLTProcDestroy", "ORVA_XcorrProcDestroy", "ORVA_DestroyFilter",
                                   "ORVA_ResampleDestroy", "ORVA_SolafsDestroy", "ORVA_DestroyNoiseSup"})
        listed.insert(gone); // the rows end with them
    for (const char *const executing : {"ORVA_FMCLTDirect", "ORVA_FMCLTInverse", "ORVA_FMCLTCDTiv"})
        listed.insert(executing); // FFTW alone allocates in them
    const Names allowed = realtime::functionsForRealTime(SOURCE_DIR "/include/orva");
    for (const auto &entry : std::filesystem::directory_iterator(SOURCE_DIR "/include/orva")) {
        std::string top;
        for (const auto &[name, comment] : realtime::declarationsIn(entry.path(), top))
            EXPECT_TRUE(allowed.contains(name) || listed.contains(name)) << name;
    }
}
