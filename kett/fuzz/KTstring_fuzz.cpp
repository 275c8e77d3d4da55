// Fuzz target: every look-up of one key in one configuration string. An input's first line is the key, the rest the
// string. Besides being memory-safe, the look-ups have to agree with each other and to keep to the room they are given.
#include <kett/KTstring.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

namespace
{

constexpr char untouchedCharacter = '\x55';
constexpr double untouched = -12345.5;
constexpr int32_t margin = 4; // elements after the room, which must stay as they were

void require(bool holds, const char *what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

// A null-terminated text in a block of its exact size, so that a sanitizer sees a read past its end.
std::vector<char> textOf(const uint8_t *begin, const uint8_t *end)
{
    std::vector<char> text(begin, end);
    text.push_back('\0');
    return text;
}

// The text of `size` bytes of room holds the beginning of `expected`, and nothing is written after it.
void requireCut(const std::vector<char> &output, int32_t size, std::string_view expected)
{
    const auto text = expected.substr(0, static_cast<size_t>(size) - 1);
    require(std::memcmp(output.data(), text.data(), text.size()) == 0, "the text is cut to the room");
    require(output[text.size()] == '\0', "the text is terminated");
    require(std::all_of(output.begin() + static_cast<std::ptrdiff_t>(text.size()) + 1, output.end(),
                        [](char c) { return c == untouchedCharacter; }),
            "nothing is written after the text");
}

bool checkText(const char *config, const char *key)
{
    const auto whole = static_cast<int32_t>(std::strlen(config)) + 1;
    std::vector<char> value(static_cast<size_t>(whole), untouchedCharacter);
    const bool found = KTSTRING_GetStringValueFromString(config, key, nullptr, value.data(), whole) != 0;
    require(found || value.front() == untouchedCharacter, "an absent text is not written");
    const char *expected = found ? value.data() : "a default";
    for (const int32_t size : {1, 2, 7, 64, whole}) {
        std::vector<char> output(static_cast<size_t>(size + margin), untouchedCharacter);
        require(KTSTRING_GetStringValueFromString(config, key, "a default", output.data(), size) == 1,
                "with a default there is a text");
        requireCut(output, size, expected);
    }
    require(KTSTRING_GetStringValueFromString(config, key, "a default", value.data(), 0) == 0,
            "no room, no text");
    return found;
}

// A look-up with two defaults gives the same value, or each time the default.
template <class Value>
bool checkScalar(const char *config, const char *key, Value (*lookUp)(const char *, const char *, Value),
                 Value firstDefault, Value secondDefault)
{
    const Value first = lookUp(config, key, firstDefault);
    const Value second = lookUp(config, key, secondDefault);
    const bool found = first == second;
    require(found || (first == firstDefault && second == secondDefault), "an absent value gives the default");
    return found;
}

bool sameBits(double a, double b)
{
    return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b);
}

// `count` of the elements are in the output, and nothing else.
void requireElements(const std::vector<double> &output, const std::vector<double> &expected, size_t count)
{
    require(std::equal(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(count),
                       output.begin(), sameBits),
            "the elements are the same");
    require(std::all_of(output.begin() + static_cast<std::ptrdiff_t>(count), output.end(),
                        [](double x) { return x == untouched; }),
            "nothing is written after the elements");
}

struct Size {
    int32_t rows;
    int32_t columns;

    int32_t elements() const
    {
        return rows * columns;
    }
};

void checkMatrixRoom(const char *config, const char *key, Size room, const std::vector<double> &expected)
{
    const int64_t places = room.rows > 0 && room.columns > 0 ? int64_t{room.rows} * room.columns : 0;
    const auto count = static_cast<size_t>(std::min<int64_t>(places, static_cast<int64_t>(expected.size())));
    std::vector<double> output(count + margin, untouched);
    require(KTSTRING_GetDoubleMatrixValuesFromString(config, key, output.data(), room.rows, room.columns) ==
                static_cast<int32_t>(count),
            "the elements that fit are counted");
    requireElements(output, expected, count);
}

void checkVectorRoom(const char *config, const char *key, int32_t capacity,
                     const std::vector<double> &expected)
{
    const auto count = static_cast<size_t>(std::clamp(capacity, 0, static_cast<int32_t>(expected.size())));
    std::vector<double> output(count + margin, untouched);
    require(KTSTRING_GetDoubleVectorValuesFromString(config, key, output.data(), capacity) ==
                static_cast<int32_t>(count),
            "the elements that fit are counted");
    requireElements(output, expected, count);
}

bool checkMatrix(const char *config, const char *key)
{
    Size size = {-1, -1};
    const bool found = KTSTRING_GetMatrixSizeFromString(config, key, &size.rows, &size.columns) != 0;
    require(found ? size.rows > 0 && size.columns > 0 : size.rows == -1 && size.columns == -1,
            "only a matrix has a size");
    std::vector<double> elements(found ? static_cast<size_t>(size.elements()) : 0, untouched);
    if (found)
        KTSTRING_GetDoubleMatrixValuesFromString(config, key, elements.data(), size.rows, size.columns);
    require(std::all_of(elements.begin(), elements.end(), [](double x) { return std::isfinite(x); }),
            "the elements are numbers");
    for (const Size room :
         {Size{0, 0}, Size{-1, -1}, Size{1, 1}, Size{1, 5}, Size{2, 2}, size, Size{INT32_MAX, INT32_MAX}})
        checkMatrixRoom(config, key, room, elements);

    int32_t length = -1;
    const bool isVector = KTSTRING_GetVectorSizeFromString(config, key, &length) != 0;
    require(isVector == (found && size.rows == 1), "a matrix of one row is a vector, and the reverse");
    require(length == (isVector ? size.columns : -1), "only a vector has a length");
    if (!isVector)
        elements.clear();
    for (const int32_t capacity : {0, -1, 1, 2, length - 1, length, length + 1, INT32_MAX})
        checkVectorRoom(config, key, capacity, elements);
    return found;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const uint8_t *end = data + size;
    const uint8_t *lineEnd = std::find(data, end, '\n');
    const auto keyText = textOf(data, lineEnd);
    const auto configText = textOf(lineEnd == end ? end : lineEnd + 1, end);
    const char *key = keyText.data();
    const char *config = configText.data();

    const bool isText = checkText(config, key);
    const bool isInteger = checkScalar<int32_t>(config, key, KTSTRING_GetIntegerValueFromString, -1, 7);
    const bool isFloat = checkScalar(config, key, KTSTRING_GetFloatValueFromString, -1.5f, 7.5f);
    const bool isBoolean = checkScalar(config, key, KTSTRING_GetBooleanValueFromString, false, true);
    const bool isMatrix = checkMatrix(config, key);
    require(isText || !(isInteger || isFloat || isBoolean || isMatrix), "every value is a text");
    require(isFloat || !isInteger, "every integer is a float");
    require(isBoolean || !isInteger, "every integer is a boolean");
    require(std::isfinite(KTSTRING_GetFloatValueFromString(config, key, 0.0f)), "a float is a number");
    return 0;
}
