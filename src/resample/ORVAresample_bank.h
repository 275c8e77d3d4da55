// The prototype h of a polyphase filter in the order in which consecutive outputs take it.
//
// Output n lies at the time n M / L in samples of input, and takes sample i with the coefficient h[n M - i L]:
//
//     y[n] = sum over i = floor(n M / L), and on to older ones, of h[n M - i L] x[i]
//
// With i = u M - s, 0 <= s < M, that coefficient is element (s, n - u L) of the bank:
//
//     H(s, c) = h[c M + s L],  0 outside of h
//
// So a row belongs to one sample, and what that sample gives to consecutive outputs stands side by side:
//
//     origin          columns: outputs ->
//     v
//     row 0      0 0 0 h[0]  h[M]   h[2M]   ...  0 0 0
//     row 1      0 0 0 h[L']  h[M+L']  ...       0 0 0      the next older sample,
//     ...                                                   its first column floor(s L / M) to the left
//     row M - 1
//     row 0 again, L columns to the right
//
// Between rows stand as many zeros as a group of `lanes` consecutive outputs reaches out of h, whatever its first output.
// A single row, with M = 1, does not come round: each older sample is L columns to the right.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orva
{

struct PolyphaseBank {
    const double *origin; // of H(0, 0)
    int64_t pitch;        // from a row to the next
    int32_t rows;         // M, after which the first comes again; the greatest integer if that never happens
    int32_t up;           // L
    int32_t down;         // M
    int32_t taps;         // products in a sum
    int32_t lanes;        // most outputs of a group: 16, 8, or 1 where zeros would take too much memory
};

namespace
{

// The element of the bank for an output and a sample, and the rows from there to the last.
struct BankPlace {
    const double *coefs;
    int32_t rowsLeft;
};

inline BankPlace placeOf(const PolyphaseBank &bank, int64_t output, int64_t sample)
{
    const int64_t period = (sample + bank.down - 1) / bank.down;
    const int64_t row = period * bank.down - sample;
    return {bank.origin + row * bank.pitch + (output - period * bank.up),
            static_cast<int32_t>(bank.rows - row)};
}

} // namespace

} // namespace orva
