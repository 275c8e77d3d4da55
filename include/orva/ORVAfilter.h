/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Digital filters on interleaved buffers of any number of channels.
 *
 *  A filter is one handle, whatever the structure inside; a call filters a block and keeps what the next
 *  block needs. There are two structures, both Direct Form II:
 *
 *  - Direct form, from two coefficient vectors b and a, of any order and of unequal length if need be:
 *
 *        H(z) = (b(0) + b(1) z^-1 + b(2) z^-2 + ...) / (a(0) + a(1) z^-1 + a(2) z^-2 + ...)
 *
 *    All coefficients are divided by a(0) when the filter is made, and the filter then runs in single
 *    precision throughout. For orders above about four, use biquads instead.
 *
 *  - Biquads, a cascade of second-order sections, section 0 the first to act on the signal:
 *
 *        H(z) = product of (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2)
 *
 *    A section is a record of five doubles in the order a1, a2, b0, b1, b2; its leading 1 is not stored. Note
 *    the sign: a1 and a2 are those of the transfer function, and are subtracted in the recursion. Sections
 *    run in double precision, and the signal is rounded to float from each section to the next.
 *
 *  Counts, offsets and strides are in floats, not in frames: a frame of a stereo filter is two floats, one
 *  per channel, and a block of 1024 of them is a `numSamples` of 2048. Cutting a stream into blocks anywhere
 *  between frames does not change a bit of the result. Results are 1 for success and 0 for failure.
 *
 *      static const double smooth[] = {-0.94, 0.33, 0.1, 0.2, 0.1};      // a1, a2, b0, b1, b2
 *
 *      _ORVA_FILTER *filter = ORVA_CreateFilterFromBiquads(2, 1, smooth);
 *      while (readBlock(block, &floats))
 *          ORVA_Filter(filter, block, block, floats);                    // in place
 *      ORVA_DestroyFilter(filter);
 *
 *  One channel of an interleaved buffer: give a filter made for one channel the channel's number, counted
 *  from 0, as offset and the number of channels as stride. The other channels of the output are left alone:
 *
 *      ORVA_FilterEx(mono, block, block, floats, 1, 6);                  // the second channel of six
 *
 *  A filter belongs to one thread at a time; different filters run in parallel.
 *
 *  In bytes, a handle holds some hundred and 4 (order + 1) channels + 8 order for the direct form, 8 (4 channels + 5)
 *  sections for biquads. A run takes up to 12 KB of stack.
 */
#ifndef ORVA_ORVAFILTER_H
#define ORVA_ORVAFILTER_H

#include <orva/ORVAtypes.h>

/** A filter with the history of its signal. */
typedef struct _ORVA_FILTER _ORVA_FILTER;

/** Filters a block of whole frames: ORVA_FilterEx() with an offset of 0 and the filter's channels as stride.
 *
 *  @param filter      the filter; null is refused.
 *  @param input       `numSamples` floats, channels interleaved; null is refused.
 *  @param output      out: `numSamples` floats; null is refused. May be `input`, and may overlap it in part.
 *  @param numSamples  floats in the buffer. A last partial frame is not read, and its output not written.
 *  @return            1, also when there is nothing to do; 0 for a null argument, and then nothing has
 *                     changed.
 *
 *  With a filter of 0 channels the call does not return, unless `numSamples` is above 2147483647.
 *
 *  Threads: one at a time for a filter.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API int32_t ORVA_Filter(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples);

/** Filters the frames that start at `offset`, `offset` + `stride`, `offset` + 2 `stride` and so on. A frame
 *  is as many neighbouring floats as the filter has channels, and stands at the same place in both buffers.
 *  What lies between frames is neither read nor written.
 *
 *  Infinities and not-a-number pass through the recursion and stay in its memories until ORVA_ResetFilter().
 *
 *  Per channel, the direct form computes in float, each product rounded before it is added:
 *
 *      w[n] = x[n] - a(1)/a(0) w[n-1] - a(2)/a(0) w[n-2] - ...
 *      y[n] = 0 + b(1)/a(0) w[n-1] + b(2)/a(0) w[n-2] + ... + b(0)/a(0) w[n]
 *
 *  and each biquad in double, with y then rounded to float as the x of the next:
 *
 *      w[n] = (x[n] - a1 w[n-1]) - a2 w[n-2]
 *      y[n] = (b0 w[n] + b1 w[n-1]) + b2 w[n-2]
 *
 *  Where frames overlap each other (`stride` below the channels) or the buffers overlap in part, frames are
 *  computed strictly one after the other. Within a frame the direct form first goes through the channels,
 *  reading the input of each and then writing 0 to its output, and writes the results after the last channel
 *  is read; the biquad form reads and finishes one channel after the other.
 *
 *  @param filter      the filter; null is refused.
 *  @param input       `numSamples` floats; null is refused.
 *  @param output      out: floats; null is refused. May be `input`, and may overlap it in part.
 *  @param numSamples  floats in each buffer, up to 2147483647 plus the channels. A frame is filtered if its
 *                     start is not above `numSamples` less the channels, compared as signed 32-bit numbers;
 *                     with a larger `numSamples` none is.
 *  @param offset      floats before the first frame. A frame start of 2147483648 or more ends the call.
 *  @param stride      floats from one frame's start to the next. With 0 the call does not return, unless no
 *                     frame fits at `offset`.
 *  @return            1, also when no frame fits; 0 for a null argument, and then nothing has changed.
 *
 *  Threads: one at a time for a filter.   Real time: yes (no heap, lock, log or system call).
 *  Source: A. V. Oppenheim, R. W. Schafer, "Discrete-Time Signal Processing", section on direct form II
 *  structures.
 */
