// FFTW stays loaded, and its planner is one for the whole process.
#pragma once

namespace orva
{

// Keeps FFTW loaded to the end of the process. Its planner, and what the planner has allocated, then outlives our
// unloading and serves the next load, instead of being left behind at every round.
//
// Where FFTW has a lock of its own for the planner, it is switched on: so plans are made and destroyed one at a time in the
// whole process, whoever does it. It covers no wisdom: that is read and written under our own lock alone.
void pinFFTW();

} // namespace orva
