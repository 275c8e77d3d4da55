// The prototype h of a polyphase filter in the order in which consecutive outputs take it.
//
// Output n lies at the time n M / L in samples of input. Its newest sample is i = floor(n M / L), its phase p = n M - i L:
//
//     y[n] = sum over j = 0 .. taps - 1 of h[p + j L] x[i - j]
//
// A row of the bank belongs to a sample; in it stand side by side the coefficients with which consecutive outputs take that
// sample, 0 outside of h. So a row times a sample is a product of several outputs. There are two ways to store rows.
//
// In groups: for each eight outputs of a period of L, their rows one after the other, from the newest sample of the last
// output on. Every group is as long as the longest. The last group of a period ends with it and may share outputs with the
// one before.
//
//     group of outputs 0 .. 7:    row 0   0     0     0    ...  0     h[p]         the newest sample of output 7
//                                 row 1   0     0     h[p] ...  h[p]  h[p + L]     the next older
//                                 ...
//                                 last    h[..] 0     0    ...  0     0
//     group of outputs 8 .. 15:   row 0   ...
//
// In rows, where groups would take more than twice the memory of the coefficients, as with few phases: for each of the M
// samples of a period one row for all outputs. With i = u M - s, 0 <= s < M, the coefficient of output n and sample i is
//
//     H(s, n - u L),   H(s, c) = h[c M + s L]
//
//     row 0      0 0 0  h[0]   h[M]     h[2M]  ...  0 0 0
//     row 1      0 0 0  h[L']  h[M+L']  ...         0 0 0      the next older sample; begins floor(L / M) columns
//     ...                                                      to the left, or one more
//     row M - 1                                                L' = L mod M
//     row 0 again, L columns to the right
//
// The zeros between rows are as many as eight consecutive outputs reach out of h. A single row, M = 1, does not come
// round: each older sample is L columns to the right.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orva
{

constexpr int32_t groupLanes = 8; // outputs

struct PolyphaseBank {
    const double *coefs; // of the first group; or H(0, 0)
    int64_t pitch;       // from a row to the next
    int64_t groupSize;   // from a group to the next; 0 if the bank is in rows
    int32_t rows;        // after which the first comes again; the greatest integer if that never happens
    int32_t groupRows;   // samples that a group takes
    int32_t round;       // outputs after which groups come again: L, or, in rows, also a multiple of eight
    int32_t up;          // L
    int32_t down;        // M
    int32_t taps;
    bool isWide; // whether zeros for groups are there at all; they would be too many for short filters
};

namespace
{

// A coefficient, and the rows from its own to the last.
struct BankPlace {
    const double *coefs;
    int32_t rowsLeft;
};

inline int64_t newestSample(const PolyphaseBank &bank, int64_t output)
{
    return output * bank.down / bank.up;
}

inline int32_t groupCount(const PolyphaseBank &bank)
{
    return (bank.round + groupLanes - 1) / groupLanes;
}

// The first output of a group, counted from the beginning of the round.
inline int32_t groupStart(const PolyphaseBank &bank, int32_t group)
{
    const int32_t start = group * groupLanes;
    return start + groupLanes <= bank.round ? start : bank.round - groupLanes;
}

// Of the output and the sample, in a bank in rows.
inline BankPlace placeInRows(const PolyphaseBank &bank, int64_t output, int64_t sample)
{
    const int64_t period = (sample + bank.down - 1) / bank.down;
    const int64_t row = period * bank.down - sample;
    return {bank.coefs + row * bank.pitch + (output - period * bank.up),
            static_cast<int32_t>(bank.rows - row)};
}

// Of the output and its newest sample.
inline BankPlace placeOf(const PolyphaseBank &bank, int64_t output)
{
    const int64_t newest = newestSample(bank, output);
    if (bank.groupSize == 0)
        return placeInRows(bank, output, newest);
    const auto inRound = static_cast<int32_t>(output % bank.round);
    const int32_t last = groupCount(bank) - 1;
    const int32_t group = inRound / groupLanes < last ? inRound / groupLanes : last;
    const int32_t lane = inRound - groupStart(bank, group);
    const int64_t row = newestSample(bank, output - lane + groupLanes - 1) - newest;
    return {bank.coefs + group * bank.groupSize + row * bank.pitch + lane, bank.rows};
}

inline void goToOlderSample(const PolyphaseBank &bank, BankPlace &place)
{
    place.coefs += bank.pitch;
    if (--place.rowsLeft == 0) {
        place.coefs += bank.up - bank.rows * bank.pitch;
        place.rowsLeft = bank.rows;
    }
}

} // namespace

} // namespace orva
