/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Configuration strings, and two operations on plain text.
 *
 *  A configuration string is one text of named values, as in
 *
 *      "type=bandpass; order=4; fpass1=300; fpass2=3400; fs=8000"
 *      "biquads=[-0.94, 0.33, 0.1, 0.2, 0.1; -1.1 0.4 0.2 0.4 0.2], nc=2"
 *
 *  and it is read key by key:
 *
 *      char type[64];
 *      KTSTRING_GetStringValueFromString(config, "type", "lowpass", type, sizeof type);
 *      int32_t order = KTSTRING_GetIntegerValueFromString(config, "order", -1);
 *      int32_t rows, columns;
 *      if (KTSTRING_GetMatrixSizeFromString(config, "biquads", &rows, &columns) != 0) {
 *          double *biquads = calloc((size_t)rows * (size_t)columns, sizeof *biquads);
 *          KTSTRING_GetDoubleMatrixValuesFromString(config, "biquads", biquads, rows, columns);
 *      }
 *
 *  Its grammar:
 *
 *      config := [ pair { sep pair } ]      sep := ';' | ',' | white space, any run of them
 *      pair   := key '=' value              blanks around '=' are allowed; of equal keys the last holds
 *      value  := word | '"' text '"' | '[' row { ';' row } ']' | '[' '[' row ']' { [','] '[' row ']' } ']'
 *      row    := number { gap number }      gap := white space with at most one ',' in it, or one ','
 *
 *  White space is the six ASCII blanks. It is allowed after '[' and around ']', ';' and ','; a last row may
 *  be followed by ';'. A key is a run of characters other than white space and ; , = " [ ] and is
 *  case-sensitive. The value begins after '=' and the blanks that follow it; where a separator or the end of
 *  the text stands there instead, there is no pair ("type=; order=4" has no type).
 *
 *  A word runs to the next white space, ';' or ',', and '=' may stand in it. Quotes have no escapes; quoted
 *  text may be empty or hold separators, is never a vector, and is a number or a boolean when that is all it
 *  holds. A bracket runs to the one that closes it, whatever stands between them; '[]' is a text, but not a
 *  vector.
 *
 *  Quotes and brackets open only where a value begins. One that is never closed makes no pair and ends the
 *  reading; one that is closed makes no pair when anything but a separator directly follows it. What does not
 *  make a pair is skipped up to the next separator. Of equal keys the last pair holds, even when its value is
 *  not of the asked type.
 *
 *  A number is decimal, with an optional sign and in every locale the point as decimal sign, and takes up its
 *  whole word: "5." and ".5" are numbers; hexadecimal, infinity and not-a-number are not. What does not parse
 *  as the asked type, or is out of its range, counts as absent and gives the default.
 *
 *  In every operation a null configuration is an empty one. All are pure functions of their arguments: any
 *  thread, at any time, real time: yes (no heap, lock, log or system call; time grows with the length of the
 *  text).
 */
#ifndef KETT_KTSTRING_H
#define KETT_KTSTRING_H

#include <kett/KTtypes.h>

/** Looks up a value as text. A bracketed value gives its text, brackets included; a quoted one what stands
 *  inside.
 *
 *  @param config        the configuration string.
 *  @param key           the key; null is absent.
 *  @param defaultValue  written when the key is absent; may be null, and may stand in `output`.
 *  @param output        out: the text, cut to `size` - 1 characters and terminated; may be null.
 *  @param size          room in bytes.
 *  @return              1; 0 when the key is absent and `defaultValue` null, or when `output` is null or
 *                       `size` not above 0; nothing is then written.
 */
KT_API int32_t KTSTRING_GetStringValueFromString(const char *config, const char *key,
                                                 const char *defaultValue, char *output, int32_t size);

/** Looks up an integer. A number with a fraction or an exponent is cut toward zero.
 *
 *  @param config        the configuration string.
 *  @param key           the key; null is absent.
 *  @param defaultValue  the result when there is no such number.
 *  @return              the value.
 */