ORVA_API int32_t ORVA_FilterEx(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                               uint32_t offset, uint32_t stride);

/** Clears the memories: the filter goes on as if its input so far had been silence.
 *
 *  @param filter  the filter; null is refused.
 *  @return        1; 0 for null.
 *
 *  Threads: one at a time for a filter.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API int32_t ORVA_ResetFilter(_ORVA_FILTER *filter);

/** Copies the history of one filter into another of the same structure, channels and kind. All filters made
 *  from numbers are of one kind, which they share with low-pass designs; high-pass, band-pass and band-reject
 *  designs are kinds of their own. Coefficients are not copied.
 *
 *  Biquads, equal section counts: `destination` goes on exactly where `source` stands.
 *
 *  Biquads, unequal section counts: sections are matched by number, from the first. With nd sections in the
 *  destination, ns in the source and nc channels, nd above ns: for each of the four slots t of the memory and
 *  each channel c in turn, after that channel is copied, nd - ns doubles from double nd t nc + nc c + ns on
 *  are cleared, up to the end of the memory. Only if nc = nd are these the memories of the sections that the
 *  source lacks; otherwise the call may clear memories that it has just copied, and may leave memories of
 *  those sections as they were. A source without sections clears everything.
 *
 *  Direct form: the rows of the ring that both filters have are copied, and the destination's position then
 *  becomes its own order, whatever the source's position is. That rotates the history: with equal orders,
 *  `destination` goes on as `source` would only if `source` has run one frame more than a multiple of
 *  order + 1. In a destination of higher order, the rows from 4 (source order + 1) to the end of the ring are
 *  cleared, and the rows between the copied and the cleared ones keep what they held.
 *
 *  @param destination  takes the history; null is refused. May be `source`.
 *  @param source       left as it is; null is refused.
 *  @return             1; 0 for a null argument or for filters that differ in structure, channels or kind, and
 *                      then `destination` is unchanged.
 *
 *  Threads: one at a time for each of the two.   Real time: yes (no heap, lock, log or system call;
 *  O(memory)).
 */
ORVA_API int32_t ORVA_CopyFilterMemories(_ORVA_FILTER *destination, const _ORVA_FILTER *source);

/** Replaces the coefficients of a biquad filter while it runs. Its memories stay as they are.
 *
 *  @param filter      a biquad filter, also a designed one; null or a direct form is refused.
 *  @param numBiquads  records in `coefs`, as many as the filter has sections; any other number is refused,
 *                     and more than 65536 with "ORVA_CreateFilterFromBiquads: Too many biquads (%u)\n" in the
 *                     log.
 *  @param coefs       the records a1, a2, b0, b1, b2, copied; null is refused, before anything else.
 *  @return            1; 0 for a refusal, and then the filter is unchanged.
 *
 *  Threads: one at a time for a filter.   Real time: yes, up to 65536 records (no heap, lock, log or system
 *  call); no above (logs).
 */
