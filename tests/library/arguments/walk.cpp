#include "walk.h"

#include <kett/KTdebug.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cfenv>
#include <clocale>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <ucontext.h>

#ifdef __x86_64__
#include <xmmintrin.h>
#endif

namespace arguments
{

namespace
{

constexpr size_t page = 4096;
constexpr size_t roomBytes = 2 * page; // between two guard pages
constexpr size_t stackBytes = 1 << 20;
constexpr uint8_t canary = 0xA5;
constexpr int someErrno = 12345; // of no system

// What stands in rooms that are read.
enum Fill { ordinary, zeros, notANumber, infinite, subnormal, largest, anyBits, fillCount };
constexpr const char *fillNames[] = {"ordinary", "zeros", "nan", "inf", "subnormal", "largest", "any bits"};

uint64_t noise = 0x9E3779B97F4A7C15u;

uint32_t nextBits()
{
    noise ^= noise << 13;
    noise ^= noise >> 7;
    noise ^= noise << 17;
    return static_cast<uint32_t>(noise >> 32);
}

template <class Real> Real numberOf(Fill fill)
{
    using Limits = std::numeric_limits<Real>;
    const Real sign = nextBits() % 2 == 0 ? Real{1} : Real{-1};
    switch (fill) {
    case ordinary:
        return static_cast<Real>(static_cast<int32_t>(nextBits())) / static_cast<Real>(2147483648.0);
    case zeros:
        return sign * Real{0};
    case notANumber:
        return Limits::quiet_NaN();
    case infinite:
        return sign * Limits::infinity();
    case subnormal:
        return sign * Limits::denorm_min() * static_cast<Real>(nextBits() % 1000);
    case largest:
        return sign * Limits::max();
    default:
        if constexpr (sizeof(Real) == sizeof(float))
            return std::bit_cast<float>(nextBits());
        else
            return std::bit_cast<double>(uint64_t{nextBits()} << 32 | nextBits());
    }
}

template <class Value> void fillIn(Value &value, Fill fill)
{
    if constexpr (std::is_same_v<Value, ORVA_COMPLEX>)
        value = {numberOf<float>(fill), numberOf<float>(fill)};
    else if constexpr (std::is_integral_v<Value>)
        value = static_cast<Value>(fill == zeros     ? 0
                                   : fill == largest ? std::numeric_limits<Value>::min()
                                                     : nextBits());
    else
        value = numberOf<Value>(fill);
}

uint8_t *guarded(size_t bytes)
{
    void *const begin =
        mmap(nullptr, bytes + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (begin == MAP_FAILED ||
        mprotect(static_cast<uint8_t *>(begin) + page, bytes, PROT_READ | PROT_WRITE) != 0)
        throw std::bad_alloc();
    return static_cast<uint8_t *>(begin) + page;
}

// What a call leaves as it is and swapcontext would hide. The flags of floating-point exceptions are looked at apart, since
// any arithmetic raises some.
struct Surroundings {
    int rounding = std::fegetround();
    unsigned sse = 0;
    uint16_t x87 = 0;
    sigset_t blocked;
    Surroundings()
    {
#ifdef __x86_64__
        sse = _mm_getcsr() & ~static_cast<unsigned>(_MM_EXCEPT_MASK);
        __asm__("fnstcw %0" : "=m"(x87));
#endif
        sigemptyset(&blocked);
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    }

    bool operator==(const Surroundings &other) const
    {
        return rounding == other.rounding && sse == other.sse && x87 == other.x87 &&
               std::memcmp(&blocked, &other.blocked, sizeof blocked) == 0;
    }
};

void countMessage(void *context, int32_t, int32_t, const char *)
{
    ++*static_cast<int *>(context);
}

} // namespace

struct Walk::Room {
    uint8_t *begin = guarded(roomBytes);
    uint8_t *data = nullptr;
    size_t bytes = 0;
    bool isWritten = false;
    std::array<uint8_t, roomBytes> before = {};
};

struct Walk::State {
    struct Choice {
        size_t index, count;
    };

