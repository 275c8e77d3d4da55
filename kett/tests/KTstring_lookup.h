// The look-ups of kett/KTstring.h as tests want them: one value, or none when the key is absent.
#pragma once

#include <kett/KTstring.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace lookup
{

struct Matrix {
    int32_t rows;
    int32_t columns;
    std::vector<double> values;

    bool operator==(const Matrix &) const = default;
};

inline std::ostream &operator<<(std::ostream &out, const Matrix &matrix)
{
    return out << matrix.rows << " x " << matrix.columns << ' ' << testing::PrintToString(matrix.values);
}

// The text in a block of its exact size, so that a sanitizer sees a read past its end.
class Exact
{
public:
    explicit Exact(const std::string &text) : block(text.c_str(), text.c_str() + text.size() + 1) {}

    operator const char *() const
    {
        return block.data();
    }

private:
    std::vector<char> block;
};

inline std::optional<std::string> text(const std::string &config, const std::string &key)
{
    std::vector<char> output(config.size() + 1);
    if (KTSTRING_GetStringValueFromString(Exact(config), Exact(key), nullptr, output.data(),
                                          static_cast<int32_t>(output.size())) == 0)
        return std::nullopt;
    return output.data();
}

inline std::optional<int32_t> integer(const std::string &config, const std::string &key)
{
    const int32_t value = KTSTRING_GetIntegerValueFromString(Exact(config), Exact(key), 1234);
    if (value == 1234 && KTSTRING_GetIntegerValueFromString(Exact(config), Exact(key), 4321) == 4321)
        return std::nullopt;
    return value;
}

inline std::optional<float> real(const std::string &config, const std::string &key)
{
    const float value = KTSTRING_GetFloatValueFromString(Exact(config), Exact(key), 1234.0f);
    if (value == 1234.0f && KTSTRING_GetFloatValueFromString(Exact(config), Exact(key), 4321.0f) == 4321.0f)
        return std::nullopt;
    return value;
}

inline std::optional<bool> boolean(const std::string &config, const std::string &key)
{
    const bool value = KTSTRING_GetBooleanValueFromString(Exact(config), Exact(key), false);
    if (value != KTSTRING_GetBooleanValueFromString(Exact(config), Exact(key), true))
        return std::nullopt;
    return value;
}

// Size and elements; checks that both operations agree.
inline std::optional<std::vector<double>> vector(const std::string &config, const std::string &key)
{
    int32_t size = -1;
    const bool found = KTSTRING_GetVectorSizeFromString(Exact(config), Exact(key), &size) != 0;
    std::vector<double> values(found ? static_cast<size_t>(size) : 1);
    const int32_t count = KTSTRING_GetDoubleVectorValuesFromString(Exact(config), Exact(key), values.data(),
                                                                   static_cast<int32_t>(values.size()));
    EXPECT_EQ(count, found ? size : 0) << config;
    if (!found) {
        EXPECT_EQ(size, -1) << config;
        return std::nullopt;
    }
    return values;
}

// The same for a matrix.
inline std::optional<Matrix> matrix(const std::string &config, const std::string &key)
{
    Matrix result = {-1, -1, {}};
    const bool found =
        KTSTRING_GetMatrixSizeFromString(Exact(config), Exact(key), &result.rows, &result.columns) != 0;
    result.values.resize(found ? static_cast<size_t>(result.rows) * static_cast<size_t>(result.columns) : 1);
    const int32_t count = KTSTRING_GetDoubleMatrixValuesFromString(
        Exact(config), Exact(key), result.values.data(), found ? result.rows : 1, found ? result.columns : 1);
    EXPECT_EQ(count, found ? result.rows * result.columns : 0) << config;
    if (!found) {
        EXPECT_EQ(result.rows, -1) << config;
        EXPECT_EQ(result.columns, -1) << config;
        return std::nullopt;
    }
    return result;
}

} // namespace lookup