ORVA_API int32_t ORVA_UpdateFilterBiquads(_ORVA_FILTER *filter, uint32_t numBiquads, const double *coefs);

/** Destroys a filter. A damaged handle, one without a state or with an unknown structure, is reported in the
 *  log with "ORVA_DestroyFilter: Filter state is NULL!" or "ORVA_DestroyFilter: Invalid filter type!"; then
 *  only the handle itself is freed.
 *
 *  @param filter  gone after the call; null is refused.
 *  @return        1; 0 for null.
 *
 *  Threads: any, while no other uses the filter.   Real time: no (frees memory).
 */
ORVA_API int32_t ORVA_DestroyFilter(_ORVA_FILTER *filter);

/** Makes a direct-form filter from a transfer function. All coefficients are divided by a(0) in double and
 *  then rounded to float. Nothing else is tested or changed: if a(0) is zero they are infinite or
 *  not-a-number, and whether the filter is stable is the host's concern.
 *
 *  @param numChannels  channels in a frame, 0 to 2147483647. A filter of 0 channels is of no use (see
 *                      ORVA_Filter()).
 *  @param numCount     doubles in `numerator`, 1 to 2147483647.
 *  @param numerator    b(0), b(1) and so on, copied.
 *  @param denCount     doubles in `denominator`, 1 to 2147483647.
 *  @param denominator  a(0), a(1) and so on, copied.
 *  @return             the filter, its memories zero, to be destroyed with ORVA_DestroyFilter(); null, with
 *                      no message, for a null vector, a number outside its range or when memory is out.
 *
 *  Threads: any, at any time.   Real time: no (allocates).
 */
ORVA_API _ORVA_FILTER *ORVA_CreateFilterFromCoefs(uint32_t numChannels, int32_t numCount,
                                                  const double *numerator, uint32_t denCount,
                                                  const double *denominator);

/** Makes a biquad filter from section records. They are taken as they are, in double; a(0) is 1.
 *
 *  @param numChannels  channels in a frame, 0 to 2147483647. A filter of 0 channels is of no use (see
 *                      ORVA_Filter()).
 *  @param numBiquads   records, 0 to 65536. A filter of 0 sections copies its input.
 *  @param coefs        the records a1, a2, b0, b1, b2, copied.
 *  @return             the filter, its memories zero, to be destroyed with ORVA_DestroyFilter(). Null for
 *                      null `coefs`, whatever the counts, then for more than 65536 records, with
 *                      "ORVA_CreateFilterFromBiquads: Too many biquads (%u)\n" in the log, then for negative
 *                      channels and when memory is out.
 *
 *  Threads: any, at any time.   Real time: no (allocates).
 */
ORVA_API _ORVA_FILTER *ORVA_CreateFilterFromBiquads(int32_t numChannels, uint32_t numBiquads,
                                                    const double *coefs);

