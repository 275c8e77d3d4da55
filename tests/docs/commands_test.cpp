// The commands in the documents do what the documents say: run against an installed build, in a folder of the document's
// named files. Those that no test can run name what is there.
#include "document.h"
#include "expected.h"
#include "support/program.h"
#include "support/recording.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

namespace fs = std::filesystem;

const fs::path project = PROJECT_SOURCE_DIR;

std::vector<Block> blocksOf(const Document &document, const std::string &language)
{
    std::vector<Block> found;
    std::copy_if(document.blocks.begin(), document.blocks.end(), std::back_inserter(found),
                 [&](const Block &block) { return block.language == language; });
    return found;
}

void runCommands(const Document &document, const std::string &prefix)
{
    const support::Folder folder;
    fs::create_symlink(support::recordingPath(), folder / "voice.wav");
    for (const auto &block : document.blocks)
        if (!block.name.empty())
            support::writeFile(folder / block.name, block.text);
    for (const auto &block : blocksOf(document, "sh")) {
        const support::Outcome outcome =
            support::run({"env", "PATH=" + prefix + "/bin:" + std::getenv("PATH"),
                          "PKG_CONFIG_PATH=" + prefix + "/lib/pkgconfig", "CMAKE_PREFIX_PATH=" + prefix,
                          "LD_LIBRARY_PATH=" + prefix + "/lib", "bash", "-euo", "pipefail", "-c", block.text},
                         folder);
        EXPECT_EQ(outcome.status, 0) << block.place() << ":\n" << outcome.err;
        EXPECT_TRUE(isAsExpected(outcome.out + outcome.err, block.output))
            << block.place() << ": writes\n"
            << outcome.out << outcome.err << "and not\n"
            << block.output;
    }
}

// The words of the commands in a console block, without "sudo" and comments.
std::vector<std::vector<std::string>> commandsIn(const Block &block)
{
    std::vector<std::vector<std::string>> commands;
    std::istringstream lines(block.text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("$ "))
            continue;
        std::istringstream words(line.substr(2, line.find(" # ") - 2));
        std::vector<std::string> command(std::istream_iterator<std::string>(words), {});
        if (command.at(0) == "sudo")
            command.erase(command.begin());
        commands.push_back(command);
    }
    return commands;
}

// Whether a command is a program of the project or of the system.
bool isThere(const std::string &command)
{
    if (command.find('/') == std::string::npos)
        return support::run({"bash", "-c", "command -v " + command}, support::Folder()).status == 0;
    return access((project / command).c_str(), X_OK) == 0;
}

} // namespace

TEST(Commands, OfTheDocumentsDoWhatTheySay)
{
    const support::Folder folder;
    const std::string prefix = folder / "prefix";
    ASSERT_EQ(support::run({"cmake", "--install", BUILD_DIR, "--prefix", prefix}, folder).status, 0);
    size_t count = 0;
    for (const auto &document : projectDocuments()) {
        const size_t commands = blocksOf(document, "sh").size();
        if (commands > 0)
            runCommands(document, prefix);
        count += commands;
    }
    EXPECT_GT(count, 0u);
}

TEST(Commands, ThatAreOnlyShownNameWhatIsThere)
{
    const std::string presets = support::readFile(project / "CMakePresets.json");
    for (const auto &document : projectDocuments())
        for (const auto &block : blocksOf(document, "console")) {
            EXPECT_FALSE(commandsIn(block).empty()) << block.place();
            for (const auto &command : commandsIn(block)) {
                EXPECT_TRUE(isThere(command.at(0))) << block.place() << ": " << command[0];
                const auto flag = std::find(command.begin(), command.end(), "--preset");
                const std::string preset = command.end() - flag > 1 ? flag[1] : "release";
                EXPECT_NE(presets.find("\"name\": \"" + preset + "\""), std::string::npos)
                    << block.place() << ": " << preset;
            }
        }
}
