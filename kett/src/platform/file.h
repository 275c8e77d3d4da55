// Files of the system, from which KTIO is made. A SystemFile is not open from its beginning.
#pragma once

#include "system_records.h"

#include <cstdint>
#include <string_view>

namespace kett
{

// True if there is something at the path that is not a folder.
bool isFileAt(const char *path);

// Opens a regular file, and waits for nothing; false, with `file` not open, when that cannot be.
bool openToRead(SystemFile &file, const char *path);

// Opens the folder of the file that a path stands for, so that what is done in it is done there, whatever becomes of its
// path; links that lead to the folder are followed. Gives the name of the file in it, for free(); null, with `folder` not
// open, when the path has no name at its end, there is no such folder or memory is out.
char *openFolderOf(SystemFolder &folder, const char *path);

// Brings the names in a folder to the disk, so that they last through a crash, where the system lets it.
void flushFolder(const SystemFolder &folder);

void closeFolder(SystemFolder &folder);

// Below, a `name` is that of something in the folder. Links are not followed.

// What a file hands on to the one that takes its place. The numbers are the system's.
struct FileRights {
    uint32_t mode;
    uint32_t owner;
    uint32_t group;
};

enum class Target { withoutRights, withRights, refused };

// Tells whether the caller may put a file in the place of what stands at a name. It has rights to hand on where it is a
// regular file, which the caller must be allowed to write; a link has none, nor has a place where nothing stands.
Target lookAtTarget(const SystemFolder &folder, const char *name, FileRights &rights);

enum class Creation { done, nameTaken, refused };

// Creates a file to write to. A private one is closed to everybody else until it is given other rights.
Creation createFile(SystemFile &file, const SystemFolder &folder, const char *name, bool isPrivate);

// Puts the file `from` in the place of what stands at `to`, in one step; false with nothing changed.
bool replaceFile(const SystemFolder &folder, const char *from, const char *to);

void removeFile(const SystemFolder &folder, const char *name);

// Removes the caller's own files of such names that nobody has written to for so long.
void removeOldFiles(const SystemFolder &folder, bool (*isSuchName)(std::string_view name), int64_t seconds);

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

} // namespace kett
