// How the two libraries are built for one kind of processor, and what of their code changes the bits of results.
#pragma once

#include "disassembly.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

inline bool isFused(const Instruction &instruction)
{
    return instruction.name.starts_with("vfm") || instruction.name.starts_with("vfnm");
}

inline bool isX87Arithmetic(const Instruction &instruction)
{
    static const std::set<std::string> control = {"fldcw",  "fnstcw", "fldenv", "fnstenv", "fwait", "fnclex",
                                                  "fnstsw", "fninit", "fxsave", "fxrstor", "femms"};
    return instruction.name.starts_with("f") && !control.contains(instruction.name);
}

inline bool changesBits(const Instruction &instruction)
{
    return isFused(instruction) || isX87Arithmetic(instruction);
}

inline Lines objectsIn(const std::string &folder)
{
    Lines objects;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.path().string().ends_with(".cpp.o"))
            objects.push_back(entry.path());
    return objects;
}

// The object files of both libraries, built into a folder of their own that a later run finds up to date.
inline Lines objectsOf(const std::string &compiler, const std::string &flags)
{
    std::string folder = std::string(BUILD_FOLDER) + "/" + compiler + flags;
    std::erase(folder, ' ');
    const std::string c = compiler == "g++" ? "gcc" : "clang";
    support::linesOf("cmake -S '" SOURCE_DIR "' -B '" + folder +
                     "' -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_C_COMPILER=" + c +
                     " -DCMAKE_CXX_COMPILER=" + compiler + " -DCMAKE_CXX_FLAGS='" + flags +
                     "' -DORVA_BUILD_TESTS=OFF -DORVA_BUILD_EXAMPLES=OFF -DORVA_BUILD_PROGRAMS=OFF 2>&1");
    support::linesOf("cmake --build '" + folder + "' -j 1 --target orva 2>&1");
    return objectsIn(folder);
}

// Nothing that they consist of changes the bits of results.
inline void expectExactCode(const Lines &objects)
{
    EXPECT_GT(objects.size(), 60u);
    Scan result;
    for (const auto &object : objects)
        scan(object, changesBits, result);
    EXPECT_EQ(result.found, Lines{});
    EXPECT_GT(result.instructionCount, 10000u);
}

inline bool isForAvx512(const Instruction &instruction)
{
    return instruction.operands.find("%zmm") != std::string::npos ||
           instruction.operands.find("%k") != std::string::npos;
}

// With AVX every vector instruction has a name of its own, which starts with a v; two old names do so, too.
inline bool isForAvx(const Instruction &instruction)
{
    return instruction.name.starts_with("v") && instruction.name != "verr" && instruction.name != "verw";
}

inline bool contains(const std::string &text, const char *part)
{
    return text.find(part) != std::string::npos;
}

// What a level shares with the linker must not be one of several copies, of which it would keep any.
inline Lines sharedCopies(const std::string &object)
{
    Lines names;
    for (const auto &line : support::linesOf("nm '" + object + "'"))
        if (line.find_first_of("WVu") == 17)
            names.push_back(object + ": " + line);
    return names;
}

// Of objects that were built for every processor.
inline void expectWiderCodeInItsOwnObjects(const Lines &objects)
{
    Scan outside;
    Scan avx2;
    Scan avx512;
    for (const auto &object : objects) {
        const bool isAvx2 = contains(object, "_avx2.dir"), isAvx512 = contains(object, "_avx512.dir");
        if (isAvx512)
            scan(object, isForAvx512, avx512);
        else if (isAvx2)
            scan(object, isForAvx512, avx2);
        else
            scan(object, isForAvx, outside);
        if (isAvx2 || isAvx512 || contains(object, "_baseline.dir")) {
            EXPECT_EQ(sharedCopies(object), Lines{});
        }
    }
    EXPECT_EQ(outside.found, Lines{});
    EXPECT_EQ(avx2.found, Lines{});
    EXPECT_FALSE(avx512.found.empty());
    EXPECT_GT(avx2.instructionCount, 1000u);
}
