#include "replacement.h"

#include "failure.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orva
{
namespace
{

// The names of what is half written, where a signal handler can read them.
enum { mostParts = 64 };
struct Part {
    std::atomic<int> state; // free, being filled, to be removed
    char name[PATH_MAX];
};
enum { freePart, takenPart, writtenPart };
Part parts[mostParts];

void removeParts(int signal)
{
    for (Part &part : parts)
        if (part.state == writtenPart)
            unlink(part.name);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

int takeSlot()
{
    for (int i = 0; i < mostParts; ++i) {
        int expected = freePart;
        if (parts[i].state.compare_exchange_strong(expected, takenPart))
            return i;
    }
    fail("too many files at a time");
}

// Where a path leads, which need not exist.
std::string resolved(const std::string &path)
{
    std::error_code error;
    std::filesystem::path place = path;
    for (int links = 0; std::filesystem::is_symlink(place, error); ++links) {
        if (links == 40)
            fail(path + ": " + std::strerror(ELOOP));
        place = place.parent_path() / std::filesystem::read_symlink(place, error);
    }
    return place;
}

mode_t modeOfNewFiles()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

void removePartsOnSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT, SIGXFSZ, SIGXCPU}) {
        struct sigaction present;
        if (sigaction(signal, nullptr, &present) != 0 || present.sa_handler == SIG_IGN)
            continue; // as under nohup
        struct sigaction action = {};
        action.sa_handler = removeParts;
        sigfillset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

Replacement::Replacement(const std::string &path) : name(path), target(resolved(path))
{
    struct stat present = {};
    const bool exists = stat(target.c_str(), &present) == 0;
    if (exists && S_ISDIR(present.st_mode))
        fail(name + ": " + std::strerror(EISDIR));
    if (exists && access(target.c_str(), W_OK) != 0)
        fail(name + ": " + std::strerror(errno));
    const std::filesystem::path place = target;
    const std::string pattern = (place.parent_path() / ".orva.XXXXXX").string();
    if (pattern.size() >= PATH_MAX)
        fail(name + ": " + std::strerror(ENAMETOOLONG));
    static const mode_t newMode = modeOfNewFiles();

    slot = takeSlot();
    Part &part = parts[slot];
    std::memcpy(part.name, pattern.c_str(), pattern.size() + 1);
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before); // a file made is a file noted
    file = mkostemp(part.name, O_CLOEXEC);
    const int reason = errno;
    part.state = file >= 0 ? writtenPart : freePart;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (file < 0)
        fail(name + ": " + std::strerror(reason));
    fchmod(file, exists ? present.st_mode & 07777 : newMode);
}

Replacement::~Replacement()
{
    if (file >= 0)
        close(file);
    if (parts[slot].state == writtenPart)
        unlink(parts[slot].name);
    parts[slot].state = freePart;
}

void Replacement::commit()
{
    const int closed = close(file);
    file = -1;
    if (closed != 0 || std::rename(parts[slot].name, target.c_str()) != 0)
        fail(name + ": " + std::strerror(errno));
    parts[slot].state = takenPart; // nothing to remove
}

void writeAll(int descriptor, const std::string &bytes, const std::string &name)
{
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t some = write(descriptor, bytes.data() + done, bytes.size() - done);
        if (some < 0 && errno == EINTR)
            continue;
        if (some <= 0)
            fail(name + ": " + std::strerror(errno));
        done += static_cast<size_t>(some);
    }
}

bool isStream(const std::string &path)
{
    struct stat present;
    return stat(path.c_str(), &present) == 0 && !S_ISREG(present.st_mode) && !S_ISDIR(present.st_mode);
}

} // namespace orva
