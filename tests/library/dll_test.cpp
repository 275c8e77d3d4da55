// The two DLLs: what they export, which DLLs they need, and what they tell of themselves.
#include "names.h"
#include "support/folder.h"
#include "support/library.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <vector>

namespace
{

struct Dll {
    const char *path;
    const char *list; // of exported names
    Names needs;
    std::string version;
    std::string description;
};

const Dll dlls[] = {
    {LIBKETT,
     SOURCE_DIR "/kett/exports.txt",
     {"KERNEL32.dll", "msvcrt.dll", "ntdll.dll"},
     "1.0.0.0",
     "Foundation of liborva"},
    {LIBORVA,
     SOURCE_DIR "/src/exports.txt",
     {"KERNEL32.dll", "libfftw3f-3.dll", "libkett.dll", "msvcrt.dll", "ucrtbase.dll"},
     "3.7.18.0",
     "Audio signal processing routines with a plain C interface"},
};

// A loaded module as the loader sees it.
class Image
{
public:
    explicit Image(const char *path) : base(static_cast<const std::byte *>(support::openLibrary(path))) {}

    ~Image()
    {
        support::closeLibrary(const_cast<std::byte *>(base));
    }

    Image(const Image &) = delete;
    Image &operator=(const Image &) = delete;

    Names exported() const
    {
        const auto *exports = at<IMAGE_EXPORT_DIRECTORY>(directory(IMAGE_DIRECTORY_ENTRY_EXPORT));
        const auto *names = at<DWORD>(exports->AddressOfNames);
        EXPECT_EQ(exports->NumberOfFunctions, exports->NumberOfNames) << "exported by number alone";
        Names all;
        for (DWORD i = 0; i < exports->NumberOfNames; ++i)
            all.insert(at<char>(names[i]));
        return all;
    }

    Names needed() const
    {
        Names all;
        const auto *import = at<IMAGE_IMPORT_DESCRIPTOR>(directory(IMAGE_DIRECTORY_ENTRY_IMPORT));
        for (; import->Name != 0; ++import)
            all.insert(at<char>(import->Name));
        return all;
    }

private:
    template <class T> const T *at(DWORD offset) const
    {
        return reinterpret_cast<const T *>(base + offset);
    }

    DWORD directory(int entry) const
    {
        const auto *dos = at<IMAGE_DOS_HEADER>(0);
        const auto *headers = at<IMAGE_NT_HEADERS>(static_cast<DWORD>(dos->e_lfanew));
        return headers->OptionalHeader.DataDirectory[entry].VirtualAddress;
    }

    const std::byte *base;
};

Names listed(const char *list)
{
    Names names;
    std::istringstream lines(support::readFile(list));
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && line[0] != '#' && line[0] != '[')
            names.insert(line);
    return names;
}

// The version resource of a file, as the properties of the file show it.
class Version
{
public:
    explicit Version(const char *path) : content(GetFileVersionInfoSizeA(path, nullptr))
    {
        EXPECT_FALSE(content.empty()) << path;
        EXPECT_TRUE(GetFileVersionInfoA(path, 0, static_cast<DWORD>(content.size()), content.data()));
    }

    std::string numbers() const
    {
        const auto *fixed = static_cast<const VS_FIXEDFILEINFO *>(value("\\"));
        std::ostringstream text;
        text << HIWORD(fixed->dwFileVersionMS) << '.' << LOWORD(fixed->dwFileVersionMS) << '.'
             << HIWORD(fixed->dwFileVersionLS) << '.' << LOWORD(fixed->dwFileVersionLS);
        return text.str();
    }

    std::string text(const std::string &name) const
    {
        return static_cast<const char *>(value("\\StringFileInfo\\040904B0\\" + name));
    }

private:
    const void *value(const std::string &name) const
    {
        void *found = nullptr;
        UINT size = 0;
        if (!VerQueryValueA(content.data(), name.c_str(), &found, &size))
            throw std::runtime_error(name + ": not there");
        return found;
    }

    std::vector<char> content;
};

} // namespace

TEST(Dll, ExportsWhatIsListedAndNothingElse)
{
    for (const Dll &dll : dlls)
        EXPECT_EQ(Image(dll.path).exported(), listed(dll.list)) << dll.path;
}

TEST(Dll, NeedsNoDllOfTheCompiler)
{
    for (const Dll &dll : dlls)
        EXPECT_EQ(Image(dll.path).needed(), dll.needs) << dll.path;
}

TEST(Dll, TellsItsVersionAndWhatItIs)
{
    for (const Dll &dll : dlls) {
        const Version version(dll.path);
        const std::string file = std::filesystem::path(dll.path).filename().string();
        EXPECT_EQ(version.numbers(), dll.version) << file;
        EXPECT_EQ(version.text("FileDescription"), dll.description) << file;
        EXPECT_EQ(version.text("OriginalFilename"), file);
        EXPECT_EQ(version.text("ProductVersion"), "3.7.18") << file;
    }
}
