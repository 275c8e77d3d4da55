/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Sample-rate conversion of one channel, block by block.
 *
 *  One kind of handle serves two converters. The polyphase converter is a windowed-sinc low-pass and takes any
 *  pair of positive rates. The zero-order hold repeats or drops samples, with an elliptic low-pass of 1 dB
 *  ripple and 60 dB attenuation at the higher rate; it takes the pairs of its table, in both directions, and
 *  is good for integer ratios only. The hold costs about as much as the polyphase converter of order 30.
 *
 *      ORVA_RESAMPLER *converter = ORVA_ResampleInit(44100, 48000, "order=30");
 *      while (read(input, 1024)) {
 *          written = ORVA_Resample(converter, input, output, 1024);  // room for 1024 * 48000 / 44100 + 1
 *          write(output, written);
 *      }
 *      tail = malloc(ORVA_ResampleFlushBufferSize(converter) * sizeof *tail);
 *      write(tail, ORVA_ResampleFlushBuffersEx(converter, tail, 0));
 *      ORVA_ResampleDestroy(converter);                              // the next stream needs a new converter
 *
 *  Conventions. A converter serves one channel of one stream; interleaved audio needs one converter for each
 *  channel, and its channels separated. Counts are samples. L / M is the ratio of output rate to input rate
 *  in lowest terms. Blocks may have any length, and the same stream cut into other blocks gives the same
 *  bits. Beside the input, the bits depend only on the sine and cosine of the mathematics library, from which
 *  the polyphase filter is designed.
 *
 *  Lengths. n samples of input make ceil(n L / M) samples of output due. The polyphase filter delays by D
 *  samples of output; ORVA_ResampleFlushBufferSize() of a new converter gives D. With delay compensation, the
 *  default, the first D samples due are dropped, and a whole flush at the end gives D samples: ceil(n L / M)
 *  in all, or D if that is more. Without compensation nothing is dropped, and there are D samples more. To
 *  end the output exactly with the input, flush with a maxCount of ceil(n L / M) less the samples already
 *  written, if that is above 0. The hold drops nothing and has no flush.
 *
 *  Delay. The polyphase filter delays by order * max(L, M) / M samples of output, and D is that, rounded to an
 *  integer in single precision. With compensation, output k is the signal at the time k + e, in samples of
 *  output, where
 *
 *      e = 0                       going down and at equal rates (L <= M)
 *      e = D - order * L / M       going up (L > M): 0 too for integer ratios (M = 1), at most 1/2 for others
 *
 *  So in going up by a ratio that is no integer the whole output is early by e, up to half a sample (late if e
 *  is negative): 0.347 samples from 44100 to 48000 at order 30. e is 0 where `order` is a multiple of M: at
 *  order 100 from a rate of 100 to any other integer rate, at order 147 from 44100 to 48000. The hold's filter
 *  delays by a few samples of the higher rate, and by more near the end of its passband; its phase is not
 *  linear.
 *
 *  Quality. "Nyquist" is half the lower rate. The polyphase passband ends at 0.95 - 3 / order of Nyquist, the
 *  gain is -6 dB at 0.95, and the stopband begins at 0.95 + 3 / order. At order 30 the passband is flat within
 *  0.03 dB. Images of what lies below 0.9 Nyquist, and aliases of what lies above 1.05, are then down by 75 dB
 *  for ratios of large L and M, such as 44100 to 48000, and by less where both are small: 55 dB at a ratio of
 *  3, 51 dB at 2. Doubling the order gains 7 to 14 dB.
 *
 *  The hold's gain is not normalised. It lies between 0 and -1 dB in the passband, with -1 dB at zero
 *  frequency where the filter's order is even; in going up it falls further by the held signal's own
 *  sin(x) / x, which is -3.1 dB at 0.9 Nyquist. Aliases, and for integer ratios images, are down by 60 dB. For
 *  other ratios samples are repeated or dropped unevenly, and the error of that remains: from 44100 to 48000
 *  it lies 28 dB below a tone of 1 kHz, and 4 dB below one at 0.9 Nyquist.
 *
 *  Unusable handles. For a polyphase order below 1, ORVA_ResampleInit() gives a handle without a converter.
 *  With it, ORVA_Resample() and ORVA_ResampleFlushBufferSize() give -1 and ORVA_ResampleFlushBuffersEx() gives
 *  0, all without a message, and ORVA_ResampleDestroy() frees it. A hold for a pair that is not in the table
 *  gives zeros. A polyphase converter that has been flushed takes no more input.
 *
 *  Source: R. E. Crochiere, L. R. Rabiner, "Multirate Digital Signal Processing", Prentice-Hall 1983.
 */
