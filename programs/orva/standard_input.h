// Pipes that libsndfile can read.
#pragma once

namespace orva
{

// A descriptor with what stands in standard input: itself, or one of readableStream().
int readableInput(bool raw);

// A descriptor with what comes out of `stream`, which is closed or goes on being read. WAV, AU and raw samples, which
// libsndfile reads as they come, are passed on; anything else goes into a file without a name first.
int readableStream(int stream, bool raw);

} // namespace orva
