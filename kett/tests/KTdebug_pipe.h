// Standard error as a reader that is too slow, or gone, leaves it.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include <unistd.h>

// Standard error as a pipe that is full, as long as it lives.
class FullPipe
{
public:
    FullPipe() : before(dup(STDERR_FILENO))
    {
        EXPECT_EQ(pipe(ends), 0);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        const std::string filling(65536, '.');
        EXPECT_EQ(write(STDERR_FILENO, filling.data(), filling.size()), 65536);
    }

    ~FullPipe()
    {
        dup2(before, STDERR_FILENO);
        close(before);
        close(ends[0]);
    }

    FullPipe(const FullPipe &) = delete;
    FullPipe &operator=(const FullPipe &) = delete;

    // What a reader takes out of it now.
    std::string taken() const
    {
        std::string all(1 << 20, 0);
        all.resize(static_cast<size_t>(read(ends[0], all.data(), all.size())));
        return all;
    }

    int ends[2];

private:
    const int before;
};
