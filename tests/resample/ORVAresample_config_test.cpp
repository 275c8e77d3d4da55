// What the configuration string and the setting make of a converter, seen from outside: the flush of a
// polyphase converter of equal rates is as long as its order, that of a hold is empty.
#include "ORVAresample_reference.h"
#include "support/bits.h"
#include "support/log.h"

#include <kett/KTsettings.h>

namespace
{

constexpr int32_t hold = 0;
constexpr int32_t noConverter = -1;
constexpr Rates equal{8000, 8000};

// The order of the polyphase converter that a text makes, or one of the two above.
int32_t orderOf(const std::string &config, Rates rates = equal)
{
    return ORVA_ResampleFlushBufferSize(newResampler(rates, config).get());
}

class Setting
{
public:
    explicit Setting(const std::string &value)
    {
        KTSETTINGS_SetEx(nullptr, "liborva.resample.polyphase.order=%s", value.c_str());
    }
    ~Setting()
    {
        KTSETTINGS_UnsetEx(nullptr, "liborva.resample.polyphase.order");
    }
    Setting(const Setting &) = delete;
    Setting &operator=(const Setting &) = delete;
};

bool compensates(const std::string &config)
{
    return convert(newResampler(equal, config).get(), Floats(40, 1.0f), 40).size() < 40;
}

std::string padded(const std::string &end, size_t length)
{
    return std::string(length - end.size(), ' ') + end;
}

} // namespace

TEST(ResampleConfig, AnEmptyTextAndNoneGiveThePolyphaseOfOrder30WithCompensation)
{
    EXPECT_EQ(orderOf(""), 30);
    EXPECT_TRUE(compensates(""));
    const Resampler resampler(ORVA_ResampleInit(8000, 8000, nullptr));
    EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 30);
    EXPECT_EQ(convert(resampler.get(), Floats(40, 1.0f), 40).size(), 10u);
}

TEST(ResampleConfig, TypesAreTheTwoPolyphaseNamesAndTheHoldForAllElse)
{
    const Rates rates{16000, 8000}; // which the hold has
    const struct {
        const char *config;
        int32_t expected;
    } cases[] = {
        {"type=polyphase", 30},
        {"type=poly", 30},
        {"type=POLY", 30},
        {"TYPE=PolyPhase", 30},
        {"type=\"poly\"", 30},
        {"order=4;type = poly", 4},
        {"type=poly;type=zoh", hold},
        {"type=zoh,type=poly", 30},
        {"type=", 30}, // no pair, so no type
        {"type=zoh", hold},
        {"Type=ZOH", hold},
        {"type=linear", hold},
        {"type=polyphas", hold},
        {"type=polyphased", hold},
        {"type=pol", hold},
        {"type=\"\"", hold},
        {"type=\"poly \"", hold},
        {"type=[poly]", hold},
        {"type=1", hold},
        {"type=zoh order=7", hold},
        {"type=zoh order=0", hold}, // not looked at
    };
    support::Log log;
    for (const auto &c : cases)
        EXPECT_EQ(orderOf(c.config, rates), c.expected) << c.config;
    EXPECT_TRUE(log.messages.empty());
}

TEST(ResampleConfig, AnUnknownTypeFailsLikeTheHoldForPairsThatThatDoesNotHave)
{
    support::Log log;
    EXPECT_EQ(orderOf("type=linear"), hold);
    EXPECT_EQ(log.messages, std::vector{support::terminalError(
                                "ORVA_ZOHResampleInit: Unsuported sample rate convertion: 8000 to 8000")});
}

TEST(ResampleConfig, OrderComesFromTheTextElseFromTheSettingElseIsThirty)
{
    EXPECT_EQ(orderOf("order=12"), 12);
    EXPECT_EQ(orderOf("ORDER=12"), 12);
    EXPECT_EQ(orderOf("order=12.9"), 12);
    EXPECT_EQ(orderOf("order=many"), 30);
    EXPECT_EQ(orderOf("order=4294967303"), 30); // 2^32 + 7 is out of range, not cut to 7
    {
        const Setting setting("17");
        EXPECT_EQ(orderOf(""), 17);
        EXPECT_EQ(orderOf("order=many"), 17);
        EXPECT_EQ(orderOf("order=12"), 12);
    }
    EXPECT_EQ(orderOf(""), 30);
}