#ifndef ORVA_ORVARESAMPLE_H
#define ORVA_ORVARESAMPLE_H

#include <orva/ORVAtypes.h>

/** A converter of one channel, with the history of its signal. */
typedef struct ORVA_RESAMPLER ORVA_RESAMPLER;

/** Makes a converter. `config` is a configuration string (see kett/KTstring.h) with these keys; case does not
 *  count, neither in keys nor in values:
 *
 *      key                default      meaning
 *      type               polyphase    "polyphase" or "poly"; "zoh" and every other word mean zero-order hold
 *      order              30           half-length of the polyphase filter, 1 and up; see below
 *      delaycompensation  1            drop the polyphase filter's delay at the start of the output
 *
 *  The default of `order` is the low 32 bits of the setting "liborva.resample.polyphase.order", which is read
 *  whenever a polyphase converter is made. The zero-order hold uses neither `order` nor `delaycompensation`.
 *  Of `config` only the first 256 bytes are read; a number that is cut there counts without its last digits.
 *
 *  The polyphase filter has N + 1 taps at L times the input rate, N = 2 * order * max(L, M). With
 *  c = 0.95 min(pi / L, pi / M), for i below N / 2 and t = i - N / 2,
 *
 *      h[i] = h[N - i] = L sin(c t) / (pi t) (0.42 - 0.5 cos(2 pi i / (N + 1)) + 0.08 cos(4 pi i / (N + 1)))
 *
 *  and h[N / 2] = 0.95 min(1, L / M) without the window. The window is Blackman's, with a period of N + 1
 *  and not of N: it would peak half a tap after the centre, so the two halves, which mirror each other, meet
 *  in a kink at the centre. The kink limits the attenuation where L and M are small. It is deliberate, and so
 *  is the centre tap's own formula, with L / M rounded to float. The gain at zero frequency is not
 *  normalised: it is off by up to -4.6 dB at an order of 1, -1.1 at 2, -0.44 at 3 and -0.04 at 10. For equal
 *  rates the stream is low-pass filtered, not copied; the gain at 0.95 Nyquist is then above -6 dB: -0.4 dB
 *  at an order of 1, -5.9 at 30.
 *
 *  The hold's table: 48000/44100, 44100/32000, 22050/16000, 11025/8000, 32000/22050, 16000/11025,
 *  48000/32000, 96000/48000, 32000/16000, 16000/8000, 44100/22050, 22050/11025, 96000/44100, 48000/22050,
 *  44100/16000, 22050/8000, 32000/11025, 96000/32000, 48000/16000, 32000/8000, 44100/11025, 96000/22050,
 *  48000/11025, 44100/8000, 96000/16000, 48000/8000, 96000/11025, 96000/8000. Equal rates are not in it.
 *
 *  @param inputRate   1 to 2147483647; only its ratio to `outputRate` counts for the polyphase converter.
 *  @param outputRate  likewise.
 *  @param config      the configuration string, null for an empty one.
 *  @return            the converter, to be destroyed with ORVA_ResampleDestroy().
 *                      - Null, with the error "ORVA_ResampleInit: Parametros invalidos" in the log: for a rate
 *                        below 1; when memory is out; when N, or the most outputs that one input to a hold can
 *                        give, does not fit into 32 bits; and when the design would take more than 1 GiB (the
 *                        N + 1 doubles of the filter, as many again sorted into L phases of ceil((N + 1) / L),
 *                        a pointer to each phase, and a delay line as long as a phase), since rates with a
 *                        small common divisor need long filters.
 *                      - For an order below 1, a handle without a converter, with the same text as a terminal
 *                        error.
 *                      - For a pair that the hold does not have, a handle that gives zeros, with the terminal
 *                        error "ORVA_ZOHResampleInit: Unsuported sample rate convertion: %d to %d" of both
 *                        rates.
 *
 *  Memory: polyphase, with P = ceil((N + 1) / L), at most 2 (P + 1) L doubles of coefficients (5 M at an order
 *  of 1), stored in the order of the outputs that take them, and a delay line of P + 7 M / L samples with room
 *  for as many again, or for the longest block, and for 7 M / L more. Hold: the longest block of the higher
 *  rate. While a polyphase converter is made, the N + 1 doubles of its filter as well.
 *
 *  Threads: any, at any time.   Real time: no (allocates, locks, and computes 3 N / 2 sines and cosines).
 *  Source: as above; F. J. Harris, "On the use of windows for harmonic analysis with the DFT", Proc. IEEE 66
 *  (1978), for the window; S. Darlington, "Synthesis of reactance 4-poles", J. Math. Phys. 18 (1939), for the
 *  hold's filters.
 */
