// What libkett does as Windows has it: names of files, their attributes, who else has them open, and the environment.
#include "KTio_replace.h"
#include "support/environment.h"
#include "support/folder.h"
#include "support/text.h"

#include <kett/KTenv.h>
#include <kett/KTio.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include <windows.h>

namespace
{

using support::Folder;
using support::readFile;
using support::wide;
using support::writeFile;

std::string contentOf(const std::string &path)
{
    KT_FILE *file = KTIO_Open(path.c_str(), "r");
    std::string content(static_cast<size_t>(KTIO_FileSize(file)), '\0');
    KTIO_ReadData(file, content.data(), content.size());
    EXPECT_TRUE(KTIO_CloseFile(file)) << path;
    return content;
}

// Without a detour through the characters of this program's runtime.
std::string in(const Folder &folder, const std::string &name)
{
    return folder.path.string() + "\\" + name;
}

// A folder within a folder within ... until the path is longer than Windows takes without more ado.
std::string newDeepFolder(const Folder &folder)
{
    std::string path = folder.path.string();
    while (path.size() < 400) {
        path += "\\" + std::string(50, 'f');
        EXPECT_TRUE(CreateDirectoryW((L"\\\\?\\" + wide(path)).c_str(), nullptr)) << path;
    }
    return path;
}

} // namespace

TEST(WindowsPaths, AreUtf8)
{
    const Folder folder;
    const std::string path =
        in(folder, "\xC3\xA9t\xC3\xA9 \xE5\x86\xAC \xF0\x9D\x84\x9E"); // two, three and four bytes
    EXPECT_FALSE(KTIO_FileExists(path.c_str()));
    EXPECT_TRUE(replace(path, "one"));
    EXPECT_TRUE(replace(path, "two"));
    EXPECT_TRUE(KTIO_FileExists(path.c_str()));
    EXPECT_EQ(contentOf(path), "two");
    EXPECT_NE(GetFileAttributesW(wide(path).c_str()), INVALID_FILE_ATTRIBUTES) << "under another name";
    EXPECT_TRUE(DeleteFileW(wide(path).c_str()));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

TEST(WindowsPaths, ThatAreNoUtf8FindNothing)
{
    const Folder folder;
    const std::string path = in(folder, "\xC3");
    EXPECT_FALSE(KTIO_FileExists(path.c_str()));
    EXPECT_EQ(KTIO_Open(path.c_str(), "r"), nullptr);
    EXPECT_EQ(KTIO_Open(path.c_str(), "w"), nullptr);
    EXPECT_TRUE(folder.entries().empty());
}

TEST(WindowsPaths, MayBeLong)
{
    const Folder folder;
    const std::string path = newDeepFolder(folder) + "\\" + std::string(200, 'n');
    EXPECT_TRUE(replace(path, "one"));
    EXPECT_TRUE(replace(path, "two"));
    EXPECT_TRUE(KTIO_FileExists(path.c_str()));
    EXPECT_EQ(contentOf(path), "two");
    EXPECT_TRUE(DeleteFileW((L"\\\\?\\" + wide(path)).c_str()));
}

TEST(WindowsPaths, TakeBothSeparatorsAndDots)
{
    const Folder folder;
    std::filesystem::create_directory(folder / "sub");
    EXPECT_TRUE(replace(folder.path.string() + "/sub/./../sub\\file", "one"));
    EXPECT_EQ(readFile(folder / "sub\\file"), "one");
}

TEST(WindowsPaths, OfDevicesAndFoldersAreNoFiles)
{
    const Folder folder;
    for (const auto &path :
         {std::string("NUL"), std::string("CON"), std::string("\\\\.\\NUL"), std::string("\\\\.\\pipe\\orva"),
          folder.path.string(), std::string("C:\\"), std::string()}) {
        EXPECT_EQ(KTIO_Open(path.c_str(), "r"), nullptr) << path;
        EXPECT_EQ(KTIO_Open(path.c_str(), "w"), nullptr) << path;
    }
}

TEST(WindowsFile, ThatIsReadOnlyFailsAtTheOpen)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    ASSERT_TRUE(SetFileAttributesA((folder / "file").c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(KTIO_Open((folder / "file").c_str(), "w"), nullptr);
    ASSERT_TRUE(SetFileAttributesA((folder / "file").c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(readFile(folder / "file"), "old");
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"file"});
}

// Who has the old file open, and does not let others put another in its place, keeps it.
TEST(WindowsFile, ThatIsHeldByAnotherStaysWhole)
{
    const Folder folder;
    const std::string path = folder / "file";
    writeFile(path, "old");
    KT_FILE *file = KTIO_Open(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(KTIO_WriteData(file, "new", 3), 3u);
    const HANDLE other =
        CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(KTIO_CloseFile(file));
    CloseHandle(other);
    EXPECT_EQ(readFile(path), "old");
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"file"});
}

// Writers may keep each other off, but never spoil the file.
TEST(WindowsFile, ThatSeveralWriteIsWhole)
{
    const Folder folder;
    const std::string path = folder / "file";
    ASSERT_TRUE(replaceOften(path, '-', 1));
    std::vector<std::thread> writers;
    for (const char letter : {'a', 'b', 'c'})
        writers.emplace_back([&path, letter] {
            for (int i = 0; i < 15; ++i)
                replaceOften(path, letter, 1);
        });
    for (auto &writer : writers)
        writer.join();
    EXPECT_TRUE(isWhole(readFile(path)));
    EXPECT_NE(readFile(path)[0], '-') << "nobody has written";
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"file"});
}

TEST(WindowsEnvironment, IsTheSystemsAndNotThatOfAnyRuntime)
{
    SetEnvironmentVariableW(L"KETT_TEST", L"\x00E9t\x00E9 \x51AC");
    EXPECT_EQ(std::getenv("KETT_TEST"), nullptr) << "this program's own runtime does not see it";
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_TEST"), "\xC3\xA9t\xC3\xA9 \xE5\x86\xAC");
    SetEnvironmentVariableW(L"KETT_TEST", L"");
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_TEST"), "");
    SetEnvironmentVariableW(L"KETT_TEST", nullptr);
    EXPECT_EQ(KTENV_GetEnvValue("KETT_TEST"), nullptr);
}

TEST(WindowsEnvironment, GivesTextsThatStay)
{
    support::setVariable("KETT_TEST", "one");
    const char *one = KTENV_GetEnvValue("KETT_TEST");
    support::setVariable("KETT_TEST", std::string(5000, 'x'));
    EXPECT_EQ(KTENV_GetEnvValue("KETT_TEST"), std::string(5000, 'x'));
    EXPECT_STREQ(one, "one");
    support::setVariable("KETT_TEST", "one");
    EXPECT_EQ(KTENV_GetEnvValue("KETT_TEST"), one) << "equal texts are kept once";
}
