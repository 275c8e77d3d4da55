#include "options.h"

#include <CLI/CLI.hpp>

namespace orva
{
namespace
{

void tell(CLI::Option &option, const OptionText &text)
{
    option.type_name(text.type);
    option.required(text.need == Need::required);
}

template <typename Number, typename Limit>
void addRanged(CLI::App &command, const OptionText &text, Number &value, Limit least, Limit most)
{
    CLI::Option &option = *command.add_option(text.name, value, text.description);
    tell(option, text);
    option.check(CLI::Range(least, most));
}

} // namespace

void beginProgram(CLI::App &program, const std::string &description, const std::string &version)
{
    program.description(description);
    program.set_version_flag("--version", version, "Print the version");
    program.require_subcommand(1);
    program.get_formatter()->column_width(28);
}

CLI::App &addCommand(CLI::App &program, const std::string &name, const std::string &description,
                     const std::function<void()> &run)
{
    CLI::App &command = *program.add_subcommand(name, description);
    command.callback(run);
    return command;
}

void addNotes(CLI::App &command, const std::string &notes)
{
    command.footer(notes);
}

void addText(CLI::App &command, const OptionText &text, std::string &value)
{
    tell(*command.add_option(text.name, value, text.description), text);
}

void addTexts(CLI::App &command, const OptionText &text, std::vector<std::string> &values)
{
    tell(*command.add_option(text.name, values, text.description), text);
}

void addNumber(CLI::App &command, const OptionText &text, int32_t &value, int32_t least, int32_t most)
{
    addRanged(command, text, value, least, most);
}

void addNumber(CLI::App &command, const OptionText &text, float &value, double least, double most)
{
    addRanged(command, text, value, least, most);
}

void addNumber(CLI::App &command, const OptionText &text, double &value, double least, double most)
{
    addRanged(command, text, value, least, most);
}

void addChoice(CLI::App &command, const OptionText &text, std::string &value,
               const std::vector<std::string> &choices)
{
    CLI::Option &option = *command.add_option(text.name, value, text.description);
    tell(option, text);
    option.check(CLI::IsMember(choices));
}

void addFlag(CLI::App &command, const std::string &name, const std::string &description, bool &value)
{
    command.add_flag(name, value, description);
}

void addRead(CLI::App &command, const OptionText &text, const std::function<void(const std::string &)> &read)
{
    tell(*command.add_option_function<std::string>(text.name, read, text.description), text);
}

void exclude(CLI::App &command, const std::string &name, const std::string &other)
{
    command.get_option(name)->excludes(other);
}

} // namespace orva
