// A case in a process of its own: whatever it leaves behind in a library reaches no other case.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include <sys/wait.h>
#include <unistd.h>

namespace support
{

// Runs the body in a child process and waits for it. Failures in there are failures of this test; so are a
// crash and what a sanitizer finds at the child's end.
inline void inOwnProcess(const std::function<void()> &body)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        body();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_FALSE(WIFSIGNALED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "exit code " << WEXITSTATUS(status);
}

} // namespace support
