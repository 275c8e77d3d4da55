/* Checked reading of a configuration string such as "window=Hanning; size=1024; hop=256". The library itself
   gives a default for whatever it cannot read; a program for people says what is wrong. */
#ifndef PROGRAMS_OPTIONS_H
#define PROGRAMS_OPTIONS_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

typedef enum { integerOption, realOption, textOption, windowOption, vectorOption, matrixOption } OptionKind;

/* One key. The value holds the default and is written only if the key is given; null where the value is only
   looked at, as a text, a vector and a matrix always are. */
typedef struct {
    const char *key;
    OptionKind kind;
    void *value;         /* int32_t for an integer and for a window's type, float for a real; for a text, the
                            words that it may be with blanks between, not written, or null for any text */
    double least, most;  /* the range of a number, both included */
    const char *meaning; /* for the message: "a whole number from 2 to 1048576" */
} Option;

/* Reads the string, null for an empty one, by a table of the keys that it may hold. Refuses a key that is not
   in the table, text that is no key=value pair, and a value that is not what its key asks for. */
bool optionsRead(const char *config, const Option *options, size_t count);

/* The whole number from 1 to `most` that an argument is, or 0 where it is none. */
int32_t optionsNumber(const char *argument, int32_t most);

#endif
