// The check that stands between a store and FFTW: every text that FFTW writes fits, and nothing that is
// damaged in form.
#include "fft/ORVAfft_store.h"
#include "fft/ORVAfft_wisdom_grammar.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using namespace orva;

namespace
{

bool fits(const std::string &text)
{
    return fitsWisdomGrammar({text.data(), text.size()});
}

struct Arrays {
    explicit Arrays(size_t count)
        : real(fftwf_alloc_real(count)), in(fftwf_alloc_complex(count)), out(fftwf_alloc_complex(count))
    {
    }

    ~Arrays()
    {
        fftwf_free(out);
        fftwf_free(in);
        fftwf_free(real);
    }

    Arrays(const Arrays &) = delete;
    Arrays &operator=(const Arrays &) = delete;

    float *real;
    fftwf_complex *in, *out;
};

// Null plans are left alone: some flags refuse some problems.
void keepWisdomOnly(fftwf_plan plan)
{
    if (plan != nullptr)
        fftwf_destroy_plan(plan);
}

struct Planning {
    const char *name;
    std::function<void()> plan;
};

void planComplex(int length, unsigned flags)
{
    const Arrays a(static_cast<size_t>(length));
    for (const int sign : {FFTW_FORWARD, FFTW_BACKWARD}) {
        keepWisdomOnly(fftwf_plan_dft_1d(length, a.in, a.out, sign, flags));
        keepWisdomOnly(fftwf_plan_dft_1d(length, a.in, a.in, sign, flags));
    }
}

void planReal(int length, unsigned flags)
{
    const Arrays a(static_cast<size_t>(length));
    keepWisdomOnly(fftwf_plan_dft_r2c_1d(length, a.real, a.out, flags));
    keepWisdomOnly(fftwf_plan_dft_c2r_1d(length, a.in, a.real, flags));
}

const Planning plannings[] = {
    {"nothing", [] {}},
    {"estimated real transforms, all lengths to 150",
     [] {
         for (int length = 1; length <= 150; ++length)
             planReal(length, FFTW_ESTIMATE);
     }},
    {"the lengths that a preparation plans",
     [] {
         for (int length = 16; length <= 16384; length *= 2)
             planReal(length, FFTW_ESTIMATE);
     }},
    {"large primes and their multiples",
     [] {
         for (const int length : {1009, 2017, 4093, 65537, 3 * 10007})
             planReal(length, FFTW_ESTIMATE);
     }},
    {"measured", [] { planReal(97, FFTW_MEASURE); }},
    {"patient", [] { planComplex(12, FFTW_PATIENT); }},
    {"exhaustive", [] { planReal(12, FFTW_EXHAUSTIVE); }},
    {"complex", [] { planComplex(1000, FFTW_ESTIMATE); }},
    {"unaligned", [] { planReal(256, FFTW_ESTIMATE | FFTW_UNALIGNED); }},
    {"input kept", [] { planReal(256, FFTW_ESTIMATE | FFTW_PRESERVE_INPUT); }},
    {"input destroyed", [] { planComplex(256, FFTW_ESTIMATE | FFTW_DESTROY_INPUT); }},
    {"memory saved", [] { planComplex(4096, FFTW_ESTIMATE | FFTW_CONSERVE_MEMORY); }},
    {"every kind of real-to-real",
     [] {
         const Arrays a(64);
         for (int kind = FFTW_R2HC; kind <= FFTW_RODFT11; ++kind)
             for (const int length : {2, 5, 16, 61})
                 keepWisdomOnly(fftwf_plan_r2r_1d(length, a.real, a.real, static_cast<fftwf_r2r_kind>(kind),
                                                  FFTW_ESTIMATE));
     }},
    {"several dimensions",
     [] {
         const Arrays a(16 * 12 * 10);
         keepWisdomOnly(fftwf_plan_dft_2d(16, 12, a.in, a.out, FFTW_FORWARD, FFTW_ESTIMATE));
         keepWisdomOnly(fftwf_plan_dft_3d(16, 12, 10, a.in, a.in, FFTW_BACKWARD, FFTW_ESTIMATE));
         keepWisdomOnly(fftwf_plan_r2r_2d(16, 12, a.real, a.real, FFTW_REDFT10, FFTW_RODFT01, FFTW_ESTIMATE));
     }},
    {"guru interface, strided and split",
     [] {
         const Arrays a(512);
         const fftwf_iodim size{32, 3, 2};
         const fftwf_iodim howMany{4, 100, 70};
         keepWisdomOnly(fftwf_plan_guru_dft(1, &size, 1, &howMany, a.in, a.out, FFTW_FORWARD, FFTW_ESTIMATE));
         float *split = a.in[0];
         float *splitOut = a.out[0];
         keepWisdomOnly(fftwf_plan_guru_split_dft(1, &size, 1, &howMany, split, split + 512, splitOut,
                                                  splitOut + 512, FFTW_ESTIMATE));
     }},
    {"a time limit that leaves no time",
     [] {
         fftwf_set_timelimit(0.0);
         planReal(4096, FFTW_PATIENT);
         planComplex(1009, FFTW_EXHAUSTIVE);
         fftwf_set_timelimit(FFTW_NO_TIMELIMIT);
     }},
    {"a time limit of a thousandth",
     [] {
         fftwf_set_timelimit(0.001);
         planReal(3600, FFTW_PATIENT);
         fftwf_set_timelimit(FFTW_NO_TIMELIMIT);
     }},
};

std::string wisdomOf(const Planning &planning)
{
    fftwf_forget_wisdom();
    planning.plan();
    const std::string text = store::wisdom();
    fftwf_forget_wisdom();
    return text;
}

const std::string sums = " #x01234567 #x89abcdef #x00000000 #xffffffff";
const std::string head = "(fftw-3.3.10 fftwf_wisdom" + sums + "\n";

std::string withEntry(const std::string &inner)
{
    return head + "  (" + inner + sums + ")\n)\n";
}

} // namespace

