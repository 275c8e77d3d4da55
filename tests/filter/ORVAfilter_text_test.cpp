// Filters from one line of text: its keys, their precedence, and every refusal with its message.
#include "filter/ORVAfilter_designed.h"
#include "support/bits.h"
#include "support/comma_locale.h"
#include "support/log.h"

#include <orva/ORVAfilter.h>

using namespace orva;

using support::error;
using support::Log;
using support::Message;
using support::sameBits;

namespace
{

constexpr const char *scaleMessage = "ORVA_CreateFilter: If you want to specify frequencies in Hz, you must "
                                     "specify a sampling frequency.";
constexpr const char *informationMessage = "ORVA_CreateFilter: you must specify As or order";
constexpr const char *cutoffMessage = "ORVA_CreateFilter: You must specify a cutoff frequency (fpass)";
constexpr const char *bandMessage =
    "ORVA_CreateFilter: You must specify two cutoff frequences (fpass1 and fpass2)";

// Both texts give a filter, and the same one.
testing::AssertionResult alike(const std::string &first, const std::string &second)
{
    const Filter a = create(first);
    const Filter b = create(second);
    if (a == nullptr || b == nullptr)
        return testing::AssertionFailure() << "no filter: " << (a == nullptr ? first : second);
    if (a->kind != b->kind || a->numChannels != b->numChannels || a->filterFn != b->filterFn)
        return testing::AssertionFailure() << first << " and " << second << " give unlike filters";
    return sameBits(recordsOf(a), recordsOf(b)) << first << " and " << second;
}

} // namespace

TEST(CreateFilter, ReportsEachRefusal)
{
    const struct {
        std::string text;
        const char *message; // null: refused in silence
    } rows[] = {
        {"", informationMessage},
        {"   ;,\n", informationMessage},
        {"order=4", cutoffMessage},
        {"order=0 fpass=0.5", informationMessage},
        {"order=-3 As=0 fpass=0.5", informationMessage},
        {"As=-1 fpass=0.5", informationMessage},
        {"fpass=0.5 fstop=0.6", informationMessage},
        {"type=tophat", informationMessage},
        {"order=4 type=tophat fpass=0.5", "ORVA_CreateFilter: Invalid filter type: tophat\n"},
        {"order=4 type=LowPass fpass=0.5", "ORVA_CreateFilter: Invalid filter type: LowPass\n"},
        {"order=4 type=\"\" fpass=0.5", "ORVA_CreateFilter: Invalid filter type: \n"},
        {"order=4 type=\" lp\" fpass=0.5", "ORVA_CreateFilter: Invalid filter type:  lp\n"},
        {"order=4 type=%d%s fpass=0.5", "ORVA_CreateFilter: Invalid filter type: %d%s\n"},
        {"order=4 approximation=elliptic fpass=0.5", "ORVA_CreateFilter: Invalid approximation (elliptic)"},
        {"order=4 approximation=Butter fpass=0.5", "ORVA_CreateFilter: Invalid approximation (Butter)"},
        {"order=4 approximation=%s%n fpass=0.5", "ORVA_CreateFilter: Invalid approximation (%s%n)"},
        {"order=4 fpass=1000", scaleMessage},
        {"order=4 fpass=1.0", scaleMessage},
        {"order=4 fpass=0.5 fpass2=1", scaleMessage},
        {"order=4 fpass=0.5 fpass2=1 fs=0", scaleMessage},
        {"order=4 fpass=1 fs=0.9", scaleMessage},
        {"order=4 fpass=1000 fs=-8000", scaleMessage},
        {"order=4 fpass=1000 fs=3e9", scaleMessage}, // beyond an integer: the most negative one
        {"order=4 type=bp fpass1=0.5", bandMessage},
        {"order=4 type=br fpass2=0.5", bandMessage},
        {"order=4 type=bp", bandMessage},
        {"order=4 fpass=0", nullptr},
        {"order=4 type=bp fpass1=0 fpass2=0.5", nullptr},
        {"order=4 type=bp fpass1=0.5 fpass2=0.5", nullptr},
        {"order=4 fpass=0.5 fstop=0.4", nullptr},
        {"order=4 type=hp fpass=0.5 fstop=0.6", nullptr},
        {"order=4 fpass=0.5 fstop=0.6 fs=0", nullptr}, // both infinite
        {"As=60 fpass=0.3", nullptr},
        {"As=60 fpass=0.3 approximation=cheby", nullptr},
        {"As=60 fpass=0.3 approximation=cheby2", nullptr},
        {"As=60 fpass=0.3 approximation=ellip", nullptr},
        {"As=60 fpass=0.3 order=4 approximation=ellip", nullptr},
        {"order=4 fpass=0.3 fstop=0.6 approximation=ellip", nullptr},
        {"order=4 fpass=0.3 Ap=0", nullptr},
        {"order=4 fpass=0.3 Ap=-3 approximation=cheby", nullptr},
        {"order=4 fpass=0.3 fstop=0.6 As=60 Ap=0 approximation=ellip", nullptr},
        {"order=4 fpass=0.3 approximation=cheby2",
         "ORVA_CreateFilter: Type II Chebyshev filters require fstop or As"},
        {"order=1 fpass=0.5 fs=0", "_MakeFilterFromRoots: Unpaired imaginary root"},
        {"order=3 fpass=0.5 fs=0.5", "_MakeFilterFromRoots: Unpaired imaginary root"},
    };
    for (const auto &row : rows) {
        const Log log;
        EXPECT_EQ(create(row.text), nullptr) << row.text;
        EXPECT_EQ(log.messages,
                  row.message != nullptr ? std::vector<Message>{error(row.message)} : std::vector<Message>{})
            << row.text;
    }
}

