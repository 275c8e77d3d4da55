// The file that a picture goes into: PNG, SVG or PDF, as the ending of its name tells.
#pragma once

#include "replacement.h"

#include <memory>
#include <string>

namespace orva
{

struct PictureOptions {
    std::string path;                 // empty: no picture; "-": PNG on standard output
    double widthCm = 0, heightCm = 0; // 0: as wide and high as the picture is made to be
    int dotsPerInch = 150;            // of a PNG
};

enum class PictureFormat { png, svg, pdf };

class PictureFile
{
public:
    // Refuses a name with another ending, as used wrongly, and a place that cannot be written.
    explicit PictureFile(const PictureOptions &options);
    ~PictureFile();
    PictureFile(const PictureFile &) = delete;
    PictureFile &operator=(const PictureFile &) = delete;

    const PictureOptions &options() const
    {
        return wanted;
    }

    PictureFormat format() const
    {
        return kind;
    }

    bool isStandardOutput() const
    {
        return wanted.path == "-";
    }

    // Writes all that it is to hold and puts it in its place.
    void write(const std::string &bytes);

private:
    PictureOptions wanted;
    PictureFormat kind;
    std::unique_ptr<Replacement> replacement;
    int stream = -1; // what is written into as it is: standard output, a pipe, a device
};

} // namespace orva
