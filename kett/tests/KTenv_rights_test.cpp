// A program that runs with the rights of another group than its user's.
#include "KTio_users.h"
#include "support/command.h"
#include "support/folder.h"

#include <vector>

#include <sys/stat.h>

using support::Folder;
using Names = std::vector<std::string>;

// Its environment comes from a user who may not do what the program may.
TEST(EnvRights, AProgramWithRaisedRightsTakesNothingFromItsEnvironment)
{
    ASSERT_EQ(geteuid(), 0u) << "the second group takes a superuser";
    const Folder folder;
    const std::string program = folder / "program";
    std::filesystem::copy_file(ENVIRONMENT_PROGRAM, program);
    EXPECT_EQ(support::linesOf("KETT_TEST=given '" + program + "'"), Names{"given published"});
    ASSERT_EQ(chown(program.c_str(), 0, nobody), 0);
    ASSERT_EQ(chmod(program.c_str(), 02755), 0); // runs with that group's rights
    EXPECT_EQ(support::linesOf("KETT_TEST=given '" + program + "'"), Names{"nothing published"});
}
