// Writes the manual pages into a folder, from what the commands say of themselves: orva(1) and one for each command.
// Usage: orva_manual FOLDER VERSION
#include "program.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <sstream>

namespace orva
{
namespace
{

// Text as troff takes it: nothing of it is a request, and a minus is a minus.
std::string plain(const std::string &text)
{
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool starts = i == 0 || text[i - 1] == '\n';
        if (starts && (text[i] == '.' || text[i] == '\''))
            result += "\\&";
        if (text[i] == '\\')
            result += "\\e";
        else if (text[i] == '-')
            result += "\\-";
        else
            result += text[i];
    }
    return result;
}

std::string bold(const std::string &text)
{
    return "\\fB" + plain(text) + "\\fR";
}

std::string italic(const std::string &text)
{
    return "\\fI" + plain(text) + "\\fR";
}

bool isPositional(const CLI::Option *option)
{
    return option->get_positional();
}

std::string namesOf(const CLI::Option &option)
{
    std::string names;
    for (const std::string &name : option.get_snames())
        names += bold("-" + name) + ", ";
    for (const std::string &name : option.get_lnames())
        names += bold("--" + name) + ", ";
    names.resize(names.size() - 2);
    return option.get_items_expected_max() > 0 ? names + " " + italic(option.get_type_name()) : names;
}

std::string synopsisOf(const CLI::App &command)
{
    std::string line = bold("orva " + command.get_name()) + " [" + italic("OPTION") + "]...";
    for (const CLI::Option *option : command.get_options(isPositional)) {
        std::string name = option->get_name();
        for (char &letter : name)
            letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        name = italic(name) + (option->get_items_expected_max() > 1 ? "..." : "");
        line += option->get_required() ? " " + name : " [" + name + "]";
    }
    return line;
}

void writeOptions(std::ostream &page, const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options(isPositional)) {
        std::string name = option->get_name();
        for (char &letter : name)
            letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        page << ".TP\n" << italic(name) << '\n' << plain(option->get_description()) << '\n';
    }
    for (const CLI::Option *option : app.get_options())
        if (!option->get_positional())
            page << ".TP\n" << namesOf(*option) << '\n' << plain(option->get_description()) << '\n';
}

// The text below the options: paragraphs, lines that stand as they are, and the examples.
void writeNotes(std::ostream &page, const std::string &footer)
{
    std::istringstream lines(footer);
    bool verbatim = false;
    for (std::string line; std::getline(lines, line);) {
        const bool indented = line.starts_with("  ");
        if (verbatim != indented)
            page << (indented ? ".nf\n" : ".fi\n");
        verbatim = indented;
        if (line == "Examples:")
            page << ".SH EXAMPLES\n";
        else if (line.empty())
            page << ".PP\n";
        else
            page << plain(indented ? line.substr(2) : line) << '\n';
    }
    if (verbatim)
        page << ".fi\n";
}

void writeEnd(std::ostream &page, const std::string &seeAlso)
{
    page << ".SH \"EXIT STATUS\"\n0, 1 if it did not work, 2 if it was used wrongly.\n.SH \"SEE ALSO\"\n"
         << seeAlso << '\n';
}

std::ofstream begin(const std::string &folder, const std::string &name, const std::string &version,
                    const std::string &purpose)
{
    std::ofstream page(folder + "/" + name + ".1");
    std::string title = name;
    for (char &letter : title)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    page << ".TH " << plain(title) << " 1 \"\" \"liborva " << version << "\" \"User Commands\"\n.SH NAME\n"
         << plain(name) << " \\- " << plain(purpose) << "\n.SH SYNOPSIS\n";
    return page;
}

// "Tell what ..." in a list of pages: without the capital.
std::string purposeOf(const CLI::App &command)
{
    std::string text = command.get_description();
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    return text;
}

bool writePages(const CLI::App &program, const std::string &folder, const std::string &version)
{
    std::ofstream all = begin(folder, "orva", version, "run audio signal processing routines on sound files");
    all << bold("orva") << ' ' << italic("COMMAND") << " [" << italic("OPTION") << "]... " << italic("FILE")
        << "...\n.SH DESCRIPTION\n";
    writeNotes(all, program.get_footer());
    all << ".SH COMMANDS\n";
    std::string pages;
    bool written = true;
    for (const CLI::App *command : program.get_subcommands([](const CLI::App *) { return true; })) {
        const std::string name = "orva-" + command->get_name();
        all << ".TP\n" << bold(command->get_name()) << '\n' << plain(command->get_description()) << '\n';
        pages += (pages.empty() ? "" : ",\n") + bold(name) + "(1)";
        std::ofstream page = begin(folder, name, version, purposeOf(*command));
        page << synopsisOf(*command) << "\n.SH DESCRIPTION\n"
             << plain(command->get_description()) << ".\n.SH OPTIONS\n";
        writeOptions(page, *command);
        if (!command->get_footer().empty()) {
            page << (command->get_footer().starts_with("Examples:") ? "" : ".SH NOTES\n");
            writeNotes(page, command->get_footer());
        }
        writeEnd(page, bold("orva") + "(1)");
        written = written && page.flush();
    }
    all << ".SH OPTIONS\n";
    writeOptions(all, program);
    writeEnd(all, pages);
    return written && all.flush();
}

} // namespace
} // namespace orva

int main(int count, char **words)
{
    CLI::App program("", "orva");
    orva::addCommands(program);
    if (count == 3 && orva::writePages(program, words[1], words[2]))
        return 0;
    std::cerr << "orva_manual: not written\n";
    return 1;
}
