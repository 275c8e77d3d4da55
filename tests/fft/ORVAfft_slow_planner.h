// Stands in for FFTW's planner in the program that it is linked into, and takes its time.
#pragma once

#include <atomic>

extern std::atomic<int> plans;       // how many it has been asked for
extern std::atomic<bool> isStopping; // lets the third be made, the first of the second length
