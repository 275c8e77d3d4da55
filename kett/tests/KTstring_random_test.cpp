// Configuration strings: random texts against a second reader.
#include "KTstring_lookup.h"
#include "KTstring_reference.h"
#include "support/bits.h"
#include "support/random.h"

#include <string>

namespace
{

// Single characters make every kind of damage; whole pieces get far into the grammar.
const std::vector<std::string> characters = {"a", "b", "=", "=", ";", ",", " ", "\t", "\"", "[",
                                             "]", "1", "2", ".", "-", "+", "e", "x",  "\n", "\xff"};
const std::vector<std::string> pieces = {"a=",
                                         "a=",
                                         "b=",
                                         " = ",
                                         "; ",
                                         ", ",
                                         " ",
                                         "\n",
                                         "[",
                                         "]",
                                         "[",
                                         "]",
                                         "[1 2",
                                         "3 4",
                                         "5, 6",
                                         "],[",
                                         "] [",
                                         ";",
                                         ",",
                                         "1",
                                         "-2.5",
                                         "+.5e1",
                                         "1e400",
                                         "-1e-400",
                                         "\"",
                                         "\"",
                                         "yes",
                                         "\"OFF\"",
                                         "x",
                                         "1 ",
                                         "2;3",
                                         "[[",
                                         "]]",
                                         "a=[1]",
                                         "2147483648",
                                         "a=\"1 2\"",
                                         "a=[[1 2],[3 4]]",
                                         "a=[1, 2; 3 4]",
                                         "a=-7.9",
                                         "a=true"};

std::string randomText(support::Random &random)
{
    const auto &alphabet = random.integer(0, 2) == 0 ? characters : pieces;
    std::string text = random.integer(0, 1) == 0 ? "a=" : "";
    for (int64_t count = random.integer(0, 16); count > 0; --count)
        text += alphabet[static_cast<size_t>(random.integer(0, static_cast<int64_t>(alphabet.size()) - 1))];
    return text;
}

template <class Value> bool same(const std::optional<Value> &actual, const std::optional<Value> &expected)
{
    return actual == expected;
}

bool same(const std::optional<float> &actual, const std::optional<float> &expected)
{
    return actual.has_value() == expected.has_value() && (!actual || support::sameBits(*actual, *expected));
}

bool same(const std::optional<lookup::Matrix> &actual, const std::optional<lookup::Matrix> &expected)
{
    return actual.has_value() == expected.has_value() &&
           (!actual || (actual->rows == expected->rows && actual->columns == expected->columns &&
                        support::sameBits(actual->values, expected->values)));
}

// Counts the texts that hold such a value.
template <class Value>
void compare(const std::optional<Value> &actual, const std::optional<Value> &expected,
             const std::string &config, const char *what, int &found)
{
    EXPECT_TRUE(same(actual, expected))
        << what << " a of '" << config << "': " << testing::PrintToString(actual) << " instead of "
        << testing::PrintToString(expected);
    found += expected.has_value() ? 1 : 0;
}

} // namespace

TEST(ConfigRandom, EveryLookUpAgreesWithASecondReader)
{
    support::Random random;
    int texts = 0, integers = 0, reals = 0, booleans = 0, vectors = 0, matrices = 0;
    for (int i = 0; i < 10000 && !testing::Test::HasFailure(); ++i) {
        const std::string config = randomText(random);
        const auto expected = reference::read(config);
        const auto matrix = reference::matrix(expected, "a");
        const auto vector = matrix && matrix->rows == 1 ? std::optional(matrix->values) : std::nullopt;
        compare(lookup::text(config, "a"), reference::text(expected, "a"), config, "text", texts);
        compare(lookup::integer(config, "a"), reference::integer(expected, "a"), config, "integer", integers);
        compare(lookup::real(config, "a"), reference::real(expected, "a"), config, "float", reals);
        compare(lookup::boolean(config, "a"), reference::boolean(expected, "a"), config, "boolean", booleans);
        compare(lookup::vector(config, "a"), vector, config, "vector", vectors);
        compare(lookup::matrix(config, "a"), matrix, config, "matrix", matrices);
    }
    for (const int found : {texts, integers, reals, booleans, vectors, matrices - vectors})
        EXPECT_GT(found, 20); // the random texts reach every kind of value
    std::printf("%d texts, %d integers, %d floats, %d booleans, %d vectors, %d matrices\n", texts, integers,
                reals, booleans, vectors, matrices);
}