KT_API int32_t KTSTRING_GetIntegerValueFromString(const char *config, const char *key, int32_t defaultValue);

/** Looks up a float, rounded once from the text; too small gives zero with its sign.
 *
 *  @param config        the configuration string.
 *  @param key           the key; null is absent.
 *  @param defaultValue  the result when there is no such number.
 *  @return              the value.
 */
KT_API float KTSTRING_GetFloatValueFromString(const char *config, const char *key, float defaultValue);

/** Looks up a boolean: 1/0, true/false, yes/no, on/off in any case; any other integer but 0 is true.
 *  A fraction is cut first, so that 0.5 is false.
 *
 *  @param config        the configuration string.
 *  @param key           the key; null is absent.
 *  @param defaultValue  the result when there is no such boolean.
 *  @return              the value.
 */
KT_API bool KTSTRING_GetBooleanValueFromString(const char *config, const char *key, bool defaultValue);

/** The number of elements of a vector: one row in brackets, or a bare number, which is a vector of one.
 *
 *  @param config  the configuration string.
 *  @param key     the key; null is absent.
 *  @param size    out: the number of elements; untouched on refusal; may be null.
 *  @return        1, or 0 when the key holds no vector.
 */
KT_API int32_t KTSTRING_GetVectorSizeFromString(const char *config, const char *key, int32_t *size);

/** Reads the elements of a vector in order, each rounded once from the text. With an element that is not a
 *  number or is too large, the key holds no vector.
 *
 *  @param config    the configuration string.
 *  @param key       the key; null is absent.
 *  @param output    out: the elements, as many as there are and fit; nothing else is written; may be null.
 *  @param capacity  room in doubles.
 *  @return          the number of elements written; 0 when the key holds no vector, `output` is null or
 *                   `capacity` is not above 0.
 */
KT_API int32_t KTSTRING_GetDoubleVectorValuesFromString(const char *config, const char *key, double *output,
                                                        int32_t capacity);

/** The size of a matrix: rows of equal length in brackets; a vector is a matrix of one row.
 *
 *  @param config   the configuration string.
 *  @param key      the key; null is absent.
 *  @param rows     out: the number of rows; untouched on refusal; may be null.
 *  @param columns  out: the length of each row; untouched on refusal; may be null.
 *  @return         1, or 0 when the key holds no matrix.
 */
KT_API int32_t KTSTRING_GetMatrixSizeFromString(const char *config, const char *key, int32_t *rows,
                                                int32_t *columns);

/** Reads the elements of a matrix row by row, one after the other without a break, also where `columns` is
 *  not the length of its rows.
 *
 *  @param config   the configuration string.
 *  @param key      the key; null is absent.
 *  @param output   out: the elements, as many as there are and fit in `rows` times `columns`; nothing else is
 *                  written; may be null.
 *  @param rows     room: rows.
 *  @param columns  room: columns.
 *  @return         the number of elements written; 0 when the key holds no matrix, `output` is null, or
 *                  `rows` or `columns` is not above 0.
 */
KT_API int32_t KTSTRING_GetDoubleMatrixValuesFromString(const char *config, const char *key, double *output,
                                                        int32_t rows, int32_t columns);

/** Turns A-Z to a-z in place; every other byte stays.
 *
 *  @param text   null-terminated text; null does nothing.
 *  @param flags  not used.
 */
KT_API void KTSTRING_Strlwr(char *text, int32_t flags);

/** Compares two texts without regard to the case of A-Z. The terminating null takes part, so a text differs
 *  from its own beginning when the count reaches that far.
 *
 *  @param first   a text; a null pointer counts as an empty text.
 *  @param second  another.
 *  @param count   characters to compare at most; 0 or less compares none.
 *  @return        0 if equal, below 0 if `first` comes first, above 0 if `second` does.
 */
KT_API int32_t KTSTRING_CompareInsensitiveN(const char *first, const char *second, int64_t count);

#endif
