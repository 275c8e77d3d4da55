/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Noise suppression of one channel, frame by frame, around the suppressor of the WebRTC audio processing library.
 *
 *  One call is one frame of 10 ms: 80 samples at 8000 Hz, 160 at 16000 Hz, 320 at 32000 Hz. Frames of a stream come in
 *  order. A caller whose input is not a whole number of frames keeps the rest for later or pads it. Interleaved audio needs
 *  one suppressor for each channel. Full scale is 1.0 in float and 32768 in 16 bits; float samples pass through 16 bits.
 *
 *      ORVA_NOISESUP *suppressor = ORVA_CreateNoiseSupEx(16000, 2);
 *      int32_t frame = ORVA_NoiseSupBufferSize(suppressor);          // 160
 *      for (each frame)
 *          ORVA_DoNoiseSup(suppressor, input, output);
 *      ORVA_DestroyNoiseSup(suppressor);
 *
 *  Delay: at 8000 and 16000 Hz the output lags by 0.6 frames, 48 and 96 samples; a frame of silence after the end of a
 *  stream brings out the rest of it.
 *
 *  What comes out:
 *   - 8000 and 16000 Hz: the suppressor's output. Frames go to its processing step only, and never to its analysis step,
 *     from which it would learn the noise. So it removes next to nothing: the level of ten seconds of white noise at
 *     -26 dB, and of a recorded voice, changed by 0.01 dB at most, at both rates and all degrees. The output is cut toward
 *     zero to 16 bits and limited; the lower limit acts on values below -32678 (not -32768), which become -32768.
 *   - 32000 Hz: silence. The cleaned bands are written to the block that the split used, while the merge reads another
 *     block, to which nothing is ever written. Convert the stream to 16000 Hz instead.
 */
#ifndef ORVA_ORVANOISESUP_H
#define ORVA_ORVANOISESUP_H

#include <orva/ORVAtypes.h>

/** A noise suppressor for one channel. */
typedef struct ORVA_NOISESUP ORVA_NOISESUP;

/** Makes a suppressor.
 *
 *  @param sampleRate  8000, 16000 or 32000 Hz. Any other gives null and logs the error
 *                     "ORVA_CreateNoiseSup: Invalid sample rate.".
 *  @param policy      degree of suppression, 0 (mild) to 3 (very strong). Any other gives null without a message, and the
 *                     WebRTC instance made for it, some ten kilobytes, is never freed: do not try out degrees this way.
 *  @return            the suppressor, owned by the caller until ORVA_DestroyNoiseSup(); null as told above, and without a
 *                     message when memory is out. On Windows null, too, with the error "ORVA_CreateNoiseSup:
 *                     libwebrtc_audio_processing-1.dll is missing beside liborva.", as long as it is. If the memory is out
 *                     for the WebRTC library's own instance, that library crashes.
 *
 *  Memory: two frames of 16 bits, at 32000 Hz also two blocks of the band split, beside the WebRTC library's instance,
 *  which is nearly all of it.
 *  Threads: any.   Real time: no (allocates).
 */
ORVA_API ORVA_NOISESUP *ORVA_CreateNoiseSupEx(int32_t sampleRate, int32_t policy);

/** The number of samples in a frame.
 *
 *  @param suppressor  a suppressor or null.
 *  @return            80, 160 or 320; -1 for null.
 *
 *  Threads: any.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API int32_t ORVA_NoiseSupBufferSize(const ORVA_NOISESUP *suppressor);

/** Changes the degree of suppression, between two frames.
 *
 *  @param suppressor  a suppressor or null.
 *  @param policy      0 to 3.
 *  @return            true; false for null and for any other degree, and the old one then stays.
 *
 *  Threads: one at a time for a suppressor.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API bool ORVA_SetNoiseSupIntensity(ORVA_NOISESUP *suppressor, int32_t policy);

/** Cleans one frame of float samples.
 *
 *  @param suppressor  a suppressor.
 *  @param input       one frame, any alignment.
 *  @param output      out: one frame, any alignment; may be `input`.
 *  @return            1; 0 when a pointer is null, and nothing is then touched, the stream's history included.
 *
 *  Threads: one at a time for a suppressor.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API int32_t ORVA_DoNoiseSup(ORVA_NOISESUP *suppressor, const float *input, float *output);

/** Cleans one frame of 16-bit samples.
 *
 *  @param suppressor  a suppressor.
 *  @param input       one frame.
 *  @param output      out: one frame; may be `input`.
 *  @return            1; 0 when a pointer is null, and nothing is then touched, the stream's history included.
 *
 *  Threads: one at a time for a suppressor.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API int32_t ORVA_DoNoiseSup16(ORVA_NOISESUP *suppressor, const int16_t *input, int16_t *output);

/** Destroys a suppressor.
 *
 *  @param suppressor  the suppressor, gone after the call; null does nothing.
 *  @return            true, or false for null.
 *
 *  Threads: any, while no other uses the suppressor.   Real time: no (frees memory).
 */
ORVA_API bool ORVA_DestroyNoiseSup(ORVA_NOISESUP *suppressor);

#endif