TEST(CreateFilter, ReportsTheFirstOfSeveralFaults)
{
    // From the last fault to the first: each text adds one that is found earlier.
    const struct {
        const char *text, *message;
    } rows[] = {
        {"order=4 fpass=0.5 approximation=x Ap=0", "ORVA_CreateFilter: Invalid approximation (x)"},
        {"order=4 approximation=x Ap=0", cutoffMessage},
        {"order=4 type=bs fpass1=0.5 approximation=x Ap=0", bandMessage},
        {"order=4 type=x approximation=x Ap=0", "ORVA_CreateFilter: Invalid filter type: x\n"},
        {"type=x approximation=x Ap=0", informationMessage},
        {"fpass2=1 type=x approximation=x Ap=0", scaleMessage},
    };
    for (const auto &row : rows) {
        const Log log;
        EXPECT_EQ(create(row.text), nullptr) << row.text;
        EXPECT_EQ(log.messages, std::vector<Message>{error(row.message)}) << row.text;
    }
    const Log log;
    EXPECT_EQ(create("order=4 fpass=0.5 fstop=0.4 approximation=x"), nullptr);
    EXPECT_EQ(log.messages, std::vector<Message>{}) << "edges out of order come before the approximation";
}

TEST(CreateFilter, KnowsTheWordsOfTheTypes)
{
    const struct {
        const char *words;
        int32_t kind;
    } rows[] = {{"lowpass", 0}, {"lp", 0},         {"highpass", 1}, {"hp", 1},       {"bandpass", 2},
                {"bp", 2},      {"bandreject", 3}, {"br", 3},       {"bandstop", 3}, {"bs", 3}};
    for (const auto &[word, kind] : rows) {
        const Filter filter = create(std::string("order=2 fpass1=0.25 fpass2=0.5 type=") + word);
        ASSERT_NE(filter, nullptr) << word;
        EXPECT_EQ(filter->kind, kind) << word;
        EXPECT_EQ(recordsOf(filter).size(), kind < 2 ? 5u : 10u) << word;
    }
}

TEST(CreateFilter, KnowsTheWordsOfTheApproximations)
{
    const std::vector<std::vector<const char *>> rows = {
        {"butterworth", "butter", "bt"},
        {"chebyshev", "chebyshev1", "cheby", "cheby1", "cb"},
        {"invchebyshev", "chebyshev2", "invcheby", "cheby2", "ci"},
        {"ellilptic", "ellip", "cauer", "ca"},
    };
    const std::string rest = " order=3 fpass=0.25 fstop=0.5 As=1";
    for (const auto &words : rows)
        for (const char *word : words)
            EXPECT_TRUE(alike(std::string("approximation=") + word + rest,
                              std::string("approximation=") + words[0] + rest));
    for (size_t i = 0; i < rows.size(); ++i)
        for (size_t k = 0; k < i; ++k)
            EXPECT_FALSE(alike(std::string("approximation=") + rows[i][0] + rest,
                               std::string("approximation=") + rows[k][0] + rest));
}

