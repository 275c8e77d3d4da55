// Standard error caught.
#pragma once

#include <string>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

namespace support
{

// Standard error as long as it lives: each system call arrives as one piece.
class StandardError
{
public:
    StandardError() : before(dup(STDERR_FILENO))
    {
        socketpair(AF_UNIX, SOCK_DGRAM, 0, ends);
        dup2(ends[1], STDERR_FILENO);
    }

    ~StandardError()
    {
        dup2(before, STDERR_FILENO);
        close(before);
        close(ends[0]);
        close(ends[1]);
    }

    StandardError(const StandardError &) = delete;
    StandardError &operator=(const StandardError &) = delete;

    std::vector<std::string> pieces()
    {
        std::vector<std::string> all;
        std::vector<char> room(1 << 20);
        for (ssize_t size; (size = recv(ends[0], room.data(), room.size(), MSG_DONTWAIT)) >= 0;)
            all.emplace_back(room.data(), static_cast<size_t>(size));
        return all;
    }

private:
    int before;
    int ends[2];
};

} // namespace support
