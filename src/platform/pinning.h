// FFTW stays loaded.
#pragma once

namespace orva
{

// Keeps FFTW loaded to the end of the process. Its planner, and what the planner has allocated, then outlives our
// unloading and serves the next load, instead of being left behind at every round.
void pinFFTW();

} // namespace orva
