// Files of two users in one folder.
#include "KTio_users.h"
#include "support/folder.h"

#include <vector>

#include <sys/stat.h>

using support::Folder;
using support::writeFile;
using Names = std::vector<std::string>;

// In a folder like /tmp everybody may write a file of mode 666, but only its owner may put another in its
// place.
TEST(IoRights, AStickyFolderFailsAtTheOpen)
{
    ASSERT_EQ(geteuid(), 0u) << "the second user takes a superuser";
    const Folder folder;
    chmod(folder.path.c_str(), 01777);
    writeFile(folder / "theirs", "old");
    chmod((folder / "theirs").c_str(), 0666);
    writeFile(folder / "ours", "old");
    giveAway(folder / "ours");
    {
        const OrdinaryUser user;
        EXPECT_EQ(KTIO_Open((folder / "theirs").c_str(), "w"), nullptr);
        EXPECT_TRUE(replace(folder / "ours", "new"));
        EXPECT_TRUE(replace(folder / "fresh", "new"));
    }
    EXPECT_TRUE(replace(folder / "theirs", "new"));
    EXPECT_TRUE(replace(folder / "ours", "newer"));
    EXPECT_EQ(folder.entries(), (Names{"fresh", "ours", "theirs"}));
    giveAway(folder.path);
    EXPECT_TRUE(replace(folder / "ours", "newest")) << "neither file nor folder is the superuser's";
    struct stat status;
    ASSERT_EQ(stat((folder / "ours").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, nobody) << "a superuser's replacement stays its owner's";
}
