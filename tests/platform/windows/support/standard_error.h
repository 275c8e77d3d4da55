// Standard error caught.
#pragma once

#include <string>
#include <vector>

#include <windows.h>

namespace support
{

// Standard error as long as it lives: each system call arrives as one piece.
class StandardError
{
public:
    StandardError() : before(GetStdHandle(STD_ERROR_HANDLE))
    {
        constexpr DWORD room = 1 << 22; // for all that a test writes, since nobody reads meanwhile
        const std::string name = "\\\\.\\pipe\\orva-" + std::to_string(GetCurrentProcessId());
        reader = CreateNamedPipeA(name.c_str(), PIPE_ACCESS_INBOUND,
                                  PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE, 1, room, room, 0, nullptr);
        writer = CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        SetStdHandle(STD_ERROR_HANDLE, writer);
    }

    ~StandardError()
    {
        SetStdHandle(STD_ERROR_HANDLE, before);
        CloseHandle(writer);
        CloseHandle(reader);
    }

    StandardError(const StandardError &) = delete;
    StandardError &operator=(const StandardError &) = delete;

    std::vector<std::string> pieces()
    {
        std::vector<std::string> all;
        std::vector<char> room(1 << 20);
        DWORD waiting = 0;
        while (PeekNamedPipe(reader, nullptr, 0, nullptr, &waiting, nullptr) && waiting > 0) {
            DWORD size = 0;
            ReadFile(reader, room.data(), static_cast<DWORD>(room.size()), &size, nullptr);
            all.emplace_back(room.data(), size);
        }
        return all;
    }

private:
    HANDLE before;
    HANDLE reader;
    HANDLE writer;
};

} // namespace support
