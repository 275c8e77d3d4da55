#include "picture_file.h"

#include "failure.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace orva
{
namespace
{

PictureFormat formatOf(const std::string &path)
{
    if (path == "-")
        return PictureFormat::png;
    std::string ending = path.substr(path.size() - std::min<size_t>(path.size(), 4));
    for (char &letter : ending)
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    if (ending == ".png")
        return PictureFormat::png;
    if (ending == ".svg")
        return PictureFormat::svg;
    if (ending == ".pdf")
        return PictureFormat::pdf;
    failUse(path + ": the name of a picture ends in .png, .svg or .pdf");
}

} // namespace

PictureFile::PictureFile(const PictureOptions &options) : wanted(options), kind(formatOf(options.path))
{
    if (isStandardOutput() && isatty(STDOUT_FILENO) != 0)
        failUse("standard output is a terminal; send the picture into a file or another program");
    if (isStandardOutput() || isStream(wanted.path)) {
        stream = isStandardOutput() ? dup(STDOUT_FILENO) : open(wanted.path.c_str(), O_WRONLY | O_CLOEXEC);
        if (stream < 0)
            fail(wanted.path + ": " + std::strerror(errno));
    } else {
        replacement = std::make_unique<Replacement>(wanted.path);
    }
}

PictureFile::~PictureFile()
{
    if (stream >= 0)
        close(stream);
}

void PictureFile::write(const std::string &bytes)
{
    writeAll(replacement != nullptr ? replacement->descriptor() : stream, bytes,
             isStandardOutput() ? "standard output" : wanted.path);
    if (replacement != nullptr)
        replacement->commit();
}

} // namespace orva
