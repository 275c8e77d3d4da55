// Flags that would change results are refused when a build is configured, whoever adds them.
#include "support/program.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

support::Outcome configureWith(const std::string &flags, const support::Folder &folder)
{
    return support::run({"cmake", "-S", SOURCE_DIR, "-B", folder / "build", "-DORVA_BUILD_TESTS=OFF",
                         "-DORVA_BUILD_EXAMPLES=OFF", "-DORVA_BUILD_PROGRAMS=OFF",
                         "-DCMAKE_CXX_FLAGS=" + flags},
                        folder);
}

std::string withoutLineBreaks(std::string text)
{
    std::string result;
    for (const char c : text)
        if (c != '\n' && (c != ' ' || !result.ends_with(' ')))
            result += c;
        else if (c == '\n' && !result.ends_with(' '))
            result += ' ';
    return result;
}

} // namespace

TEST(Flags, ThatChangeResultsAreRefusedByName)
{
    const support::Folder folder; // one build folder, so that the compiler is looked at once
    for (const std::string flag :
         {"-Ofast", "-ffast-math", "-funsafe-math-optimizations", "-fassociative-math", "-freciprocal-math",
          "-ffinite-math-only", "-fno-signed-zeros", "-fsingle-precision-constant", "-fcx-limited-range",
          "-fcx-fortran-rules", "-ffp-model=fast", "-mfpmath=387", "-mfpmath=both", "-mdaz-ftz"}) {
        const auto outcome = configureWith("-O2 " + flag + " -g", folder);
        EXPECT_NE(outcome.status, 0) << flag;
        EXPECT_NE(withoutLineBreaks(outcome.err)
                      .find("The flag " + flag +
                            " changes the bits of results, which liborva promises: build it without."),
                  std::string::npos)
            << flag << "\n"
            << outcome.err;
    }
}

TEST(Flags, OfADistributorAreTaken)
{
    const support::Folder folder;
    const auto outcome =
        configureWith("-g -O3 -march=native -flto=auto -fno-math-errno -fstack-protector-strong", folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}
