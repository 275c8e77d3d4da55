// Files of the system, from which KTIO is made. A SystemFile is not open from its beginning.
#pragma once

#include "system_records.h"

#include <cstdint>

namespace kett
{

// Stands between the parts of a path that newTargetPath() gives.
extern const char pathSeparator;

// True if there is something at the path that is not a folder.
bool isFileAt(const char *path);

// Opens a regular file, and waits for nothing; false, with `file` not open, when that cannot be.
bool openToRead(SystemFile &file, const char *path);

// The absolute path that `path` stands for, all links followed, also one that leads to a file not there yet.
// For free(); null when there is no such folder or memory is out.
char *newTargetPath(const char *path);

// What a file hands on to the one that takes its place. The numbers are the system's.
struct FileRights {
    uint32_t mode;
    uint32_t owner;
    uint32_t group;
};

enum class Target { absent, replaceable, refused };

// Tells what stands at a target path, links not followed. It is replaceable, and `rights` are its own, where
// it is a regular file that the caller may write and may put another in the place of.
Target lookAtTarget(const char *path, FileRights &rights);

enum class Creation { done, nameTaken, refused };

// Creates a file to write to. A private one is closed to everybody else until it is given other rights.
Creation createFile(SystemFile &file, const char *path, bool isPrivate);

bool giveRights(SystemFile &file, const FileRights &rights);

// The size of an open file in bytes; 0 where the system does not tell.
int64_t sizeOf(const SystemFile &file);

// One transfer of at most `size` bytes, less than 2^31. The bytes that were transferred; 0 at the end of the
// file, and where the system refuses.
uint64_t readSome(SystemFile &file, void *buffer, uint64_t size);
uint64_t writeSome(SystemFile &file, const void *buffer, uint64_t size);

// Brings what was written to the disk.
bool flushFile(SystemFile &file);

// The file is closed afterwards, whatever the result.
bool closeFile(SystemFile &file);

// Puts the file `from` in the place of what stands at `to`, in one step; false with nothing changed.
bool replaceFile(const char *from, const char *to);

void removeFile(const char *path);

// Brings the names in a folder to the disk, so that they last through a crash, where the system lets it.
void flushFolder(const char *path);

} // namespace kett
