// Replaces the content of a file.
#pragma once

#include <kett/KTio.h>

#include <string>

inline bool replace(const std::string &path, const std::string &content)
{
    KT_FILE *const file = KTIO_Open(path.c_str(), "w");
    return file != nullptr && KTIO_WriteData(file, content.data(), content.size()) == content.size() &&
           KTIO_CloseFile(file);
}

// Replaces the file with a content that shows whose it is and that it is whole.
inline bool replaceOften(const std::string &path, char letter, int rounds)
{
    const std::string content(30000, letter);
    for (int i = 0; i < rounds; ++i)
        if (!replace(path, content))
            return false;
    return true;
}

inline bool isWhole(const std::string &content)
{
    return content.size() == 30000 && content.find_first_not_of(content[0]) == content.npos;
}
