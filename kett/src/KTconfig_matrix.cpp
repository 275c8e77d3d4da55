#include "KTconfig_matrix.h"

#include "KTnumber.h"
#include "KTtext.h"

namespace kett
{

namespace
{

struct Reader {
    const char *at;
    double *output;
    int32_t room;
    int32_t stored;
    int32_t rows;
    int32_t columns;
};

bool isNumberCharacter(char c)
{
    return isWordCharacter(c) && c != ']';
}

// Takes `mark` and the blanks around it; without the mark only the blanks before it are gone.
bool takeMark(Reader &reader, char mark)
{
    take(reader.at, isBlank);
    if (*reader.at != mark)
        return false;
    ++reader.at;
    take(reader.at, isBlank);
    return true;
}

bool takeNumber(Reader &reader)
{
    double number = 0.0;
    if (!parseDouble(take(reader.at, isNumberCharacter), number))
        return false;
    if (reader.stored < reader.room)
        reader.output[reader.stored++] = number;
    return true;
}

// After a number: true where the next one of its row has to follow.
bool takeGap(Reader &reader)
{
    return takeMark(reader, ',') || (*reader.at != ';' && *reader.at != ']');
}

// row := number { gap number }, as long as the rows before it.
bool takeRow(Reader &reader)
{
    int32_t columns = 0;
    do {
        if (columns == INT32_MAX || !takeNumber(reader))
            return false;
        ++columns;
    } while (takeGap(reader));
    if (reader.rows == INT32_MAX || (reader.rows > 0 && columns != reader.columns))
        return false;
    reader.columns = columns;
    ++reader.rows;
    return true;
}

// row { ';' row } [ ';' ] ']'
bool takeFlatRows(Reader &reader)
{
    while (takeRow(reader)) {
        takeMark(reader, ';'); // a row ends at one or at the bracket
        if (*reader.at == ']')
            return true;
    }
    return false;
}

// '[' row ']' { [ ',' ] '[' row ']' } ']'
bool takeNestedRows(Reader &reader)
{
    while (takeMark(reader, '[') && takeRow(reader) && takeMark(reader, ']')) {
        const bool more = takeMark(reader, ',');
        if (*reader.at == ']')
            return !more;
    }
    return false;
}

bool takeMatrix(const ConfigPair &pair, Reader &reader)
{
    reader.at = pair.value.data();
    if (pair.kind == ValueKind::bracketed) {
        takeMark(reader, '[');
        return *reader.at == '[' ? takeNestedRows(reader) : takeFlatRows(reader);
    }
    reader.rows = reader.columns = 1;
    return pair.kind == ValueKind::word && takeNumber(reader) &&
           reader.at == pair.value.data() + pair.value.size();
}

} // namespace

bool measureMatrix(const ConfigPair &pair, int32_t &rows, int32_t &columns)
{
    Reader reader = {};
    if (!takeMatrix(pair, reader))
        return false;
    rows = reader.rows;
    columns = reader.columns;
    return true;
}

int32_t storeMatrix(const ConfigPair &pair, double *output, int32_t room)
{
    Reader reader = {};
    reader.output = output;
    reader.room = room;
    takeMatrix(pair, reader);
    return reader.stored;
}

} // namespace kett