TEST(CreateFilter, HasItsDefaults)
{
    const std::string plain = "order=3 fpass=0.25";
    for (const char *key :
         {"gain=1",    "nc=1",      "num_channels=1", "type=lowpass", "approximation=butterworth",
          "Ap=3",      "As=-1",     "fpass1=0.25",    "fpass2=-1",    "fstop=-1",
          "fstop1=-1", "fstop2=-1", "fs=-1",          "As=0",         "fstop=0",
          "type=",     "Ap=loud",   "gain=1e99",      "AP=1",         "Order=9"})
        EXPECT_TRUE(alike(plain, plain + " " + key)) << key;
    for (const char *key : {"gain=2", "type=hp", "approximation=cb", "Ap=1", "fpass1=0.5", "fs=1", "order=4"})
        EXPECT_FALSE(alike(plain, plain + " " + key)) << key;
    EXPECT_TRUE(alike("As=60 fpass=0.3 fstop=0.6 order=-1", "As=60 fpass=0.3 fstop=0.6"));
}

TEST(CreateFilter, TakesTheNumberedEdgesBeforeTheOthers)
{
    EXPECT_TRUE(alike("order=3 fpass=0.5 fpass1=0.25", "order=3 fpass=0.25"));
    EXPECT_TRUE(alike("As=50 fpass=0.25 fstop=0.3 fstop1=0.5", "As=50 fpass=0.25 fstop=0.5"));
    EXPECT_TRUE(alike("order=2 type=bp fpass=0.25 fpass2=0.5", "order=2 type=bp fpass1=0.25 fpass2=0.5"));
    EXPECT_TRUE(alike("As=50 type=bp fpass=0.25 fpass2=0.5 fstop=0.125",
                      "As=50 type=bp fpass1=0.25 fpass2=0.5 fstop1=0.125"));
}

TEST(CreateFilter, TakesTheRequestedOrderAsAMinimum)
{
    const struct {
        const char *text;
        size_t order;
    } rows[] = {
        {"order=2 fpass=0.3 fstop=0.6 As=60", 10},
        {"order=20 fpass=0.3 fstop=0.6 As=60", 20},
        {"fpass=0.3 fstop=0.6 As=60", 10},
        {"order=2 fpass=0.3 As=60", 2},
        {"order=2 fpass=0.3 fstop=0.6", 2},
        {"order=6.9 fpass=0.3", 6},
        {"fpass=0.3 fstop=0.6 As=40 Ap=1", 8},
        {"fpass=0.3 fstop=0.6 As=40 Ap=1 approximation=cb", 5},
        {"fpass=0.3 fstop=0.6 As=40 Ap=1 approximation=ci", 5},
        {"fpass=0.3 fstop=0.6 As=40 Ap=1 approximation=ca", 4},
        {"fpass1=0.2 fpass2=0.4 fstop1=0.1 As=40 Ap=1 approximation=ca type=bp", 8},
    };
    for (const auto &row : rows) {
        const auto records = recordsOf(create(row.text));
        ASSERT_FALSE(records.empty()) << row.text;
        EXPECT_EQ(2 * records.size() / 5 - (records.back() == 0.0 ? 1 : 0), row.order) << row.text;
    }
}

TEST(CreateFilter, TakesHertzWithASamplingRate)
{
    EXPECT_TRUE(alike("order=3 fpass=1000 fs=8000", "order=3 fpass=0.25"));
    EXPECT_TRUE(alike("order=3 fpass=1000 fs=8000.9", "order=3 fpass=0.25")) << "the rate is cut";
    EXPECT_TRUE(alike("As=50 fpass=1000 fstop=2000 fs=8000", "As=50 fpass=0.25 fstop=0.5"));
    EXPECT_TRUE(
        alike("order=2 type=bs fpass1=1000 fpass2=2000 fs=8000", "order=2 type=bs fpass1=0.25 fpass2=0.5"));
    EXPECT_TRUE(alike("order=2 fpass=0.25 fstop=1.5 As=1", "order=2 fpass=0.25 fstop=6000 As=1 fs=-1"))
        << "stop edges need no rate";
    EXPECT_NE(create("order=3 fpass=0.999"), nullptr);
}

