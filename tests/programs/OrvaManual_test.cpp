// The manual pages and the completion of orva: they hold what its help does.
#include "orva.h"
#include "support/pattern.h"

#include <gmock/gmock.h>

namespace
{

using testing::HasSubstr;

std::vector<std::string> linesOf(const std::string &text)
{
    std::istringstream lines(text);
    std::vector<std::string> all;
    for (std::string line; std::getline(lines, line);)
        all.push_back(line);
    return all;
}

// The commands, or, with the name of one, its long options, as the help lists them.
std::vector<std::string> listed(const std::string &command)
{
    const support::Folder folder;
    const std::string help = orvaRun(command.empty() ? std::vector<std::string>{"--help"}
                                                     : std::vector{command, std::string("--help")},
                                     folder)
                                 .out;
    const support::Pattern pattern(command.empty() ? "^  ([a-z]+) .*" : "^  (?:-[a-z],)?(--[a-z-]+).*");
    std::vector<std::string> names;
    bool within = false;
    for (const auto &line : linesOf(help)) {
        within = (within && !line.empty()) || line == (command.empty() ? "Subcommands:" : "Options:");
        if (!within)
            continue;
        if (const auto groups = pattern.match(line))
            names.push_back((*groups)[1]);
    }
    return names;
}

// A manual page without what is for troff alone.
std::string page(const std::string &name)
{
    const support::Folder folder;
    std::string text = orvaShell("gzip -dc '" MANUAL "/" + name + ".1.gz'", folder).out;
    return support::Pattern("\\\\f[BIR]|\\\\(?=-)").replacedIn(text, "");
}

// What bash offers for the last of these words.
std::vector<std::string> completed(const std::string &words, const support::Folder &folder)
{
    return linesOf(orvaShell("source '" PROGRAMS_SOURCE_DIR "/orva/completion.bash'\n"
                             "COMP_WORDS=(orva " +
                                 words +
                                 ")\n"
                                 "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
                                 "_orva\n"
                                 "printf '%s\\n' \"${COMPREPLY[@]}\"",
                             folder)
                       .out);
}

} // namespace

TEST(OrvaManual, HasAPageForEachCommandWithItsOptionsAndExamples)
{
    const auto commands = listed("");
    ASSERT_GE(commands.size(), 8U);
    const std::string all = page("orva");
    for (const auto &command : commands) {
        EXPECT_THAT(all, HasSubstr("orva-" + command + "(1)"));
        const std::string text = page("orva-" + command);
        EXPECT_THAT(text, HasSubstr("\norva-" + command + " - ")) << command;
        const auto options = listed(command);
        EXPECT_GE(options.size(), 1U) << command;
        for (const auto &option : options)
            EXPECT_THAT(text, HasSubstr(option)) << command;
        EXPECT_THAT(text, HasSubstr("\n.SH EXAMPLES\n.nf\n$ orva ")) << command;
        for (const auto &line : linesOf(text))
            EXPECT_FALSE(line.starts_with(". ") || line.starts_with("'")) << command << ": " << line;
    }
}

TEST(OrvaManual, BashCompletesCommandsOptionsAndFiles)
{
    const support::Folder folder;
    auto commands = listed("");
    auto offered = completed("''", folder);
    commands.insert(commands.end(), {"--help", "--version"});
    EXPECT_EQ(offered, commands);
    EXPECT_EQ(completed("spec", folder), std::vector<std::string>{"spectrogram"});
    EXPECT_EQ(completed("spectrogram --", folder), listed("spectrogram"));
    EXPECT_EQ(completed("spectrogram voice.wav --ra", folder),
              (std::vector<std::string>{"--range", "--raw"}));
    EXPECT_EQ(completed("spectrogram vo", folder), std::vector<std::string>{""}) << "left to bash";
    EXPECT_EQ(completed("nonsense --", folder), std::vector<std::string>{""});
    const support::Outcome outcome =
        orvaShell("source '" PROGRAMS_SOURCE_DIR "/orva/completion.bash' && complete -p orva", folder);
    EXPECT_EQ(outcome.out, "complete -o bashdefault -o default -F _orva orva\n");
}

TEST(OrvaManual, BashCompletesTheValuesOfOptions)
{
    const support::Folder folder;
    std::filesystem::create_directory(folder.path / "a folder");
    support::writeFile(folder / "a file", "");
    putVoice(folder);
    const auto words = [](const std::string &list) {
        std::string lines = list;
        std::replace(lines.begin(), lines.end(), ' ', '\n');
        return linesOf(lines);
    };
    const struct {
        const char *typed;
        std::vector<std::string> offered;
    } cases[] = {
        {"resample a.wav b.wav --rate 4", words("44.1k 48k")},
        {"resample a.wav b.wav -r 4", words("44.1k 48k")},
        {"resample a.wav --bits ''", words("8 16 24 32 float double")},
        {"resample a.wav --bits = fl", words("float")},
        {"resample --into a", {"a folder"}},
        {"resample --into =", {"a folder"}},
        {"filter a.wav --raw u", words("u8 ulaw")},
        {"denoise a.wav --policy ''", words("0 1 2 3")},
        {"spectrogram a.wav --scale ''", words("linear mel bark")},
        {"spectrogram a.wav --scale =", words("linear mel bark")},
        {"spectrogram a.wav --channel a", words("all")},
        {"spectrogram a.wav --size ''", {""}},
    };
    for (const auto &[typed, offered] : cases)
        EXPECT_EQ(completed(typed, folder), offered) << typed;
}

// What is refused tells what there is.
TEST(OrvaManual, BashCompletesEachFormatAndWindowThatThereIs)
{
    const support::Folder folder;
    putVoice(folder);
    const struct {
        const char *command, *option, *before;
    } cases[] = {{"resample voice.wav o --rate=8k", "--format", "; there are "},
                 {"spectrogram voice.wav o.png", "--window", "; the windows are "}};
    for (const auto &[command, option, before] : cases) {
        const std::string line = std::string(command) + " " + option;
        const std::string refusal = orvaShell("orva " + line + " nonsense", folder).err;
        const size_t list = refusal.find(before);
        ASSERT_NE(list, std::string::npos) << refusal;
        const std::string names = refusal.substr(list + std::string(before).size());
        EXPECT_EQ(completed(line + " ''", folder), linesOf(support::Pattern(", ").replacedIn(names, "\n")))
            << line;
    }
}
