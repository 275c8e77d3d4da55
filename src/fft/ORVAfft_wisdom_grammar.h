// The text form of FFTW's wisdom.
#pragma once

#include <span>

namespace orva
{

// Tells whether a text begins with a wisdom in exactly the form in which FFTW 3.3 writes it:
//
//     wisdom := "(fftw-" version " fftwf_wisdom" sum line-feed { entry } ")"
//     entry  := "  (" solver " " number " " flags " " flags " " time sum ")" line-feed
//     sum    := 4 times (" #x" and 8 hexadecimal digits)
//     flags  := "#x" hexadecimal number of 20 bits    (of an entry, the first are a subset of the second)
//     time   := "#x" hexadecimal number of 9 bits     (0, but for the solver "TIMEOUT" of number 0)
//
// What follows the closing parenthesis is not looked at; nor does FFTW read it.
//
// FFTW's own reader stores flags and time in fields of these widths and aborts the process when a number does
// not fit; longer numbers overflow in it. So nothing but what fits here may reach it. What it then still
// refuses, in silence, is a text of another version or of another set of solvers, a solver that it does not
// know, and wisdom that turns out not to apply when a plan is made by it.
bool fitsWisdomGrammar(std::span<const char> text);

} // namespace orva
