// The threads of this process. One that has been joined may be there a little longer, in an emulator above all.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace support
{

inline std::ptrdiff_t threadsOfTheProcess()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

// False if there are more after a second.
inline bool threadsComeDownTo(std::ptrdiff_t count)
{
    constexpr auto step = std::chrono::milliseconds(5);
    for (int steps = 0; steps < 200 && threadsOfTheProcess() > count; ++steps)
        std::this_thread::sleep_for(step);
    return threadsOfTheProcess() <= count;
}

// Some tools start a thread of their own with the first; gives how many there are then.
inline std::ptrdiff_t threadsAfterTheFirst()
{
    std::thread([] {}).join();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return threadsOfTheProcess();
}

} // namespace support
