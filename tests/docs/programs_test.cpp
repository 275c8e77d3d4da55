// Every program and fragment in the documents compiles without a warning and does what the document says.
#include "program.h"

#include <gmock/gmock.h>

// How a failure names the block. GoogleTest looks for it beside Block, so it stands in no namespace.
static void PrintTo(const Block &block, std::ostream *out)
{
    *out << block.place();
}

namespace
{

std::vector<Block> programs()
{
    std::vector<Block> found;
    for (const auto &document : projectDocuments())
        for (const auto &block : document.blocks)
            if (block.isRun() && block.name.empty())
                found.push_back(block);
    return found;
}

// Such as docs_window_2, the second program of docs/window.md.
std::string nameOf(const testing::TestParamInfo<Block> &parameter)
{
    const auto all = programs();
    const auto count =
        std::count_if(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(parameter.index) + 1,
                      [&](const Block &b) { return b.document == parameter.param.document; });
    std::string name = parameter.param.document.substr(0, parameter.param.document.size() - 3);
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '/' || c == '-'; }, '_');
    return name + "_" + std::to_string(count);
}

class Programs : public testing::TestWithParam<Block>
{
};

} // namespace

TEST_P(Programs, DoWhatTheirDocumentSays)
{
    EXPECT_EQ(faultOfProgram(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(Documents, Programs, testing::ValuesIn(programs()), nameOf);

TEST(DocumentsOfTheProject, HaveNoBlockThatNobodyChecks)
{
    for (const auto &document : projectDocuments())
        EXPECT_THAT(document.faults, testing::ElementsAre()) << document.path;
}

TEST(DocumentsOfTheProject, ShowEachExampleAsItStands)
{
    namespace fs = std::filesystem;
    const fs::path project = PROJECT_SOURCE_DIR;
    std::vector<std::string> shown;
    for (const auto &document : projectDocuments())
        for (const auto &block : document.blocks)
            if (!block.file.empty()) {
                EXPECT_EQ(block.text, support::readFile(project / block.file)) << block.place();
                shown.push_back(block.file);
            }
    std::vector<std::string> examples;
    for (const auto &entry : fs::directory_iterator(project / "examples"))
        if (entry.path().extension() == ".c")
            examples.push_back("examples/" + entry.path().filename().string());
    EXPECT_THAT(shown, testing::UnorderedElementsAreArray(examples));
}
