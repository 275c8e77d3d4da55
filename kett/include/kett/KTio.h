/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Files, read whole or replaced whole.
 *
 *  A file opened with "w" is written beside its target under a unique temporary name; KTIO_CloseFile()
 *  flushes it to the disk and puts it in the target's place in one step. A crash, a full disk or a second
 *  process thus leaves the old content or the new one, never a mixture; if the process is killed before the
 *  close, the temporary file, ".kett-*.tmp", may remain. A close removes such files of the same user from the
 *  target's folder when nobody has written to them for a day. The folder stays the one that was opened,
 *  wherever its path leads at the close.
 *
 *  The new file keeps the old one's permissions. A symbolic link in the target's place is replaced, never
 *  followed (on Windows refused), so that nobody who may write to the folder chooses the file that another
 *  user overwrites; links that lead to the folder, and to a file that is read, are followed. Only regular
 *  files are opened; nothing here waits for a pipe or a device. A limit on the size of files counts as a full
 *  disk, and raises no signal.
 *
 *      KT_FILE *file = KTIO_Open("/var/lib/host/store", "w");
 *      KTIO_WriteData(file, text, length);
 *      if (!KTIO_CloseFile(file))               // true: store holds the text; false: it holds what it held
 *          ...
 */
#ifndef KETT_KTIO_H
#define KETT_KTIO_H

#include <kett/KTtypes.h>

/** An open file. */
typedef struct KT_FILE KT_FILE;

/** Tells whether a file stands at a path.
 *
 *  @param path  the path; null gives false.
 *  @return      true if there is something at the path that is not a folder.
 *
 *  Threads: any, at any time.   Real time: no (system call).
 */
KT_API bool KTIO_FileExists(const char *path);

/** Opens a file.
 *
 *  @param path  the path, not null.
 *  @param mode  "r" to read, "w" to replace the content when the file is closed.
 *  @return      the file. Null, with nothing changed, when there is no such file (with "w": no such folder),
 *               what stands there is not a regular file, the caller may not read it (with "w": may not write
 *               it, or may not put a file into its folder), `mode` is neither "r" nor "w", or memory is out.
 *
 *  Threads: any; one file belongs to one thread at a time.   Real time: no (allocates, system calls).
 */
KT_API KT_FILE *KTIO_Open(const char *path, const char *mode);

/** The size of an open file.
 *
 *  @param file  an open file; null gives 0.
 *  @return      bytes; for a file being written, the bytes written so far.
 *
 *  Threads: one at a time for a file.   Real time: no (system call).
 */
KT_API int64_t KTIO_FileSize(KT_FILE *file);

/** Reads on from where the last read ended.
 *
 *  @param file    a file opened with "r"; null reads nothing.
 *  @param buffer  out: `size` bytes; those past the end of the file stay as they were. Null reads nothing.
 *  @param size    bytes to read.
 *  @return        bytes read, fewer than `size` at the end of the file or on an error; 0 from a file opened
 *                 with "w".
 *
 *  Threads: one at a time for a file.   Real time: no (system call).
 */
KT_API uint64_t KTIO_ReadData(KT_FILE *file, void *buffer, uint64_t size);

/** Appends bytes as they are.
 *
 *  @param file    a file opened with "w"; null writes nothing.
 *  @param buffer  `size` bytes; null writes nothing, which is a short write unless `size` is 0.
 *  @param size    bytes to write.
 *  @return        bytes written. After a short write the file is lost: KTIO_CloseFile() then leaves the
 *                 target as it was. 0 for a file opened with "r".
 *
 *  Threads: one at a time for a file.   Real time: no (system call).
 */
KT_API uint64_t KTIO_WriteData(KT_FILE *file, const void *buffer, uint64_t size);

/** Closes a file; for one opened with "w", makes what was written the content of its target.
 *
 *  @param file  an open file, no longer valid after the call; null does nothing and gives false.
 *  @return      true, or false when a write, the flush or the replacement failed: the target is then as it
 *               was before KTIO_Open(), and the temporary file is removed. Once the new content is in place
 *               the result is true, even if the folder itself cannot be flushed to the disk.
 *
 *  Threads: one at a time for a file.   Real time: no (system calls, frees memory).
 */
KT_API bool KTIO_CloseFile(KT_FILE *file);

#endif
