// A case in a process of its own: whatever it leaves behind in a library reaches no other case.
#pragma once

#include "support/environment.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include <windows.h>

namespace support
{

// Runs the body in a child process and waits for it. Failures in there are failures of this test; so is a crash. The child
// is this program started anew for this test, which runs the body when it comes to the same call: it shows in the
// environment which one that is. So nothing but a constant may be read in a body of what the test has done before.
inline void inOwnProcess(const std::function<void()> &body)
{
    static int call = 0;
    const std::string number = std::to_string(++call);
    const std::string wanted = variable("ORVA_TEST_CALL");
    if (!wanted.empty() && wanted != number)
        return;
    if (!wanted.empty()) {
        body();
        std::fflush(nullptr);
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    }
    const auto *test = testing::UnitTest::GetInstance()->current_test_info();
    wchar_t program[1024];
    GetModuleFileNameW(nullptr, program, 1024);
    std::wstring command = L"\"" + std::wstring(program) + L"\" --gtest_filter=" +
                           wide(test->test_suite_name()) + L"." + wide(test->name());
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION child = {};
    std::fflush(nullptr);
    setVariable("ORVA_TEST_CALL", number);
    const BOOL started =
        CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &child);
    unsetVariable("ORVA_TEST_CALL");
    ASSERT_TRUE(started);
    WaitForSingleObject(child.hProcess, INFINITE);
    DWORD status = 1;
    GetExitCodeProcess(child.hProcess, &status);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    EXPECT_EQ(status, 0u);
}

} // namespace support