ORVA_API ORVA_RESAMPLER *ORVA_ResampleInit(int32_t inputRate, int32_t outputRate, const char *config);

/** Converts a block. Polyphase: each output is the sum of the products of one phase of the filter with the
 *  newest samples, added in double from the newest to the oldest and rounded to float once. Hold: going down,
 *  it filters in double and then drops samples; going up, it repeats samples and then filters.
 *
 *  Infinities and not-a-number pass through. They leave the polyphase converter after ceil((N + 1) / L)
 *  samples of input, the length of a phase; they never leave the hold, which is recursive.
 *
 *  @param handle  the converter. Null is refused with the error "ORVA_Resample: Estrutura de dados nao foi
 *                 inicializada corretamente!\n" in the log. A damaged handle, neither polyphase nor hold, is
 *                 reported with the same text and ends the process by exit(1).
 *  @param input   `count` samples.
 *  @param output  out: the samples of the result and no more. The room is not checked: polyphase, at most
 *                 count * L / M + 1 samples; hold, at most count * (floor(L / M) + 1) samples.
 *                 May be `input`, and may overlap it.
 *  @param count   samples; 0 or less gives 0, and nothing is read, written or changed.
 *  @return        samples written; -1, and nothing has changed:
 *                  - for a refused handle;
 *                  - without a message, for a handle without a converter (whatever the count), for a polyphase
 *                    converter that has been flushed and for null `input` or `output`;
 *                  - with the error "ORVA_ResampleInit: Parametros invalidos", when memory is out, and when
 *                    the samples of the result (of a hold, the room for them) are more than 2147483647.
 *
 *  Threads: one at a time for a converter.
 *  Real time: yes, if an earlier block was at least as long (a block longer than all before it may allocate);
 *  no lock or system call, no log except for a refusal; O(`count` + results * P), P = ceil((N + 1) / L), and once
 *  in P samples a copy of the delay line. Blocks with infinities or not-a-number, and those of the P samples
 *  after, take up to twice as long.
 */
ORVA_API int32_t ORVA_Resample(ORVA_RESAMPLER *handle, const float *input, float *output, int32_t count);

/** The number of samples that a whole flush gives.
 *
 *  @param handle  the converter. Null and a damaged handle are refused with the error of ORVA_Resample() in
 *                 the log.
 *  @return        polyphase: the filter's delay in output samples, at least 1, less what has been flushed;
 *                 hold: 0. -1 for a refused handle, and, without a message, for a handle without a converter.
 *
 *  Threads: one at a time for a converter.   Real time: yes (no heap, lock or system call; no log except for a
 *  refusal).
 */
ORVA_API int32_t ORVA_ResampleFlushBufferSize(const ORVA_RESAMPLER *handle);

/** Feeds zeros to the filter and writes the tail of the stream. Samples that delay compensation has still to
 *  drop are dropped first.
 *
 *  A flush that writes anything is final, even if `maxCount` ends it early: every later flush gives 0, and the
 *  converter takes no more input. Ask for the whole tail at once.
 *
 *  Unlike those of ORVA_Resample(), the sums here are rounded to float after every tap. That is deliberate. It
 *  makes the tail noisier: its noise lies at about -140 dB of full scale instead of -157.
 *
 *  @param handle    the converter. Null and a damaged handle are reported in the log with the text of
 *                   ORVA_Resample(), as a terminal error, and end the process by exit(1).
 *  @param output    out: the samples of the result and no more. Null writes nothing, and nothing has changed.
 *  @param maxCount  room; 0 or less means ORVA_ResampleFlushBufferSize().
 *  @return          samples written, the smaller of `maxCount` and ORVA_ResampleFlushBufferSize(); 0 after a
 *                   flush, for the hold, and for a handle without a converter.
 *
 *  Threads: one at a time for a converter.
 *  Real time: yes (no heap or lock; log and system call only for a refused handle); O(results * P) in the one
 *  call that it has to be. As each of P sums waits to be rounded, a sample takes two to three times as long as
 *  one of ORVA_Resample() with a full delay line.
 */
ORVA_API int32_t ORVA_ResampleFlushBuffersEx(ORVA_RESAMPLER *handle, float *output, int32_t maxCount);

/** Destroys a converter. Of a damaged handle, neither polyphase nor hold, only the handle itself is freed.
 *
 *  @param handle  gone after the call. Null and a damaged handle are reported with the error of
 *                 ORVA_Resample() in the log.
 *  @return        1; 0 for null and for a damaged handle.
 *
 *  Threads: any, while no other uses the converter.   Real time: no (frees memory).
 */
ORVA_API int32_t ORVA_ResampleDestroy(ORVA_RESAMPLER *handle);

#endif
