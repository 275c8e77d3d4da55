// Collects what the libraries log, so that a test can compare every message whole and count them.
#pragma once

#include <kett/KTdebug.h>

#include <ostream>
#include <string>
#include <vector>

namespace support
{

struct Message {
    int32_t level;
    int32_t code;
    std::string text;

    bool operator==(const Message &) const = default;
};

inline std::ostream &operator<<(std::ostream &out, const Message &message)
{
    return out << "level " << message.level << ", code " << message.code << ": \"" << message.text << '"';
}

// Takes the place of the default sink as long as it lives.
class Log
{
public:
    Log()
    {
        KTDEBUG_SetSink(keep, this);
    }

    ~Log()
    {
        KTDEBUG_SetSink(nullptr, nullptr);
    }

    Log(const Log &) = delete;
    Log &operator=(const Log &) = delete;

    std::vector<Message> messages;

private:
    static void keep(void *context, int32_t level, int32_t code, const char *text)
    {
        static_cast<Log *>(context)->messages.push_back({level, code, text});
    }
};

inline Message error(const std::string &text)
{
    return {KTDEBUG_LEVEL_ERROR, -1, text};
}

inline Message warning(const std::string &text)
{
    return {KTDEBUG_LEVEL_WARNING, -1, text};
}

inline Message terminalError(const std::string &text)
{
    return {KTDEBUG_LEVEL_TERMINAL, -1, text};
}

} // namespace support
