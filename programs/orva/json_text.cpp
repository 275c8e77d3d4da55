#include "json_text.h"

#include "drawing/lettering.h"

#include <cstdio>

namespace orva
{

std::string jsonText(const std::string &bytes)
{
    std::string text = "\"";
    for (size_t i = 0; i < bytes.size();) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const size_t length = utf8Sequence(bytes.c_str() + i);
        if (byte < 0x20 || byte == 0x7f) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(byte));
            text += escape;
        } else if (byte == '"' || byte == '\\') {
            text += {'\\', static_cast<char>(byte)};
        } else {
            text += length > 0 ? bytes.substr(i, length) : "\uFFFD";
        }
        i += length > 0 ? length : 1;
    }
    return text + "\"";
}

} // namespace orva
