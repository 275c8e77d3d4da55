// A file that takes the place of another in one step when it is complete. It is written beside its place, and goes again
// if the program gives up or is ended by a signal.
#pragma once

#include <string>

namespace orva
{

// From now on a signal that ends the program first removes what is half written.
void removePartsOnSignals();

class Replacement
{
public:
    // Refuses a place that cannot be written. A symbolic link at `path` stays, and what it leads to is replaced.
    explicit Replacement(const std::string &path);
    ~Replacement();
    Replacement(const Replacement &) = delete;
    Replacement &operator=(const Replacement &) = delete;

    // To write to.
    int descriptor() const
    {
        return file;
    }

    // Closes the file and moves it into its place.
    void commit();

private:
    std::string name;   // as it was given
    std::string target; // without symbolic links
    int slot = -1;      // where the name of the part stands
    int file = -1;
};

// Writes all of it; the name is for the message where that fails.
void writeAll(int descriptor, const std::string &bytes, const std::string &name);

// Whether something at `path` is to be written into and not to be replaced: a device, a pipe.
bool isStream(const std::string &path);

} // namespace orva