TEST(CreateFilter, OfARateOfZeroIsNotANumberAtEvenOrders)
{
    const Log log;
    for (const char *text :
         {"order=4 fpass=0.5 fs=0", "order=4 fpass=0.5 fs=0.99", "order=2 fpass=0.1 fs=0 type=hp"}) {
        const auto records = recordsOf(create(text));
        ASSERT_FALSE(records.empty()) << text;
        for (double value : records)
            EXPECT_TRUE(std::isnan(value)) << text;
    }
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(CreateFilter, ReadsTheChannels)
{
    const struct {
        const char *keys;
        int32_t channels; // -1: no filter
    } rows[] = {{"", 1},
                {"nc=2.9", 2},
                {"nc=2", 2},
                {"num_channels=3.5", 3},
                {"nc=2 num_channels=5", 5},
                {"num_channels=5 nc=2", 5},
                {"nc=4 num_channels=many", 4},
                {"nc=0.5", 0},
                {"nc=-0.5", 0},
                {"nc=-1", -1},
                {"nc=1e20", -1},
                {"num_channels=-3 nc=2", -1}};
    for (const auto &row : rows)
        for (const char *form :
             {"order=2 fpass=0.5 ", "biquads=[1 2 3 4 5] ", "numerator=1 denominator=[1 2] "}) {
            const Log log;
            const Filter filter = create(form + std::string(row.keys));
            EXPECT_EQ(filter != nullptr ? filter->numChannels : -1, row.channels) << form << row.keys;
            EXPECT_EQ(log.messages, std::vector<Message>{});
        }
}

TEST(CreateFilter, TakesReadyBiquadsFirst)
{
    const std::vector<double> expected = {0.1, 0.2, 0.3, 0.4, 0.5, -1, -2, -3, -4, 1e-300};
    const Filter filter = create("type=bp gain=7 order=3 fpass=0.5 numerator=1 denominator=1 fs=1 "
                                 "biquads=[0.1 0.2 0.3 0.4 0.5; -1 -2 -3 -4 1e-300] nc=2");
    ASSERT_NE(filter, nullptr);
    EXPECT_TRUE(sameBits(recordsOf(filter), expected)) << "as they are: no gain";
    EXPECT_EQ(filter->kind, 0);
    EXPECT_EQ(filter->numChannels, 2);
    EXPECT_EQ(filter->filterFn, _DFIISOSfilter);
    EXPECT_EQ(cascadeOf(filter)->allocatedBiquads, 2);
}

TEST(CreateFilter, TakesReadyVectorsSecond)
{
    const Filter filter = create("gain=7 order=3 fpass=0.5 numerator=[2 4 6] denominator=[2, 1] nc=2");
    ASSERT_NE(filter, nullptr);
    EXPECT_EQ(filter->filterFn, _DFIIfilter);
    EXPECT_EQ(filter->kind, 0);
    const auto *state = static_cast<const _DFIIstate *>(filter->state);
    EXPECT_EQ(state->gain, 1.0f);
    ASSERT_EQ(state->numOrder, 2);
    ASSERT_EQ(state->denOrder, 1);
    EXPECT_EQ(state->numerator[0], 2.0f);
    EXPECT_EQ(state->numerator[1], 3.0f);
    EXPECT_EQ(state->denominator[0], 0.5f);
}

TEST(CreateFilter, PassesOverReadyFormsThatDoNotFit)
{
    const Log log;
    for (const char *form : {"biquads=[1 2 3 4]", "biquads=[1 2 3 4 5 6]", "biquads=[1 2 3 4 5; 1 2]",
                             "biquads=none", "numerator=[1 2]", "denominator=[1 2]",
                             "numerator=[1 2] denominator=x", "numerator=[1;2] denominator=[1 2]"})
        EXPECT_TRUE(alike("order=2 fpass=0.5", std::string(form) + " order=2 fpass=0.5"));
    EXPECT_EQ(log.messages, std::vector<Message>{});
    for (const char *form : {"biquads=[1 2 3 4]", "numerator=[1 2]"})
        EXPECT_EQ(create(form), nullptr);
    EXPECT_EQ(log.messages, (std::vector<Message>{error(informationMessage), error(informationMessage)}));
}

TEST(CreateFilter, LimitsReadyBiquadsButNoDesign)
{
    std::string text = "biquads=[";
    for (int row = 0; row < 65536; ++row)
        text += "0 0 1 0 0;";
    const Filter most = create(text + "]");
    ASSERT_NE(most, nullptr);
    EXPECT_EQ(cascadeOf(most)->numBiquads, 65536);
    const Log log;
    EXPECT_EQ(create(text + "0 0 1 0 0] order=2 fpass=0.5"), nullptr) << "no way back to the design";
    EXPECT_EQ(log.messages,
              std::vector<Message>{error("ORVA_CreateFilterFromBiquads: Too many biquads (65537)\n")});

    const Filter designed = create("order=131074 fpass=0.5");
    ASSERT_NE(designed, nullptr);
    EXPECT_EQ(cascadeOf(designed)->numBiquads, 65537);
}

TEST(CreateFilter, RefusesAnOrderAboveItsLimitInSilence)
{
    const Log log;
    EXPECT_EQ(create("order=1048577 fpass=0.5"), nullptr);
    EXPECT_EQ(create("order=2147483647 fpass1=0.25 fpass2=0.5 type=bp"), nullptr);
    EXPECT_EQ(create("As=3000 Ap=1e-6 fpass=0.5 fstop=0.50001"), nullptr) << "estimated";
    EXPECT_EQ(log.messages, std::vector<Message>{});
    const Filter largest = create("order=1048576 fpass=0.5 nc=0");
    ASSERT_NE(largest, nullptr);
    EXPECT_EQ(cascadeOf(largest)->numBiquads, 524288);
}

TEST(CreateFilter, ExpandsItsFormat)
{
    const auto expected = recordsOf(create("type=bp order=3 fpass1=300 fpass2=3400.5 fs=8000"));
    const Filter filter(
        ORVA_CreateFilter("type=%s order=%d fpass1=%u fpass2=%.1f fs=%ld", "bp", 3, 300u, 3400.5, 8000L));
    EXPECT_TRUE(sameBits(recordsOf(filter), expected));
    const Log log;
    EXPECT_EQ(ORVA_CreateFilter("type=%%s order=2 fpass=0.5"), nullptr);
    EXPECT_EQ(log.messages, std::vector<Message>{error("ORVA_CreateFilter: Invalid filter type: %s\n")});
}

TEST(CreateFilter, ExpandsTextsOfAnyLength)
{
    const std::string keys = "order=3 fpass=0.25";
    for (size_t length : {1022u, 1023u, 1024u, 1025u, 2048u, 100000u}) {
        const std::string padding(length - keys.size(), ' ');
        EXPECT_TRUE(alike(keys, padding + keys)) << length << ": the last key is at the end";
        const Filter filter(ORVA_CreateFilter("%s%s=%d fpass=%.2f", padding.c_str(), "order", 3, 0.25));
        EXPECT_TRUE(sameBits(recordsOf(filter), recordsOf(create(keys)))) << length;
    }
}

TEST(CreateFilter, CutsALongWordToSixtyThreeCharacters)
{
    const std::string word(100, 'x');
    const Log log;
    EXPECT_EQ(create("order=2 fpass=0.5 type=" + word), nullptr);
    EXPECT_EQ(create("order=2 fpass=0.5 approximation=" + word), nullptr);
    const std::string cut(63, 'x');
    EXPECT_EQ(log.messages,
              (std::vector<Message>{error("ORVA_CreateFilter: Invalid filter type: " + cut + "\n"),
                                    error("ORVA_CreateFilter: Invalid approximation (" + cut + ")")}));
}

TEST(CreateFilter, ReadsAndFormatsWithThePointInALocaleOfTheComma)
{
    const auto designed = [] {
        return recordsOf(
            Filter(ORVA_CreateFilter("fpass=%f fstop1=%g As=%.2e Ap=0.25 gain=1.5", 0.125, 0.1875, 61.5)));
    };
    const auto expected = designed();
    ASSERT_FALSE(expected.empty());
    const support::CommaLocale comma;
    EXPECT_TRUE(sameBits(designed(), expected));
    EXPECT_STREQ(std::localeconv()->decimal_point, ",") << "the host's locale is as it was";
}

TEST(CreateFilter, RunsItsDesign)
{
    support::Random random;
    const Filter filter = create("order=5 fpass=0.25 approximation=cb nc=2");
    ASSERT_NE(filter, nullptr);
    BiquadReference reference(2, recordsOf(filter));
    const auto input = random.noise(512);
    std::vector<float> output(512), expected(512);
    ASSERT_EQ(ORVA_Filter(filter.get(), input.data(), output.data(), 512), 1);
    reference.run(input.data(), expected.data(), 512, 0, 2);
    EXPECT_TRUE(sameBits(output, expected));
}
