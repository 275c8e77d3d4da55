// The program orva: finds the command, checks how it is used, runs it, and tells in one line why it gave up.
#include "failure.h"
#include "library_message.h"
#include "messages.h"
#include "program.h"
#include "replacement.h"
#include "suggestion.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <string>
#include <vector>

namespace orva
{
namespace
{

const CLI::App *commandNamed(const CLI::App &program, const std::string &name)
{
    for (const CLI::App *command : program.get_subcommands([](const CLI::App *) { return true; }))
        if (command->get_name() == name)
            return command;
    return nullptr;
}

std::vector<std::string> namesOf(const CLI::App &command)
{
    std::vector<std::string> names;
    for (const CLI::App *sub : command.get_subcommands([](const CLI::App *) { return true; }))
        names.push_back(sub->get_name());
    return names;
}

std::vector<std::string> optionsOf(const CLI::App &command)
{
    std::vector<std::string> names;
    for (const CLI::Option *option : command.get_options())
        for (const std::string &name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

// Tells a word that there is no such command or option of before the parser says that something else is missing.
void checkWords(const CLI::App &program, const std::vector<std::string> &words)
{
    if (words.empty())
        failUse("a command is missing; see 'orva --help'");
    const CLI::App *command = commandNamed(program, words[0]);
    if (command == nullptr && words[0][0] != '-')
        failUse("there is no command '" + words[0] + "'" + suggestion(words[0], namesOf(program)) +
                "; see 'orva --help'");
    const CLI::App &used = command != nullptr ? *command : program;
    const auto known = optionsOf(used);
    for (size_t i = command != nullptr ? 1 : 0; i < words.size() && words[i] != "--"; ++i) {
        const std::string name = words[i].substr(0, words[i].find('='));
        if (name.size() > 2 && name.starts_with("--") &&
            std::find(known.begin(), known.end(), name) == known.end())
            failUse("there is no option '" + name + "'" + suggestion(name, known) + "; see 'orva " +
                    (command != nullptr ? words[0] + " " : "") + "--help'");
    }
}

// What is wrong with how a command is used, as the parser puts it, on one line.
std::string complaint(const CLI::ParseError &error)
{
    std::string text = error.what();
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

int tell(const std::string &command, const Failure &failure)
{
    if (!failure.text.empty())
        note(command + ": " + failure.text);
    return failure.status;
}

int run(int count, char **words)
{
    CLI::App program("", "orva");
    addCommands(program);

    std::string name = "orva";
    try {
        checkWords(program, std::vector<std::string>(words + 1, words + count));
        if (commandNamed(program, words[1]) != nullptr)
            name += std::string(" ") + words[1];
        program.parse(count, words);
    } catch (const CLI::Success &asked) {
        program.exit(asked);
    } catch (const CLI::ParseError &error) {
        return tell(name, {usedWrongly, complaint(error) + "; see '" + name + " --help'"});
    } catch (const Failure &failure) {
        return tell(name, failure);
    } catch (const std::bad_alloc &) {
        return tell(name, {didNotWork, "out of memory"});
    }
    if (std::fflush(stdout) != 0 || !std::cout.flush())
        return tell(name, {didNotWork, std::string("standard output: ") + std::strerror(errno)});
    return 0;
}

} // namespace
} // namespace orva

int main(int count, char **words)
{
    try {
        orva::removePartsOnSignals();
        orva::keepLibraryMessages();
        return orva::run(count, words);
    } catch (...) { // only where there is no memory even to say so
        std::fputs("orva: out of memory\n", stderr);
        return orva::didNotWork;
    }
}
