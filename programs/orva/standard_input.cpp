#include "standard_input.h"

#include "failure.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orva
{
namespace
{

enum { headBytes = 12, blockBytes = 65536 };

ssize_t readOn(int from, char *bytes, size_t room)
{
    ssize_t got = 0;
    do {
        got = read(from, bytes, room);
    } while (got < 0 && errno == EINTR);
    return got;
}

bool writeAll(int to, const char *bytes, size_t count)
{
    while (count > 0) {
        const ssize_t written = write(to, bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        count -= static_cast<size_t>(written);
    }
    return true;
}

// Copies all that is left; false where it cannot be written.
bool copyRest(int from, int to)
{
    char block[blockBytes];
    for (ssize_t got; (got = readOn(from, block, sizeof block)) > 0;)
        if (!writeAll(to, block, static_cast<size_t>(got)))
            return false;
    return true;
}

// Gives the head back in front of the rest.
int passOn(int stream, const std::string &head)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        fail(std::string("pipe: ") + std::strerror(errno));
    std::thread([stream, head, to = ends[1]] {
        sigset_t all;
        sigfillset(&all); // the reader may be gone before the end
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        if (writeAll(to, head.data(), head.size()))
            copyRest(stream, to);
        close(to);
        close(stream);
    }).detach();
    return ends[0];
}

int keep(int stream, const std::string &head)
{
    FILE *nameless = std::tmpfile();
    const int file = nameless != nullptr ? dup(fileno(nameless)) : -1;
    if (nameless != nullptr)
        std::fclose(nameless);
    if (file < 0 || !writeAll(file, head.data(), head.size()) || !copyRest(stream, file) ||
        lseek(file, 0, SEEK_SET) != 0)
        fail(std::string("temporary file: ") + std::strerror(errno));
    close(stream);
    return file;
}

} // namespace

int readableStream(int stream, bool raw)
{
    if (raw)
        return stream;
    std::string head(headBytes, '\0');
    size_t filled = 0;
    for (ssize_t got; filled < headBytes && (got = readOn(stream, &head[filled], headBytes - filled)) > 0;)
        filled += static_cast<size_t>(got);
    head.resize(filled);
    if (filled == 0)
        fail("standard input: is empty");
    const bool wav = (head.starts_with("RIFF") || head.starts_with("RIFX")) && head.ends_with("WAVE");
    return wav || head.starts_with(".snd") ? passOn(stream, head) : keep(stream, head);
}

int readableInput(bool raw)
{
    const int copy = dup(STDIN_FILENO);
    if (copy < 0)
        fail(std::string("standard input: ") + std::strerror(errno));
    struct stat present = {};
    if (fstat(copy, &present) == 0 && S_ISREG(present.st_mode)) {
        if (present.st_size == 0)
            fail("standard input: is empty");
        return copy;
    }
    return readableStream(copy, raw);
}

} // namespace orva
