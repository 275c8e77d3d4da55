// A table of numbers, written row by row into a file that appears when it is complete, or to standard output: CSV, with the
// names of the columns in its first line, or NPY, an array of doubles with a row for each row.
#pragma once

#include "replacement.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orva
{

struct Column {
    std::string name;
    int decimals = 0; // in CSV
};

class NumberTable
{
public:
    // The ending of the path tells the format; "-" is CSV on standard output. Refuses, as used wrongly, any other ending,
    // and a place that cannot be written.
    NumberTable(const std::string &path, const std::vector<Column> &columns);
    ~NumberTable();
    NumberTable(const NumberTable &) = delete;
    NumberTable &operator=(const NumberTable &) = delete;

    void add(std::span<const double> row);

    // Writes what is left and puts the file in its place.
    void finish();

    int64_t rows() const
    {
        return count;
    }

private:
    std::string npyHead() const;
    void flush();

    std::string name;
    std::vector<Column> columns;
    bool npy = false;
    int descriptor = -1;
    std::unique_ptr<Replacement> replacement;
    std::string pending; // not written yet
    int64_t count = 0;
};

} // namespace orva
