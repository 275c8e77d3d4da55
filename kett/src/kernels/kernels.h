// The hot loops. Those of `plain` are the definitions, term by term, and what the tests hold the others
// against; those of `wide` give the same bits for every input, any not-a-number counting as equal to any
// other, and take arrays of any alignment. A count of zero or below is an empty array.
#pragma once

#include <cstdint>

namespace kett
{

// The largest absolute value and its first place; 0.0f and 0 where none is above zero.
struct Peak {
    float magnitude;
    int32_t place;
};

namespace plain
{

void multiply(float *vector, int32_t count, float factor);

double sumOfSquares(const float *vector, int32_t count);

Peak findPeak(const float *vector, int32_t count);

void toWord16(const float *input, int16_t *output, int32_t count);

void fromWord16(const int16_t *input, float *output, int32_t count);

// A filter of `coefficientCount` >= 1 coefficients.
void filterBlock(const double *denominator, const double *numerator, int32_t coefficientCount, double *state,
                 const float *input, double *output, int32_t sampleCount);

} // namespace plain

namespace wide
{

void multiply(float *vector, int32_t count, float factor);
float largestMagnitude(const float *vector, int32_t count); // of findPeak()
Peak findPeak(const float *vector, int32_t count);
void toWord16(const float *input, int16_t *output, int32_t count);
void fromWord16(const int16_t *input, float *output, int32_t count);
void filterBlock(const double *denominator, const double *numerator, int32_t coefficientCount, double *state,
                 const float *input, double *output, int32_t sampleCount);

} // namespace wide

} // namespace kett
