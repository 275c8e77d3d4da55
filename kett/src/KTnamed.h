// A table of records that are found by name, in a time that does not grow with their number. A record starts with
//     Record *next; char *name;
// and is zero otherwise when it enters the table.
#pragma once

#include "KTtext.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace kett
{

template <class Record> class NamedTable
{
public:
    // The record of that name, or null.
    Record *find(std::string_view name) const
    {
        return chainCount > 0 ? *linkTo(name) : nullptr;
    }

    // The record of that name, new if there was none; null when memory is out.
    Record *findOrAdd(std::string_view name)
    {
        Record *record = find(name);
        if (record != nullptr)
            return record;
        record = static_cast<Record *>(std::calloc(1, sizeof(Record)));
        char *copy = copied(name);
        if (record == nullptr || copy == nullptr || !hasChains()) {
            std::free(record);
            std::free(copy);
            return nullptr;
        }
        record->name = copy;
        ++count;
        return *linkTo(name) = record;
    }

    // Frees the record itself; what it points to besides its name is the caller's.
    void remove(Record *record)
    {
        *linkTo(record->name) = record->next;
        --count;
        discard(record);
    }

    // Removes all, each after `release` has freed what it points to.
    template <class Release> void removeAll(Release release)
    {
        for (size_t i = 0; i < chainCount; ++i) {
            while (Record *record = chains[i]) {
                chains[i] = record->next;
                release(*record);
                discard(record);
            }
        }
        std::free(chains);
        chains = nullptr;
        chainCount = count = 0;
    }

private:
    static void discard(Record *record)
    {
        std::free(record->name);
        std::free(record);
    }

    // FNV-1a
    static size_t hashOf(std::string_view name)
    {
        uint64_t hash = 0xcbf29ce484222325;
        for (const char c : name)
            hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
        return static_cast<size_t>(hash ^ hash >> 32);
    }

    // What points to the record of that name, or to the null at the end of its chain.
    Record **linkTo(std::string_view name) const
    {
        Record **link = &chains[hashOf(name) % chainCount];
        while (*link != nullptr && name != (*link)->name)
            link = &(*link)->next;
        return link;
    }

    // Doubles the chains where there are as many records; without memory for that the chains grow longer instead. False
    // where there are none at all.
    bool hasChains()
    {
        if (count < chainCount)
            return true;
        const size_t newCount = chainCount > 0 ? 2 * chainCount : 8;
        auto **grown = static_cast<Record **>(std::calloc(newCount, sizeof(Record *)));
        if (grown == nullptr)
            return chainCount > 0;
        for (size_t i = 0; i < chainCount; ++i) {
            while (Record *record = chains[i]) {
                chains[i] = record->next;
                Record *&head = grown[hashOf(record->name) % newCount];
                record->next = head;
                head = record;
            }
        }
        std::free(chains);
        chains = grown;
        chainCount = newCount;
        return true;
    }

    Record **chains = nullptr;
    size_t chainCount = 0;
    size_t count = 0;
};

} // namespace kett