TEST(ResampleConfig, TheSettingIsReadForEachConverter)
{
    const auto early = newResampler(equal);
    const Setting setting("5");
    EXPECT_EQ(ORVA_ResampleFlushBufferSize(early.get()), 30);
    EXPECT_EQ(orderOf(""), 5);
    KTSETTINGS_SetEx(nullptr, "liborva.resample.polyphase.order=%d", 6);
    EXPECT_EQ(orderOf(""), 6);
}

TEST(ResampleConfig, OfTheSettingTheLowThirtyTwoBitsCount)
{
    const struct {
        const char *value;
        int32_t expected;
    } cases[] = {
        {"4294967303", 7},           // 2^32 + 7
        {"-4294967289", 7},          // -2^32 + 7
        {"4294967296", noConverter}, // 2^32: 0
        {"2147483648", noConverter}, // 2^31: negative
        {"-1", noConverter},         {"0", noConverter},
    };
    for (const auto &c : cases) {
        support::Log log;
        const Setting setting(c.value);
        EXPECT_EQ(orderOf(""), c.expected) << c.value;
        EXPECT_EQ(log.messages.size(), c.expected == noConverter ? 1u : 0u);
        EXPECT_EQ(orderOf("order=3"), 3) << c.value;
    }
}

TEST(ResampleConfig, DelayCompensationIsABoolean)
{
    for (const char *on : {"delaycompensation=1", "DelayCompensation=Yes", "delaycompensation=TRUE",
                           "delaycompensation=perhaps", "delaycompensation=7", "order=30"})
        EXPECT_TRUE(compensates(on)) << on;
    for (const char *off : {"delaycompensation=0", "delaycompensation=OFF", "DELAYCOMPENSATION=false",
                            "order=30;delaycompensation=no", "delaycompensation=0.5"})
        EXPECT_FALSE(compensates(off)) << off;
}

TEST(ResampleConfig, OfALongTextTheFirst256BytesAreRead)
{
    const struct {
        const char *end;
        size_t length;
        int32_t expected;
    } cases[] = {
        {"order=12", 255, 12},         {"order=12", 256, 12}, {"order=12", 257, 1}, // the last digit is cut
        {"order=12", 258, 30},         {"order=12", 300, 30}, {"type=polyphase", 256, 30},
        {"type=polyphase", 257, hold}, // "polyphas" is no name of it
    };
    support::Log log;
    for (const auto &c : cases) {
        const Rates rates = c.expected == hold ? Rates{16000, 8000} : equal;
        EXPECT_EQ(orderOf(padded(c.end, c.length), rates), c.expected) << c.end << ", " << c.length;
    }
    EXPECT_EQ(orderOf("order=9;" + std::string(100000, 'x')), 9);
    EXPECT_EQ(orderOf("order=9 type=\"" + std::string(300, 'x')), 9); // never closed, so no type
    EXPECT_TRUE(log.messages.empty());
}

// The text is copied to the last byte that is read, so nothing after its end is looked at.
TEST(ResampleConfig, ATextIsReadNoFurtherThanItsEnd)
{
    for (const size_t length : {0, 1, 255, 256}) {
        const std::unique_ptr<char[]> text(new char[length + 1]);
        std::fill_n(text.get(), length, ' ');
        text[length] = '\0';
        const Resampler resampler(ORVA_ResampleInit(8000, 8000, text.get()));
        EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 30);
    }
    const std::unique_ptr<char[]> unterminated(new char[256]);
    std::fill_n(unterminated.get(), 256, ' ');
    const Resampler resampler(ORVA_ResampleInit(8000, 8000, unterminated.get()));
    EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 30);
}

TEST(ResampleConfig, TheTextItselfIsNotChanged)
{
    const std::string text = "Type=POLY; ORDER=3";
    std::string given = text;
    const Resampler resampler(ORVA_ResampleInit(8000, 8000, given.data()));
    EXPECT_EQ(given, text);
}
