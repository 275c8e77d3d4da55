// A host that opens the library at run time and does not link it.
#pragma once

#include "support/environment.h"
#include "support/folder.h"
#include "support/library.h"

#include <orva/ORVAtypes.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

namespace host
{

using support::isMapped;

// Waits until a library is gone, which may be a moment after the last one who uses it; false after ten seconds.
inline bool goes(const std::string &library)
{
    for (int i = 0; i < 1000; ++i) {
        if (!isMapped(library))
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

// The library as long as this lives.
class Loaded
{
public:
    Loaded() : handle(support::openLibrary(LIBORVA)) {}

    ~Loaded()
    {
        unload();
    }

    Loaded(const Loaded &) = delete;
    Loaded &operator=(const Loaded &) = delete;

    void unload()
    {
        if (handle == nullptr)
            return;
        EXPECT_TRUE(support::closeLibrary(handle));
        handle = nullptr;
    }

    // Calls a function of the library, or of libkett below it. Variadic ones are called as such.
    template <class Result, class... Arguments> Result call(const char *name, Arguments... arguments) const
    {
        return symbol<Result (*)(Arguments...)>(name)(arguments...);
    }

    void set(const char *format, int value) const
    {
        symbol<bool (*)(void *, const char *, ...)>("KTSETTINGS_SetEx")(nullptr, format, value);
    }

private:
    template <class Function> Function symbol(const char *name) const
    {
        return reinterpret_cast<Function>(support::functionOf(handle, name));
    }

    void *handle;
};

// A folder named by KT_DATA_PATH in the environment of the process.
class DataFolder : public support::Folder
{
public:
    DataFolder()
    {
        support::setVariable("KT_DATA_PATH", path.string());
    }

    ~DataFolder()
    {
        support::unsetVariable("KT_DATA_PATH");
    }

    DataFolder(const DataFolder &) = delete;
    DataFolder &operator=(const DataFolder &) = delete;

    std::filesystem::path store() const
    {
        return path / "ruko.optimization";
    }

    bool hasStore() const
    {
        return std::filesystem::exists(store());
    }
};

// One round of a host's life: load, use, unload.
inline void useOnce()
{
    Loaded library;
    library.set("orva.test=%d", 1);
    library.call<bool>("KTENV_SetEnvValue", "ORVA_TEST", "value");
    auto *const fft = library.call<void *>("ORVA_FFTProcCreate", int32_t{64});
    alignas(64) std::array<float, 64> input = {1.0f};
    alignas(64) std::array<ORVA_COMPLEX, 33> output;
    EXPECT_EQ(library.call<int32_t>("ORVA_FFTProcExecute", fft, static_cast<const float *>(input.data()),
                                    output.data()),
              33);
    EXPECT_EQ(output[7].re, 1.0f);
    library.call<bool>("ORVA_FFTProcDestroy", fft);
}

// Long enough for a preparation to have begun with its first lengths.
constexpr auto untilThePreparationIsAtWork = std::chrono::milliseconds(60);

inline void startPreparation(const Loaded &library)
{
    library.set("orva.fftw.prepare_plans=%d", 1);
    library.set("orva.fftw.max_plan_len=%d", 16384);
    library.call<bool>("ORVA_OptimizeFFT", false);
}

} // namespace host
