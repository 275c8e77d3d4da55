// Files and folders of an ordinary user, whoever runs the test.
#pragma once

#include "KTio_replace.h"

#include <gtest/gtest.h>

#include <string>

#include <unistd.h>

constexpr uid_t nobody = 65534;

// As long as it lives, the rights are those of an ordinary user; a superuser may write everywhere.
class OrdinaryUser
{
public:
    OrdinaryUser() : before(geteuid())
    {
        if (before == 0) {
            EXPECT_EQ(seteuid(nobody), 0);
        }
    }

    ~OrdinaryUser()
    {
        EXPECT_EQ(seteuid(before), 0);
    }

    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    const uid_t before;
};

// A folder and a file that the ordinary user owns.
inline void giveAway(const std::string &path)
{
    if (geteuid() == 0) {
        ASSERT_EQ(chown(path.c_str(), nobody, static_cast<gid_t>(-1)), 0);
    }
}
