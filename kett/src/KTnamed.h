// A list of records that are found by name. A record starts with
//     Record *next; char *name;
// and is zero otherwise when it enters the list.
#pragma once

#include "KTtext.h"

#include <cstdlib>
#include <string_view>

namespace kett
{

template <class Record> class NamedList
{
public:
    // The record of that name, or null.
    Record *find(std::string_view name) const
    {
        Record *record = first;
        while (record != nullptr && name != record->name)
            record = record->next;
        return record;
    }

    // The record of that name, new if there was none; null when memory is out.
    Record *findOrAdd(std::string_view name)
    {
        Record *record = find(name);
        if (record != nullptr)
            return record;
        record = static_cast<Record *>(std::calloc(1, sizeof(Record)));
        char *copy = copied(name);
        if (record == nullptr || copy == nullptr) {
            std::free(record);
            std::free(copy);
            return nullptr;
        }
        record->name = copy;
        record->next = first;
        return first = record;
    }

    // Frees the record itself; what it points to besides its name is the caller's.
    void remove(Record *record)
    {
        Record **link = &first;
        while (*link != record)
            link = &(*link)->next;
        *link = record->next;
        std::free(record->name);
        std::free(record);
    }

    Record *first = nullptr;
};

} // namespace kett
