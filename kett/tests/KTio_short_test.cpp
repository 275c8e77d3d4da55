// A system that transfers less than it is asked for: this program stands in for it.
#include "KTio_replace.h"
#include "support/folder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <sys/syscall.h>
#include <unistd.h>

namespace
{

constexpr size_t mostBytes = 1000; // of one transfer

} // namespace

ssize_t read(int file, void *buffer, size_t size)
{
    return syscall(SYS_read, file, buffer, std::min(size, mostBytes));
}

ssize_t write(int file, const void *buffer, size_t size)
{
    return syscall(SYS_write, file, buffer, std::min(size, mostBytes));
}

TEST(IoTransfer, GoesOnWhereTheSystemFallsShort)
{
    const support::Folder folder;
    std::string content(2 * mostBytes + 7, '.');
    for (size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>('a' + i % 23);
    EXPECT_TRUE(replace(folder / "file", content));
    EXPECT_EQ(support::readFile(folder / "file"), content);
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "r");
    std::string taken(content.size(), '-');
    EXPECT_EQ(KTIO_ReadData(file, taken.data(), taken.size()), content.size());
    EXPECT_EQ(taken, content);
    EXPECT_TRUE(KTIO_CloseFile(file));
}

// The file holds more, and the buffer ends where the read is told to end.
TEST(IoTransfer, TakesNoMoreThanItIsAskedForAfterAShortRead)
{
    const support::Folder folder;
    EXPECT_TRUE(replace(folder / "file", std::string(3 * mostBytes, 'x')));
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "r");
    std::string taken(3 * mostBytes, '-');
    EXPECT_EQ(KTIO_ReadData(file, taken.data(), mostBytes + 7), mostBytes + 7);
    EXPECT_EQ(taken, std::string(mostBytes + 7, 'x') + std::string(2 * mostBytes - 7, '-'));
    EXPECT_TRUE(KTIO_CloseFile(file));
}
