// A host that opens the library at run time and does not link it.
#pragma once

#include "support/folder.h"

#include <orva/ORVAtypes.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <dlfcn.h>

namespace host
{

inline bool isMapped(const std::string &library)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("/" + library) != std::string::npos)
            return true;
    return false;
}

// The library as long as this lives.
class Loaded
{
public:
    Loaded() : handle(dlopen(LIBORVA, RTLD_NOW | RTLD_LOCAL))
    {
        if (handle == nullptr)
            throw std::runtime_error(dlerror());
    }

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
        EXPECT_EQ(dlclose(handle), 0);
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
        void *address = dlsym(handle, name);
        if (address == nullptr)
            throw std::runtime_error(dlerror());
        return reinterpret_cast<Function>(address);
    }

    void *handle;
};

// A folder named by KT_DATA_PATH in the environment of the process.
class DataFolder : public support::Folder
{
public:
    DataFolder()
    {
        setenv("KT_DATA_PATH", path.c_str(), 1);
    }

    ~DataFolder()
    {
        unsetenv("KT_DATA_PATH");
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
