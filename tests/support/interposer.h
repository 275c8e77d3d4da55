// Stands between a test program and the C library: counts what the calling thread asks of the heap, of locks,
// of files and of the log, and makes a chosen one of these calls fail.
//
//     support::begin();
//     ORVA_Filter(...);
//     EXPECT_EQ(support::end(), support::Counts{});
//
//     support::failAllocation(3);                       // the third from here on gives null
//     EXPECT_EQ(ORVA_CreateFilter("order=4"), nullptr);
//     EXPECT_TRUE(support::endFailure());               // there was a third
//
// A test that uses it carries LABELS interposer, which puts the library in front of all others. Calls that
// the C library makes inside itself count where they leave it again: fopen counts one file call and the
// allocation that it makes.
#pragma once

#include <cstdint>
#include <ostream>

namespace support
{

struct Counts {
    uint64_t heap = 0; // malloc, calloc, realloc, free and the aligned ones; new and delete end there
    uint64_t lock = 0; // mutexes, read-write locks, conditions, semaphores; also what waits: join, sleep
    uint64_t file = 0; // open .. close, their buffered counterparts, and whatever looks at or changes a path
    // KTDEBUG_Log, _Warning, _Error, _TerminalError; what happens inside them is not counted
    uint64_t log = 0;

    bool operator==(const Counts &) const = default;
};

inline std::ostream &operator<<(std::ostream &out, const Counts &counts)
{
    return out << "heap " << counts.heap << ", lock " << counts.lock << ", file " << counts.file << ", log "
               << counts.log;
}

#pragma GCC visibility push(default)

// The two marks. All that follows is about the calling thread alone.
void begin();
Counts end();

// From here on, the n-th allocation gives null (n counts from 1). One planned failure at a time: a new one
// replaces it.
void failAllocation(uint64_t n);

// From here on, an allocation gives null where it would leave less than nothing of so many bytes; what is freed is added
// to them again. Until endLimit().
void limitHeap(uint64_t bytes);
void endLimit();

// From here on, the n-th file call fails with this errno, without having done anything; a close closes all
// the same.
void failFileCall(uint64_t n, int error);

// The process is killed instead of making the n-th file call from here on.
void killAtFileCall(uint64_t n);

// Takes the planned failure back. True if it has happened.
bool endFailure();

#pragma GCC visibility pop

} // namespace support
