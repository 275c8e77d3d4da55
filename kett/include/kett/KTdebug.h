/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  The log: four levels that go to one sink, by default the standard error stream.
 *
 *  A message reaches the sink exactly as it was formatted, in one call, with nothing added or trimmed; a line
 *  feed is there only if the message ends in one. The default sink writes each message by one system call. A
 *  message may have any length; it is cut to 1023 characters only when memory is out. A format that printf
 *  refuses is written as it stands, and a null format writes nothing.
 *
 *  Standard error may be closed, or a pipe that nobody reads or whose reader has gone: no signal is raised,
 *  and nothing waits for ever. A full pipe holds up one message for a second; that one is lost, and those
 *  after it are lost as well, without a wait, until there is room again. A pipe takes a message above 4096
 *  bytes in several system calls.
 *
 *      static void keep(void *context, int32_t level, int32_t code, const char *text) { ... }
 *
 *      KTDEBUG_SetSink(keep, &journal);      // from here on, messages go to keep
 *      ...
 *      KTDEBUG_SetSink(NULL, NULL);          // back to stderr; keep is not running any more
 */
#ifndef KETT_KTDEBUG_H
#define KETT_KTDEBUG_H

#include <kett/KTtypes.h>

/** The levels that a sink is told. */
typedef enum {
    KTDEBUG_LEVEL_LOG = 0,     /**< plain log line */
    KTDEBUG_LEVEL_WARNING = 1, /**< warning */
    KTDEBUG_LEVEL_ERROR = 2,   /**< error: the caller goes on and returns its failure value */
    KTDEBUG_LEVEL_TERMINAL = 3 /**< error that the caller regards as fatal; the call returns all the same */
} KTDEBUG_LEVEL;

/** Receives one message. Calls are serialised, and arrive on the thread that logs.
 *  A sink must not call any KTDEBUG operation, and must return: no exception, no longjmp.
 *
 *  @param context  the pointer given to KTDEBUG_SetSink().
 *  @param level    one of ::KTDEBUG_LEVEL.
 *  @param code     the number that the logging call gave, -1 throughout liborva.
 *  @param text     the formatted message, valid during the call.
 */
typedef void (*KTDEBUG_SINK)(void *context, int32_t level, int32_t code, const char *text);

/** Sends all further messages to `sink`. When the call returns, the sink set before is not running any more
 *  and is not called again.
 *
 *  @param sink     the new sink, or null for the default, standard error.
 *  @param context  passed to every call of `sink`.
 *
 *  Threads: any, at any time, but not from within a sink.   Real time: no (takes a lock).
 */
KT_API void KTDEBUG_SetSink(KTDEBUG_SINK sink, void *context);

#if defined(__MINGW32__) && !defined(__clang__)
#define KTDEBUG_FORMAT __attribute__((format(gnu_printf, 2, 3)))
#elif defined(__GNUC__)
#define KTDEBUG_FORMAT __attribute__((format(printf, 2, 3)))
#else
#define KTDEBUG_FORMAT
#endif

/** Writes a plain log line.
 *
 *  @param code    passed to the sink.
 *  @param format  printf-style format, followed by what it asks for.
 *
 *  Threads: any, at any time, but not from within a sink.   Real time: no (formats, takes a lock, writes).
 */
KT_API void KTDEBUG_Log(int32_t code, const char *format, ...) KTDEBUG_FORMAT;

/** Writes a warning.
 *
 *  @param code    passed to the sink.
 *  @param format  printf-style format, followed by what it asks for.
 *
 *  Threads and real time: as KTDEBUG_Log().
 */
KT_API void KTDEBUG_Warning(int32_t code, const char *format, ...) KTDEBUG_FORMAT;

/** Writes an error and returns.
 *
 *  @param code    passed to the sink.
 *  @param format  printf-style format, followed by what it asks for.
 *
 *  Threads and real time: as KTDEBUG_Log().
 */
KT_API void KTDEBUG_Error(int32_t code, const char *format, ...) KTDEBUG_FORMAT;

/** Writes an error that the caller regards as fatal. It does not end the process: the call returns.
 *
 *  @param code    passed to the sink.
 *  @param format  printf-style format, followed by what it asks for.
 *
 *  Threads and real time: as KTDEBUG_Log().
 */
KT_API void KTDEBUG_TerminalError(int32_t code, const char *format, ...) KTDEBUG_FORMAT;

#endif
