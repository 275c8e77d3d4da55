// libkett: vectors, sample conversion, the block filter, numbers as text.
#include "families.h"
#include "numbers.h"

#include <kett/KTfilter.h>
#include <kett/KTstring.h>
#include <kett/KTutils.h>
#include <kett/KTvector.h>

#include <algorithm>
#include <string>

namespace bits
{
namespace
{

// Samples whose 16 bits are decided by a tie, and their neighbours.
float nearTie(Numbers &numbers)
{
    const float tie = (static_cast<float>(numbers.integer(-32770, 32770)) + 0.5f) * 0x1p-15f;
    return std::bit_cast<float>(std::bit_cast<uint32_t>(tie) + static_cast<uint32_t>(numbers.integer(-1, 1)));
}

std::string digits(Numbers &numbers, int32_t count)
{
    std::string text;
    for (int32_t i = 0; i < count; ++i)
        text += static_cast<char>('0' + numbers.integer(0, 9));
    return text;
}

// A decimal number of any length, from zero to what is too large.
std::string number(Numbers &numbers)
{
    std::string text = numbers.coin() ? "-" : "";
    text += digits(numbers, numbers.integer(1, 24));
    if (numbers.coin())
        text += '.' + digits(numbers, numbers.integer(0, 30));
    if (numbers.coin())
        text += "e" + std::to_string(numbers.integer(-345, 310));
    return text;
}

} // namespace

void kettVectors(Digest &results)
{
    Numbers numbers(1);
    for (int32_t round = 0; round < 1200; ++round) {
        const bool isFinite = numbers.coin();
        const size_t offset = numbers.size(0, 15);
        const size_t length = round % 100 == 0 ? 5000 : numbers.size(0, 300);
        auto values = numbers.vector(offset + length, isFinite ? &Numbers::finite : &Numbers::mixed);
        float *vector = values.data() + offset;
        const auto count = static_cast<int32_t>(length);
        float maximum = 0.0f;
        results.add(FVectorSumOfSquares(vector, count));
        results.add(FVectorAbsMax(vector, count));
        results.add(FVectorArgAbsMax(vector, count, &maximum));
        results.add(maximum);
        FVectorMulScalar(vector, count, isFinite ? numbers.sample() : numbers.mixed());
        results.add(values);
    }
}

void kettSamples(Digest &results)
{
    Numbers numbers(2);
    for (int32_t round = 0; round < 800; ++round) {
        const size_t from = numbers.size(0, 15), to = numbers.size(0, 15);
        const size_t length = round % 100 == 0 ? 5000 : numbers.size(0, 300);
        const auto count = static_cast<int32_t>(length);
        std::vector<float> samples(from + length);
        for (float &x : samples)
            x = numbers.coin() ? nearTie(numbers) : numbers.mixed();
        std::vector<int16_t> words(to + length);
        KTUTILS_ConvertIEEEFloatToWord16(samples.data() + from, words.data() + to, count);
        results.add(words);
        for (int16_t &word : words)
            word = static_cast<int16_t>(numbers.next());
        KTUTILS_ConvertWord16ToIEEEFloat(words.data() + to, samples.data() + from, count);
        results.add(samples);
    }
}

void kettFilter(Digest &results)
{
    Numbers numbers(3);
    for (int32_t round = 0; round < 900; ++round) {
        const int32_t count = round % 18;
        std::vector<double> a(static_cast<size_t>(count)), b(a.size()), state(a.size() + 1);
        for (size_t k = 0; k < a.size(); ++k) {
            a[k] = k == 0 ? 1.0 : numbers.real() / static_cast<double>(count);
            b[k] = numbers.real();
        }
        for (int32_t left = 500; left > 0;) {
            const int32_t block = numbers.integer(1, std::min(left, 200));
            // Once something is not finite the rest of the stream is not-a-number: that comes at the end.
            const auto input =
                numbers.vector(static_cast<size_t>(block), left < 100 ? &Numbers::mixed : &Numbers::finite);
            std::vector<double> output(input.size());
            FilterBlockFloat(a.data(), b.data(), count, state.data(), nullptr, input.data(), output.data(),
                             block);
            results.add(output);
            left -= block;
        }
        results.add(state);
    }
}

void kettNumbers(Digest &results)
{
    Numbers numbers(4);
    for (int32_t round = 0; round < 20000; ++round) {
        std::string config = "x=" + number(numbers);
        config += "; v=[" + number(numbers);
        config += ' ' + number(numbers) + ']';
        double vector[2] = {};
        results.add(KTSTRING_GetFloatValueFromString(config.c_str(), "x", 0.5f));
        results.add(KTSTRING_GetIntegerValueFromString(config.c_str(), "x", 1));
        results.add(KTSTRING_GetDoubleVectorValuesFromString(config.c_str(), "v", vector, 2));
        results.add(vector[0]);
        results.add(vector[1]);
    }
}

} // namespace bits
