/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Settings: named values that live in memory as long as libkett is loaded.
 *
 *  A setting is asked for by one text: the key, an equals sign and a default, with or without brackets:
 *
 *      int64_t longest = KTSETTINGS_GetIntEx(NULL, "orva.fftw.max_plan_len=[4096]");
 *
 *  The answer is the first of these that parses: the stored value; else a default set by
 *  KTSETTINGS_SetDefaultEx(); else the default in the text, which is not stored. Blanks around a key or a
 *  value do not count. A value that does not parse as the asked type counts as absent, and so does a number
 *  out of range. Integers are decimal; a fraction or exponent is allowed, and what stands after the point is
 *  cut off. Booleans are 1/0, true/false, yes/no or on/off in any case, and any other integer but 0 is true.
 *  Keys are case-sensitive. The operations that set a value format it in the C locale, with the point as
 *  decimal sign.
 *
 *      KTSETTINGS_SetEx(NULL, "orva.fftw.max_plan_len=%d", 1024);
 *
 *  Threads: any, at any time.   Real time: no (all take a lock).
 */
#ifndef KETT_KTSETTINGS_H
#define KETT_KTSETTINGS_H

#include <kett/KTtypes.h>

/** A settings store. There is one, the global store, and null stands for it;
 *  the argument is not looked at. */
typedef struct KT_SETTINGS KT_SETTINGS;

#if defined(__MINGW32__) && !defined(__clang__)
#define KTSETTINGS_FORMAT __attribute__((format(gnu_printf, 2, 3)))
#elif defined(__GNUC__)
#define KTSETTINGS_FORMAT __attribute__((format(printf, 2, 3)))
#else
#define KTSETTINGS_FORMAT
#endif

/** Reads a boolean setting.
 *
 *  @param settings        null, the global store.
 *  @param keyWithDefault  "key=[default]" or "key=default".
 *  @return                the value; false when none parses.
 */
KT_API bool KTSETTINGS_GetBoolEx(KT_SETTINGS *settings, const char *keyWithDefault);

/** Reads an integer setting.
 *
 *  @param settings        null, the global store.
 *  @param keyWithDefault  "key=[default]" or "key=default".
 *  @return                the value, all 64 bits; 0 when none parses.
 */
KT_API int64_t KTSETTINGS_GetIntEx(KT_SETTINGS *settings, const char *keyWithDefault);

/** Sets a key's default, which takes precedence over the one in a getter's text.
 *
 *  @param settings  null, the global store.
 *  @param format    printf-style "key=value", followed by what it asks for.
 *  @return          true. False, with nothing changed, when `format` is null or printf refuses it, the text
 *                   has no key or no value, or memory is out.
 */
KT_API bool KTSETTINGS_SetDefaultEx(KT_SETTINGS *settings, const char *format, ...) KTSETTINGS_FORMAT;

/** Stores a value, which takes precedence over every default.
 *
 *  @param settings  null, the global store.
 *  @param format    printf-style "key=value", followed by what it asks for.
 *  @return          true. False, with nothing changed, when `format` is null or printf refuses it, the text
 *                   has no key or no value, or memory is out.
 */
KT_API bool KTSETTINGS_SetEx(KT_SETTINGS *settings, const char *format, ...) KTSETTINGS_FORMAT;

/** Takes a stored value away; defaults stay.
 *
 *  @param settings  null, the global store.
 *  @param key       the key; null is absent.
 *  @return          true if a value was stored.
 */
KT_API bool KTSETTINGS_UnsetEx(KT_SETTINGS *settings, const char *key);

#endif