    std::vector<Choice> choices; // the odometer
    size_t chosen = 0;           // of them, in this combination
    uint64_t combination = 0;
    bool isOrdinary = true; // each number so far
    std::array<Room, 8> rooms;
    size_t roomsInUse = 0;
    int messages = 0;

    uint8_t *stack = guarded(stackBytes);
    ucontext_t test, callee;
    void (*function)(void *) = nullptr;
    void *context = nullptr;
    int raised = 0;
    int errnoAfter = 0;
    bool leavesSurroundings = true;

    // The call itself, alone on the painted stack but for the look at what surrounds it.
    static void enter(unsigned high, unsigned low)
    {
        auto &state = *std::bit_cast<State *>(uint64_t{high} << 32 | low);
        const Surroundings before;
        errno = someErrno;
        std::feclearexcept(FE_ALL_EXCEPT);
        state.function(state.context);
        state.raised = std::fetestexcept(FE_ALL_EXCEPT);
        state.errnoAfter = errno;
        state.leavesSurroundings = Surroundings() == before;
    }
};

Walk::Walk(Findings &shared) : findings(shared), state(std::make_unique<State>())
{
    run([](void *) {}, nullptr); // so that the loader has bound what the walk itself calls
    findings = {};
    std::memset(state->stack, canary, stackBytes);
    KTDEBUG_SetSink(countMessage, &state->messages);
}

Walk::~Walk()
{
    KTDEBUG_SetSink(nullptr, nullptr);
    const uint8_t *const touched =
        std::find_if(state->stack, state->stack + stackBytes, [](uint8_t byte) { return byte != canary; });
    findings.stack = static_cast<size_t>(state->stack + stackBytes - touched);
}

bool Walk::next()
{
    auto &choices = state->choices;
    if (findings.failure[0] != '\0')
        return false;
    if (state->combination > 0) {
        while (!choices.empty() && choices.back().index + 1 == choices.back().count)
            choices.pop_back();
        if (choices.empty())
            return false;
        ++choices.back().index;
    }
    ++state->combination;
    state->chosen = 0;
    state->isOrdinary = true;
    state->roomsInUse = 0;
    findings.arguments[0] = '\0';
    return true;
}

size_t Walk::choose(size_t count)
{
    if (state->chosen == state->choices.size())
        state->choices.push_back({0, count});
    return state->choices[state->chosen++].index;
}

void Walk::note(const char *word)
{
    const size_t length = std::strlen(findings.arguments);
    std::snprintf(findings.arguments + length, sizeof findings.arguments - length, "%s%.60s",
                  length == 0 ? "" : ", ", word == nullptr ? "null" : word);
}

void Walk::note(int64_t value)
{
    note(std::to_string(value).c_str());
}

void Walk::note(double value)
{
    state->isOrdinary =
        state->isOrdinary && std::fabs(value) < 1e9 && (value == 0.0 || std::fabs(value) > 1e-9);
    char digits[40];
    std::snprintf(digits, sizeof digits, "%g", value);
    note(digits);
}

// By turns its end and its beginning stand at a guard page.
Walk::Room *Walk::place(size_t bytes, size_t alignment)
{
    if (state->roomsInUse == state->rooms.size() || bytes > roomBytes)
        throw std::length_error("the walk has no such room");
    Room &r = state->rooms[state->roomsInUse++];
    std::memset(r.begin, canary, roomBytes);
    const size_t last = (roomBytes - bytes) / alignment * alignment;
    r.data = r.begin + (state->combination % 2 == 0 ? last : 0);
    r.bytes = bytes;
    return &r;
}

template <class Value> Value *Walk::room(size_t count, Use use, bool isRead, bool isWritten)
{
    const size_t fills = isRead ? size_t{fillCount} : 1;
    const size_t chosenFill = choose(fills + (use == any || use == aligned ? 1 : 0));
    if (chosenFill == fills) {
        note("null");
        return nullptr;
    }
    Room *const r =
        place(count * sizeof(Value), use == aligned || use == alignedNeverNull ? 16 : alignof(Value));
    r->isWritten = isWritten;
    auto *const data = reinterpret_cast<Value *>(r->data);
    if (isRead) {
        const auto fill = static_cast<Fill>(chosenFill);
        note(fillNames[fill]);
        state->isOrdinary = state->isOrdinary && (fill == ordinary || fill == zeros);
        for (size_t i = 0; i < count; ++i)
            fillIn(data[i], fill);
    } else {
        note("room");
    }
    std::memcpy(r->before.data(), r->begin, roomBytes);
    return data;
}

template <class Value> const Value *Walk::in(size_t count, Use use)
{
    return room<Value>(count, use, true, false);
}

template <class Value> Value *Walk::out(size_t count, Use use)
{
    return room<Value>(count, use, false, true);
}

template <class Value> Value *Walk::inOut(size_t count, Use use)
{
    return room<Value>(count, use, true, true);
}

template const float *Walk::in(size_t, Use);
template const double *Walk::in(size_t, Use);
template const int16_t *Walk::in(size_t, Use);
template const ORVA_COMPLEX *Walk::in(size_t, Use);
template float *Walk::out(size_t, Use);
template int16_t *Walk::out(size_t, Use);
template int32_t *Walk::out(size_t, Use);
template ORVA_COMPLEX *Walk::out(size_t, Use);
template float *Walk::inOut(size_t, Use);
template ORVA_COMPLEX *Walk::inOut(size_t, Use);

bool Walk::isUntouched(const void *data) const
{
    return std::none_of(state->rooms.begin(),
                        state->rooms.begin() + static_cast<std::ptrdiff_t>(state->roomsInUse),
                        [&](const Room &r) {
                            return r.data == data && std::memcmp(r.begin, r.before.data(), roomBytes) != 0;
                        });
}

void Walk::run(void (*function)(void *), void *context)
{
    state->function = function;
    state->context = context;
    state->messages = 0;
    const char *const locale = std::setlocale(LC_ALL, nullptr);
    const locale_t ofThread = uselocale(nullptr);
    getcontext(&state->callee);
    state->callee.uc_stack.ss_sp = state->stack;
    state->callee.uc_stack.ss_size = stackBytes;
    state->callee.uc_link = &state->test;
    const auto address = std::bit_cast<uint64_t>(state.get());
    makecontext(&state->callee, std::bit_cast<void (*)()>(&State::enter), 2,
                static_cast<unsigned>(address >> 32), static_cast<unsigned>(address));
    swapcontext(&state->test, &state->callee);

    ++findings.calls;
    expect(state->leavesSurroundings, "rounding, and the masks of exceptions and signals, stay");
    expect(std::setlocale(LC_ALL, nullptr) == locale && uselocale(nullptr) == ofThread, "the locale stays");
    expect(state->errnoAfter != 0, "errno is never set to 0");
    findings.setsErrno = findings.setsErrno || state->errnoAfter != someErrno;
    if (state->isOrdinary)
        findings.raised |= state->raised;
    for (size_t i = 0; i < state->roomsInUse; ++i) {
        const Room &r = state->rooms[i];
        const auto from = static_cast<size_t>(r.data - r.begin);
        const size_t to = from + r.bytes;
        expect(std::memcmp(r.begin, r.before.data(), from) == 0 &&
                   std::memcmp(r.begin + to, r.before.data() + to, roomBytes - to) == 0,
               "nothing outside a room is written");
        expect(r.isWritten || std::memcmp(r.data, r.before.data() + from, r.bytes) == 0,
               "what is read stays");
    }
}

void Walk::expect(bool holds, const char *what)
{
    if (!holds && findings.failure[0] == '\0')
        std::snprintf(findings.failure, sizeof findings.failure, "%s, with %.150s", what, findings.arguments);
}

int Walk::messages() const
{
    return state->messages;
}

} // namespace arguments
