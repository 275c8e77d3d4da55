// What becomes of the target when writing it goes wrong.
#include "support/folder.h"

#include <kett/KTio.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using support::Folder;
using support::readFile;
using support::writeFile;
using Names = std::vector<std::string>;

} // namespace

TEST(IoFailure, AFolderThatHasTakenTheTargetsPlaceStays)
{
    const Folder folder;
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "w");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(KTIO_WriteData(file, "new", 3), 3u);
    std::filesystem::create_directory(folder / "file");
    EXPECT_FALSE(KTIO_CloseFile(file));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "file"));
    EXPECT_EQ(folder.entries(), Names{"file"});
}