TEST(WisdomGrammar, EveryTextThatFFTWWritesFits)
{
    std::string all;
    for (const Planning &planning : plannings) {
        const std::string text = wisdomOf(planning);
        EXPECT_TRUE(fits(text)) << planning.name << "\n" << text;
        EXPECT_EQ(fftwf_import_wisdom_from_string(text.c_str()), 1) << planning.name;
        all += text;
    }
    fftwf_forget_wisdom();
    // The table holds what it is there for: plans by hundreds, and plans that ran out of time.
    EXPECT_GT(all.size(), 50000u);
    EXPECT_NE(all.find("  (TIMEOUT 0 #x"), std::string::npos);
    EXPECT_NE(all.find(" #x1ff #x"), std::string::npos);
}

TEST(WisdomGrammar, TakesTheBoundsOfEveryField)
{
    const std::string texts[] = {
        head + ")\n",
        head + ")",
        head + ")anything",
        "(fftw-4 fftwf_wisdom" + sums + "\n)\n",
        "(fftw-3.3.11-rc1+dfsg fftwf_wisdom" + sums + "\n)\n",
        withEntry("a 0 #x0 #x0 #x0"),
        withEntry("fftwf_rdft_nop_register 4095 #xfffff #xfffff #x0"),
        withEntry(std::string(63, 'n') + " 12 #x5 #x7 #x0"),
        withEntry("TIMEOUT 0 #x1 #xfffff #x1ff"),
        withEntry("TIMEOUT 0 #x1 #x1 #x0"),
        withEntry("TIMEOUT 1 #x1 #x1 #x0"),
    };
    for (const std::string &text : texts)
        EXPECT_TRUE(fits(text)) << text;
}

