// The options of a command, told without the parser's own header, with which each file would take ten seconds more to
// compile.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace orva
{

enum class Need { optional, required };

// How the help tells an option. Without a minus, the name is that of an argument, which has its place.
struct OptionText {
    std::string name; // such as "input", "--frame" or "-r,--rate"
    std::string type; // what its value is called, such as "N"
    std::string description;
    Need need = Need::optional;
};

// What the program is for, and what --version tells. One command of it has to be given.
void beginProgram(CLI::App &program, const std::string &description, const std::string &version);

// A command of the program, and what is done when it is given.
CLI::App &addCommand(CLI::App &program, const std::string &name, const std::string &description,
                     const std::function<void()> &run);

template <typename Options> struct CommandWith {
    CLI::App &command;
    Options &options;
};

// The same for one whose options write into a record of its own.
template <typename Options>
CommandWith<Options> addCommand(CLI::App &program, const std::string &name, const std::string &description,
                                void (*run)(const Options &))
{
    const auto options = std::make_shared<Options>();
    return {addCommand(program, name, description, [options, run] { run(*options); }), *options};
}

// What the help tells below the options.
void addNotes(CLI::App &command, const std::string &notes);

// Each writes its value only if the option is given; the number outside its range, both ends of which it has, and the word
// that is not one of `choices` are refused as used wrongly.
void addText(CLI::App &command, const OptionText &text, std::string &value);
void addTexts(CLI::App &command, const OptionText &text, std::vector<std::string> &values);
void addNumber(CLI::App &command, const OptionText &text, int32_t &value, int32_t least, int32_t most);
void addNumber(CLI::App &command, const OptionText &text, float &value, double least, double most);
void addNumber(CLI::App &command, const OptionText &text, double &value, double least, double most);
void addChoice(CLI::App &command, const OptionText &text, std::string &value,
               const std::vector<std::string> &choices);
void addFlag(CLI::App &command, const std::string &name, const std::string &description, bool &value);

// An option whose text is read by `read`, which throws a Failure for what it refuses.
void addRead(CLI::App &command, const OptionText &text, const std::function<void(const std::string &)> &read);

// The two options, such as "--hold" and "--order", cannot be given together.
void exclude(CLI::App &command, const std::string &name, const std::string &other);

} // namespace orva
