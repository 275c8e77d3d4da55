/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Faster and slower at the same pitch: time scaling by SOLAFS, synchronised overlap-add with fixed
 *  synthesis.
 *
 *  The caller pushes samples in with a speed and pulls scaled samples out; the two calls are independent, and
 *  the speed may change while the stream runs. A speed of 2.0 plays twice as fast, 0.5 half as fast. Output
 *  comes in hops of a fixed length. For each hop, the input is searched for the place that best continues the
 *  output so far, and the output is cross-faded to it.
 *
 *      ORVA_SOLAFS *channel[2];                                 // interleaved stereo: one record a channel
 *      for (int c = 0; c < 2; ++c)
 *          channel[c] = ORVA_SolafsCreate(20, 44100, 2);        // frames of 20 ms, every second sample
 *      while (read(input, 1024)) {
 *          for (int c = 0; c < 2; ++c) {
 *              taken = ORVA_SolafsInputData(channel[c], c, input, 1024, 1.5f);
 *              written = ORVA_SolafsOutputData(channel[c], c, output, 4096);
 *          }                                                    // the same counts in every channel
 *          write(output, written);
 *      }
 *      for (int c = 0; c < 2; ++c)
 *          ORVA_SolafsDestroy(channel[c]);
 *
 *  Conventions. A record serves one channel. Its sample i stands at data[offset + i * channelStride] in the
 *  caller's arrays; counts and capacities count these, that is frames. Channels share nothing, and each makes
 *  its own search.
 *
 *  Scale. Feed samples at the scale of 16 bits, full scale being 32768: multiply by 32768 on the way in and
 *  divide on the way out, which rounds nothing. The search compares energies with 1. Beside samples within 1.0
 *  that 1 outweighs them, so that louder passes for more alike. Measured on 38 sentences at speeds of 0.5, 0.7,
 *  1.3 and 1.5, a speech recogniser gets 67.0, 45.6, 41.4 and 43.9 % of the words wrong at the scale of 16 bits
 *  and 81.8, 48.4, 49.1 and 58.2 % at that of 1.0 (32.3 % of the unprocessed ones), and the level changes by 0.1
 *  and by 0.8 to 0.9 dB.
 *
 *  Lengths. A frame is F = frameMs * sampleRate / 1000 samples, cut to a multiple of 8; a hop is F / 2. The
 *  record holds one second of input. The newest 3.5 F samples of it stay unplayed until more input follows.
 *  The output starts with the first sample of the input, as soon as more than 3.5 F samples are in: with live
 *  input that is a latency of 70 ms for frames of 20 ms. There is no flush: push 3.5 F samples of silence
 *  after the end of a stream to bring out the tail. At a constant speed, N samples pushed in give the smallest
 *  number of hops h for which h * F / 2 * speed, computed in float and truncated, is not below N - 3.5 F.
 *
 *  Frames of up to 220 ms work; about 20 ms suits speech. Longer frames do not fit into the second that is
 *  held, and the stream stops: input takes 0 and output writes 0. frameMs * sampleRate below 8000 gives F = 0
 *  and hops of 0. Such a record must not be run: once it has taken input, ORVA_SolafsOutputData() does not
 *  return. All other calls are safe on it.
 *
 *  Speeds. Use speeds above 0 and up to 3.0. No speed, whatever its bits, makes a call read or write outside
 *  the record. Up to 3.0 the output has the same bits however the input is cut into calls. Above 3.0 the
 *  analysis reaches samples that are not there yet, which read as 0 and so depend on the cuts; above 9 it runs
 *  past the input, and the samples that it skips are counted but not kept. At 0 and below the output never
 *  runs short of input. At a speed so high that all positions are out of range there is no output. A position
 *  beyond the range of an integer becomes the nearest integer in range, and not-a-number becomes 0.
 *
 *  Limits. A record keeps 256 speeds over its life. After that the last one stays in force, and new speeds are
 *  ignored. Positions are 32-bit integers: a stream ends after 2^31 - 1 samples, in or out (13 hours at
 *  44100 Hz); input then takes 0, or output writes 0. Positions pass through single precision, so that from
 *  16777216 samples on (6 minutes at 44100 Hz) the analysis moves in steps of 2, 4, 8 ... samples.
 *
 *  Memory. A record takes at most 4 sampleRate + 19 F + 10000 bytes, all of them at creation.
 *
 *  Bits. For equal calls the output is equal to the last bit on every machine.
 *
 *  Source: D. J. Hejna and B. R. Musicus, "The SOLAFS time-scale modification algorithm", BBN technical
 *  report, 1991.
 */
