// FFTW stays loaded when the library that brought it is unloaded. This program is linked with neither.
#include <gtest/gtest.h>

#include <cstdlib>

#include <dlfcn.h>

namespace
{

bool isLoaded(const char *library)
{
    void *handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

} // namespace

TEST(FftwPin, FftwOutlivesTheLibrary)
{
    unsetenv("KT_DATA_PATH");
    const char *const fftw = "libfftw3f.so.3";
    ASSERT_FALSE(isLoaded(fftw));
    for (int round = 0; round < 3; ++round) {
        void *orva = dlopen(ORVA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(orva, nullptr) << dlerror();
        EXPECT_TRUE(isLoaded(fftw));
        EXPECT_EQ(dlclose(orva), 0);
        EXPECT_FALSE(isLoaded(ORVA_LIBRARY));
        EXPECT_TRUE(isLoaded(fftw));
    }
}