/** Makes a filter from one line of text, as in
 *
 *      ORVA_CreateFilter("type=bandpass; order=4; fpass1=300; fpass2=3400; fs=%d; nc=%d", rate, channels)
 *
 *  The grammar is that of kett/KTstring.h. Keys and words are case-sensitive; other keys are ignored.
 *
 *      key             default      meaning
 *      biquads                      records, one row a section, five columns a1, a2, b0, b1, b2
 *      numerator                    b(0), b(1), ...; counts only beside a denominator
 *      denominator                  a(0), a(1), ...
 *      nc              1            channels, cut to an integer; 0 is of no use (see ORVA_Filter())
 *      num_channels    nc           channels, cut to an integer; used instead of nc where both are given
 *
 *      type            lowpass      lowpass lp | highpass hp | bandpass bp | bandreject br bandstop bs
 *      approximation   butterworth  butterworth butter bt | chebyshev chebyshev1 cheby cheby1 cb |
 *                                   invchebyshev chebyshev2 invcheby cheby2 ci | ellilptic ellip cauer ca
 *      order                        the least order, of the low-pass prototype: a band type has twice as
 *                                   many poles
 *      Ap              3            attenuation at the passband edges, in dB, above 0
 *      As                           attenuation of the stopband, in dB, above 0
 *      fpass                        default of fpass1
 *      fpass1          fpass        cut-off, or lower edge of a band
 *      fpass2                       upper edge of a band
 *      fstop                        default of fstop1
 *      fstop1          fstop        edge of the stopband, or the lower one
 *      fstop2                       the upper edge of the stopband of a band type
 *      fs                           sampling rate in Hz, cut to an integer. With it, edges are in Hz; without
 *                                   it, 1.0 is half the sampling rate
 *      gain            1            linear factor on a designed filter; no effect on given numbers
 *
 *  Precedence: biquads of five columns, else numerator with denominator, else a design. The long word for the
 *  last approximation is written with three l, as above; "elliptic" is refused. Of a word, the first 63
 *  characters count.
 *
 *  Examples, each with its attenuation at some frequencies, which are in the unit of its edges:
 *
 *      "order=4; fpass=0.25"
 *           3.00 dB at 0.25, 30.61 dB at 0.5
 *      "order=2; fpass=1000; fs=44100; nc=2"
 *           3.00 dB at 1000, 43.30 dB at 10000
 *      "type=highpass; order=4; fpass=80; fs=48000; num_channels=6"
 *           3.00 dB at 80, 48.14 dB at 20
 *      "type=bandpass; order=4; fpass1=300; fpass2=3400; fs=16000"
 *           3.00 dB at 300, 0.00 dB at 1000, 3.00 dB at 3400
 *      "type=bandreject; order=1; fpass1=48; fpass2=52; fs=16000"
 *           3.00 dB at 48, 33.96 dB at 50, 3.00 dB at 52
 *      "approximation=butterworth; Ap=1; As=60; fpass=0.3; fstop=0.6"
 *           1.00 dB at 0.3, 89.08 dB at 0.6
 *      "approximation=chebyshev; Ap=0.5; As=40; fpass=3400; fstop=4600; fs=44100"
 *           0.50 dB at 3400, 43.36 dB at 4600
 *      "type=hp; approximation=cheby1; order=6; Ap=1; fpass=0.5"
 *           1.00 dB at 0.5, 67.77 dB at 0.25
 *      "approximation=chebyshev2; order=6; Ap=1; As=50; fpass=0.25"
 *           1.00 dB at 0.25, 60.41 dB at 0.5
 *      "approximation=ellip; Ap=1; As=60; fpass=0.25; fstop=0.3"
 *           1.00 dB at 0.25, 67.42 dB at 0.3
 *      "type=bp; approximation=cauer; Ap=0.5; As=50; fpass1=0.2; fpass2=0.4; fstop1=0.15; fstop2=0.45"
 *           51.13 dB at 0.15, 0.50 dB at 0.2, 0.50 dB at 0.4, 41.42 dB at 0.45
 *      "type=bs; approximation=ci; order=3; Ap=1; As=40; fpass1=0.2; fpass2=0.4; gain=0.5"
 *           7.02 dB at 0.2, 7.02 dB at 0.4
 *      "biquads=[-0.94 0.33 0.1 0.2 0.1; -1.1 0.4 0.2 0.4 0.2]"
 *           -8.74 dB at 0, 25.14 dB at 0.5
 *      "numerator=[0.5 0.5]; denominator=1"
 *           0.00 dB at 0, 3.01 dB at 0.5
 *
 *  The order of a design is the larger of `order` and the order that Ap, As and the ratio of the stopband edge
 *  to the passband edge call for. The ratio is that of the frequencies as given, without prewarping. So the
 *  attenuation is Ap at the passband edges, but not exactly As at a stopband edge: a low-pass or high-pass has
 *  more there, a band type may have less at one of the two, as in the cauer example above. With a stop edge,
 *  invchebyshev is designed from that edge: at its passband edges it has less than Ap, and the less the higher
 *  the order ("approximation=ci; Ap=1; As=60; fpass=0.3; fstop=0.6": 0.17 dB at 0.3). Stop edges lie outside
 *  the passband: above fpass of a low-pass, below that of a high-pass, around the passband of a band-pass,
 *  between the passbands of a band-reject; of two, the one nearer to its passband edge counts. What each
 *  approximation needs beside its passband edges:
 *
 *      butterworth, chebyshev   order, or As with a stop edge
 *      invchebyshev             order with As, or As with a stop edge, or order with a stop edge
 *      ellip                    As with a stop edge, with or without order
 *
 *  Without As, the stopband of invchebyshev follows from the order and the stop edge by a formula that suits
 *  no practical case: for an Ap of up to 3.01 dB, coefficients are mostly not-a-number. Give As.
 *
 *  The stopband attenuation of ellip follows from the order, the edges and Ap; As only helps to find the
 *  order. The poles are placed as for a stopband of infinite attenuation, so that at low orders the ripple of
 *  the passband misses Ap: in an odd order the attenuation at the edges is too small; in an even one it is
 *  exact there, but the ripple does not come down to 0 dB. By how much, in dB, for stop edges at so many
 *  times the passband edge and an Ap of 1 (which matters in the first two columns only):
 *
 *      order   1       2       3        4        5        6
 *      1.2     0.92    0.18    1.4e-2   1.0e-3   7.5e-5   5.5e-6
 *      1.5     0.87    0.046   1.7e-3   6.3e-5   2.3e-6   8.4e-8
 *      2.0     0.53    0.011   2.0e-4   3.6e-6   6.5e-8   1.2e-9
 *
 *  From order 7 on it is below 1e-6, except in odd multiples of 3, where a series ends early: at 1.2 these
 *  have ripples of up to 2e-5 too much or too little. Order 1 is best left to another approximation.
 *
 *  Keep the edges of ellip apart by a ratio of 1.01 or more. Below that, the series of the design are too short
 *  at every order, and the filter departs from the true elliptic one. At 1.001 the passband of
 *  order 8 and of order 10 is off by 0.006 dB and that of order 12 by 0.12 dB. At 1.00014 it is off by
 *  0.05 dB at order 10, 1.7 dB at order 12 and more than 60 dB at orders 3 and 9, and the gain may rise above
 *  0 dB; the zeros move as well, so that close to them attenuations in the stopband differ by 48 dB and more.
 *
 *  An edge at or above half the sampling rate is not refused where fs is given. Taking half the rate as 1, a
 *  cut-off f between 1 and 2 gives the filter of 2 - f, and exactly 1 a degenerate one. An fs between -1
 *  and 1 is cut to 0, which makes all edges infinite and the coefficients not-a-number. A negative gain gives
 *  not-a-number where there are two sections or more.
 *
 *  @param format  printf-style text, followed by the arguments that it formats; formatted in the C locale.
 *                 Null is refused without a message.
 *  @return        the filter, its memories zero, to be destroyed with ORVA_DestroyFilter(); its kind is that
 *                 of `type`. Null, with the first of these messages that applies:
 *                  - "ORVA_CreateFilter: If you want to specify frequencies in Hz, you must specify a
 *                    sampling frequency.": fpass1 or fpass2 of 1.0 or more, and no fs above 0;
 *                  - "ORVA_CreateFilter: you must specify As or order": neither is above 0;
 *                  - "ORVA_CreateFilter: Invalid filter type: %s\n";
 *                  - "ORVA_CreateFilter: You must specify a cutoff frequency (fpass)", or, for a band type,
 *                    "ORVA_CreateFilter: You must specify two cutoff frequences (fpass1 and fpass2)";
 *                  - "ORVA_CreateFilter: Invalid approximation (%s)";
 *                  - "ORVA_CreateFilter: Type II Chebyshev filters require fstop or As";
 *                  - "_MakeFilterFromRoots: Unpaired imaginary root", and the like for real poles and real
 *                    zeros: roots that do not pair, for example because an edge is infinite;
 *                  - that of ORVA_CreateFilterFromBiquads() for more than 65536 rows.
 *                 Null without a message for edges of 0 or out of order, an Ap of 0 or less, an order that
 *                 neither `order` nor As with a stop edge gives or that is above 1048576, and what the
 *                 constructors above refuse without a message.
 *
 *  Threads: any, at any time.   Real time: no (allocates).
 *  Source: A. Antoniou, "Digital Filters: Analysis, Design, and Applications"; A. G. Constantinides,
 *  "Spectral transformations for digital filters", Proc. IEE 117 (1970).
 */
ORVA_API _ORVA_FILTER *ORVA_CreateFilter(const char *format, ...);

#endif