TEST(WisdomGrammar, RefusesWhatFFTWWouldNotWrite)
{
    const std::string texts[] = {
        "",
        "(",
        " " + head + ")\n",
        "(fftw- fftwf_wisdom" + sums + "\n)\n",
        "(fftw-3.3.10 fftw_wisdom" + sums + "\n)\n", // double precision
        "(fftw-3.3.10 fftwf_wisdom #x01234567 #x89abcdef #x00000000\n)\n",
        "(fftw-3.3.10 fftwf_wisdom" + sums + sums + "\n)\n",
        "(fftw-3.3.10 fftwf_wisdom" + sums + ")\n",
        "(fftw-3.3.10 fftwf_wisdom" + sums + "\r\n)\r\n",
        head,
        head + "\n)\n",
        head + "  (a 0 #x0 #x0 #x0" + sums + ")\n",
        head + "  (a 0 #x0 #x0 #x0" + sums + "))\n",
        head + " (a 0 #x0 #x0 #x0" + sums + ")\n)\n",
        withEntry(" 0 #x0 #x0 #x0"),
        withEntry("a-b 0 #x0 #x0 #x0"),
        withEntry("\xff"
                  "a 0 #x0 #x0 #x0"),
        withEntry(std::string(64, 'n') + " 0 #x0 #x0 #x0"),
        withEntry(std::string(100000, 'n') + " 0 #x0 #x0 #x0"),
        withEntry("a #x0 #x0 #x0"),
        withEntry("a  0 #x0 #x0 #x0"),
        withEntry("a -1 #x0 #x0 #x0"),
        withEntry("a +1 #x0 #x0 #x0"),
        withEntry("a 01 #x0 #x0 #x0"),
        withEntry("a 1f #x0 #x0 #x0"),
        withEntry("a 4096 #x0 #x0 #x0"),
        withEntry("a 99999999999999999999999999 #x0 #x0 #x0"),
        withEntry("a 0 #x100000 #x100000 #x0"),
        withEntry("a 0 #x0 #x100000 #x0"),
        withEntry("a 0 #x0 #xffffffffffffffffffffffffff #x0"),
        withEntry("a 0 #x00 #x0 #x0"),
        withEntry("a 0 #x #x0 #x0"),
        withEntry("a 0 0 #x0 #x0"),
        withEntry("a 0 #xA #xf #x0"),
        withEntry("a 0 #x-1 #x0 #x0"),
        withEntry("a 0 #x2 #x1 #x0"), // not a subset
        withEntry("a 0 #x0 #x0 #x1"), // a time that no plan has
        withEntry("TIMEOUT 1 #x0 #x0 #x1"),
        withEntry("TIMEOUT 0 #x0 #x0 #x200"),
        withEntry("a 0 #x0 #x0"),
        withEntry("a 0 #x0 #x0 #x0 #x0"),
        head + "  (a 0 #x0 #x0 #x0 #x01234567 #x89abcdef #x00000000 #xfffffff)\n)\n",
        head + "  (a 0 #x0 #x0 #x0 #x01234567 #x89abcdef #x00000000 #x0ffffffff)\n)\n",
        head + "  (a 0 #x0 #x0 #x0 #x01234567 #x89ABCDEF #x00000000 #xffffffff)\n)\n",
        head + "  (a 0 #x0 #x0 #x0" + sums + " )\n)\n",
        head + "  (a 0 #x0 #x0 #x0" + sums + ")\r\n)\r\n",
        head + "  (a 0 #x0 #x0 #x0" + sums + ")  (a 0 #x0 #x0 #x0" + sums + ")\n)\n",
    };
    for (const std::string &text : texts)
        EXPECT_FALSE(fits(text)) << text.substr(0, 200);
}

TEST(WisdomGrammar, EveryBeginningIsRefusedUpToTheClosingParenthesis)
{
    const std::string whole = store::wisdomOf({16, 1009});
    for (size_t length = 0; length < whole.size(); ++length)
        ASSERT_EQ(fits(whole.substr(0, length)), length == whole.size() - 1) << length;
}

TEST(WisdomGrammar, EveryByteUpToTheClosingParenthesisCounts)
{
    const std::string whole = store::wisdomOf({16});
    const size_t last = whole.size() - 2; // the closing parenthesis
    for (size_t i = 0; i < last; ++i)
        for (const char wrong : {'\0', '\n', '\t', '(', ')', '#', '-', '\x7f', '\x80', '\xff'}) {
            std::string text = whole;
            if (text[i] == wrong)
                continue;
            text[i] = wrong;
            const bool inVersion = wrong == '-' && i > 5 && i < whole.find(' ');
            const bool closesEarly = wrong == ')' && i > 0 && whole[i - 1] == '\n';
            ASSERT_EQ(fits(text), inVersion || closesEarly)
                << "byte " << i << " set to " << static_cast<int>(wrong);
        }
}
