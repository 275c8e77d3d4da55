// Every picture of the documents is made by a script of its own name, is shown, and is small.
#include "document.h"

#include <gmock/gmock.h>

namespace
{

namespace fs = std::filesystem;

const fs::path project = PROJECT_SOURCE_DIR;

// The stems of the files of a folder with an extension, sorted.
std::vector<std::string> stemsIn(const char *folder, const char *extension)
{
    std::vector<std::string> stems;
    for (const auto &entry : fs::directory_iterator(project / folder))
        if (entry.path().extension() == extension)
            stems.push_back(entry.path().stem());
    std::sort(stems.begin(), stems.end());
    return stems;
}

std::vector<std::string> pictures()
{
    return stemsIn("docs/images", ".png");
}

// What all files of a folder with an extension hold, one after the other.
std::string textOf(const char *folder, const char *extension)
{
    std::string text;
    for (const auto &stem : stemsIn(folder, extension))
        text += support::readFile(project / folder / (stem + extension));
    return text;
}

} // namespace

TEST(Figures, AreMadeByAScript)
{
    const std::string scripts = textOf("docs/figures", ".py");
    for (const auto &picture : pictures())
        EXPECT_NE(scripts.find(", \"" + picture + "\")\n"), std::string::npos) << picture;
}

TEST(Figures, AreShownInADocument)
{
    const std::string documents = textOf("docs", ".md") + support::readFile(project / "README.md");
    for (const auto &picture : pictures())
        EXPECT_NE(documents.find("images/" + picture + ".png)"), std::string::npos) << picture;
}

TEST(Figures, AreSmall)
{
    for (const auto &picture : pictures())
        EXPECT_LT(fs::file_size(project / "docs/images" / (picture + ".png")), 100u << 10) << picture;
}
