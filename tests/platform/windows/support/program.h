// A program run as its user runs it: in a process and a working folder of its own.
#pragma once

#include "support/folder.h"
#include "support/text.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>

namespace support
{

struct Outcome {
    int status = -1; // exit status
    std::string out;
    std::string err;
};

// The file that a stream of a new process goes to.
inline HANDLE newStream(const std::string &path)
{
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
}

// Runs a program with `folder` as its current folder. No word holds a quotation mark.
inline Outcome run(const std::vector<std::string> &words, const Folder &folder)
{
    const Folder streams;
    std::string line;
    for (const auto &word : words)
        line += (line.empty() ? "\"" : " \"") + word + "\"";
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    start.hStdOutput = newStream(streams / "out");
    start.hStdError = newStream(streams / "err");
    std::wstring command = wide(line);
    PROCESS_INFORMATION child = {};
    const BOOL started = CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        folder.path.wstring().c_str(), &start, &child);
    CloseHandle(start.hStdOutput);
    CloseHandle(start.hStdError);
    if (!started)
        throw std::runtime_error("cannot run " + words[0]);
    WaitForSingleObject(child.hProcess, INFINITE);
    DWORD status = 1;
    GetExitCodeProcess(child.hProcess, &status);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return {static_cast<int>(status), readFile(streams / "out"), readFile(streams / "err")};
}

} // namespace support