#ifndef ORVA_ORVASOLAFS_H
#define ORVA_ORVASOLAFS_H

#include <orva/ORVAtypes.h>

/** One channel of a stream under time scaling. */
typedef struct ORVA_SOLAFS ORVA_SOLAFS;

/** Creates a record for one channel of a new stream. Nothing resets a record: the next stream needs another.
 *
 *  @param frameMs        frame in milliseconds, 1 to 220; see above for others. The product with `sampleRate`
 *                        is a 32-bit integer and wraps; a negative product counts as 0.
 *  @param sampleRate     in Hz; also the samples held, one second. 0 or less: the record never takes input.
 *  @param channelStride  distance between two samples of this channel in the caller's arrays: the number of
 *                        interleaved channels, 1 for an array of this channel alone.
 *  @return               the record; null when memory is out, and for no other reason.
 *
 *  Threads: any.   Real time: no (allocates).
 */
ORVA_API ORVA_SOLAFS *ORVA_SolafsCreate(int32_t frameMs, int32_t sampleRate, int32_t channelStride);

/** Pushes samples in, as many as fit, and notes the speed for them.
 *
 *  The first call that takes samples sets the speed at once. A later change comes into force in
 *  ORVA_SolafsOutputData(), at the first hop before which the analysis has reached the first sample of the new
 *  speed. The speed is noted at every call, also when nothing is taken: a call with a `count` of 0 announces a
 *  change before its samples.
 *
 *  @param solafs  the record; null takes 0.
 *  @param offset  index in `data` of this channel's first sample.
 *  @param data    `count` samples, `channelStride` apart; null is a count of 0.
 *  @param count   frames offered; 0 or less takes none.
 *  @param speed   how much faster the output runs than the input, from this call's samples on.
 *  @return        frames taken, from the first on. Fewer than `count` when the record is full: pull output,
 *                 then offer the rest.
 *
 *  Threads: one at a time for a record.   Real time: yes (no heap, lock, log or system call; O(sampleRate)).
 */
ORVA_API int32_t ORVA_SolafsInputData(ORVA_SOLAFS *solafs, int32_t offset, const float *data, int32_t count,
                                      float speed);

/** Pulls scaled samples out, in whole hops, until there is too little input for a hop or the next hop does not
 *  fit.
 *
 *  `capacity` is checked only after a hop has been written: the first hop is written whenever there is input
 *  for it, so `data` must always have room for one.
 *
 *  @param solafs    the record; null writes nothing.
 *  @param offset    index in `data` of this channel's first frame.
 *  @param data      out: frames `channelStride` apart, those written and no more; null writes nothing.
 *  @param capacity  frames of room; less than one hop counts as one hop.
 *  @return          frames written, a multiple of the hop; 0 when there is too little input, and nothing has
 *                   changed.
 *
 *  Threads: one at a time for a record.   Real time: yes (no heap, lock, log or system call; a hop with its
 *  search costs O(F^2)). Does not return for a record with hops of 0 that has taken input.
 */
ORVA_API int32_t ORVA_SolafsOutputData(ORVA_SOLAFS *solafs, int32_t offset, float *data, int32_t capacity);

/** The input position that is heard at an output position, so that a cursor can be shown on the unscaled
 *  material.
 *
 *  It follows from the speeds of all samples pushed in so far, whether in force yet or not, and not from the
 *  matches found. So it is an estimate: it may differ from what is heard by up to two frames, and by one more
 *  sample for every input call, since each call truncates the output position that it adds.
 *
 *  @param solafs    the record; null gives 0.
 *  @param position  samples of output, counted from the first.
 *  @return          samples of input, counted from the first; 0 before the first input call. For positions
 *                   below 0 and beyond the input, the first and the last speed are taken to go on.
 *
 *  Threads: one at a time for a record.   Real time: yes (no heap, lock, log or system call; at most 256
 *  steps).
 */
ORVA_API int64_t ORVA_SolafsTranslateCursorPosition(ORVA_SOLAFS *solafs, int64_t position);

/** Ends the use of a record. Its memory is only shown to libkett (KTMEM_DisplayMemDescr()) and stays allocated;
 *  a host frees it by KTMEM_DisposeDisplayed(), when nothing uses the record any more.
 *
 *  @param solafs  the record; null does nothing.
 *
 *  Threads: any, while no other uses the record.   Real time: no (takes a lock, may log).
 */
ORVA_API void ORVA_SolafsDestroy(ORVA_SOLAFS *solafs);

#endif
