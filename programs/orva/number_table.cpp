#include "number_table.h"

#include "failure.h"

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace orva
{
namespace
{

enum { npyHeadBytes = 128, blockBytes = 65536 };

bool endsLike(const std::string &path, const char *ending)
{
    std::string end = path.size() < 4 ? "" : path.substr(path.size() - 4);
    for (char &letter : end)
        letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter);
    return end == ending;
}

} // namespace

NumberTable::NumberTable(const std::string &path, const std::vector<Column> &names)
    : name(path == "-" ? "standard output" : path), columns(names), npy(endsLike(path, ".npy"))
{
    if (path != "-" && !npy && !endsLike(path, ".csv"))
        failUse(path + ": the name of a table ends in .csv or .npy");
    if (npy && isStream(path))
        fail(path + ": the head of an array is written last, into a file");
    if (path == "-") {
        descriptor = dup(STDOUT_FILENO);
    } else if (isStream(path)) {
        descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    } else {
        replacement = std::make_unique<Replacement>(path);
        descriptor = replacement->descriptor();
    }
    if (descriptor < 0)
        fail(name + ": " + std::strerror(errno));
    if (npy) {
        pending = npyHead();
        return;
    }
    for (const Column &column : columns)
        pending += (pending.empty() ? "" : ",") + column.name;
    pending += '\n';
}

NumberTable::~NumberTable()
{
    if (replacement == nullptr && descriptor >= 0)
        close(descriptor);
}

// As "NumPy's .npy format" of version 1.0 tells it: a magic, the length of what follows, and that as a Python expression,
// filled up with blanks.
std::string NumberTable::npyHead() const
{
    std::string head("\x93NUMPY\x01\x00", 8);
    head += static_cast<char>(npyHeadBytes - 10);
    head += '\0';
    head += std::string("{'descr': '") + (std::endian::native == std::endian::little ? '<' : '>') +
            "f8', 'fortran_order': False, 'shape': (" + std::to_string(count) + ", " +
            std::to_string(columns.size()) + "), }";
    head.resize(npyHeadBytes - 1, ' ');
    return head + '\n';
}

void NumberTable::add(std::span<const double> row)
{
    ++count;
    if (npy) {
        pending.append(reinterpret_cast<const char *>(row.data()), row.size_bytes());
    } else {
        for (size_t i = 0; i < row.size(); ++i) {
            char text[400]; // the greatest double has 309 digits
            std::snprintf(text, sizeof text, "%s%.*f", i > 0 ? "," : "", columns[i].decimals, row[i]);
            pending += text;
        }
        pending += '\n';
    }
    if (pending.size() > blockBytes)
        flush();
}

void NumberTable::flush()
{
    writeAll(descriptor, pending, name);
    pending.clear();
}

void NumberTable::finish()
{
    flush();
    if (npy) { // now that the number of rows is known
        if (lseek(descriptor, 0, SEEK_SET) != 0)
            fail(name + ": " + std::strerror(errno));
        writeAll(descriptor, npyHead(), name);
    }
    if (replacement != nullptr)
        replacement->commit();
}

} // namespace orva
