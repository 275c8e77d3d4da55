// Calls one function with every combination of the arguments that its row names.
//
// A row is straight code that picks its arguments one by one. It is run again and again, until each pick has had all of its
// values in all combinations. What it hands to the function stands in rooms between guard pages, canaries around it.
//
//     {"ORVA_CreateWindow", [](Walk &walk) {
//          const int32_t type = walk.pick({-1, 0, 10, 11});
//          const uint32_t length = walk.pick({0u, 1u, 64u});
//          float *const window = walk.out<float>(length);         // null, or so many floats
//          const bool done = walk.call([&] { return ORVA_CreateWindow(type, window, length); });
//          walk.expect(done == (window != nullptr && type >= 0 && type <= 10), "the result");
//      }},
#pragma once

#include <orva/ORVAtypes.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>

namespace arguments
{

// What a function has done in all of its calls; shared by the child that makes them and the test.
struct Findings {
    uint64_t calls;
    size_t stack;         // the most bytes of stack in a call
    bool setsErrno;       // in one call at least
    int raised;           // floating-point exceptions in calls whose numbers are all ordinary
    char arguments[1000]; // of the call that is under way
    char failure[200];    // the first expectation that did not hold; empty if all did
};

class Walk
{
public:
    explicit Walk(Findings &shared);
    ~Walk();

    Walk(const Walk &) = delete;
    Walk &operator=(const Walk &) = delete;

    // The next combination; false where all have been, or an expectation did not hold.
    bool next();

    // One of the values.
    template <class Value> Value pick(std::initializer_list<Value> values)
    {
        const Value value = values.begin()[choose(values.size())];
        note(value);
        return value;
    }

    // The extremes, and what lies around 0 and 1.
    int32_t integer()
    {
        return pick({INT32_MIN, -65536, -2, -1, 0, 1, 2, 3, 255, 65536, INT32_MAX - 1, INT32_MAX});
    }

    template <class Real> Real real()
    {
        using Limits = std::numeric_limits<Real>;
        return pick({Real{0.5}, Real{0}, Real{-0.0}, Real{1}, Real{-1}, Limits::quiet_NaN(),
                     Limits::infinity(), -Limits::infinity(), Limits::denorm_min(), Limits::max(),
                     Limits::lowest()});
    }

    // Null, or room for so many values: with all kinds of numbers in it, which the call has to leave as they are; for the
    // call to write; or both. In `use`, what a function asks for beyond the type.
    enum Use { any, neverNull, aligned, alignedNeverNull }; // aligned to 16 bytes
    template <class Value> const Value *in(size_t count, Use use = any);
    template <class Value> Value *out(size_t count, Use use = any);
    template <class Value> Value *inOut(size_t count, Use use = any);

    // Whether a room, or none where it is null, has the bytes of before the call.
    bool isUntouched(const void *data) const;

    // Makes the call on a stack of its own, and looks at what no call may change.
    template <class Function> auto call(Function &&function)
    {
        using Callee = std::remove_reference_t<Function>;
        using Result = std::invoke_result_t<Function>;
        if constexpr (std::is_void_v<Result>) {
            run([](void *context) { (*static_cast<Callee *>(context))(); }, &function);
        } else {
            std::pair<Callee *, Result> both = {&function, Result{}};
            run(
                [](void *context) {
                    auto &[callee, result] = *static_cast<decltype(both) *>(context);
                    result = (*callee)();
                },
                &both);
            return both.second;
        }
    }

    void expect(bool holds, const char *what);

    // The messages that the last call has logged.
    int messages() const;

private:
    struct Room;
    struct State;

    size_t choose(size_t count);
    void note(const char *word);
    void note(int64_t value);
    void note(double value);
    void note(uint32_t value)
    {
        note(int64_t{value});
    }
    void note(int32_t value)
    {
        note(int64_t{value});
    }
    void note(bool value)
    {
        note(value ? "true" : "false");
    }
    void note(float value)
    {
        note(double{value});
    }

    Room *place(size_t bytes, size_t alignment);
    template <class Value> Value *room(size_t count, Use use, bool isRead, bool isWritten);
    void run(void (*function)(void *), void *context);

    Findings &findings;
    const std::unique_ptr<State> state;
};

struct Row {
    const char *name;
    void (*run)(Walk &);
};

// The rows of some families, an array that ends with a null name.
extern const Row core[], windows[], transforms[], filters[], streams[], measures[];

} // namespace arguments
