#include "fft/ORVAfft_wisdom_text.h"

#include "fft/ORVAfft_internal.h"

#include <fftw3.h>

#include <cstdlib>

namespace orva
{

namespace
{

struct GrowingText {
    char *text; // null once memory is out
    size_t length;
    size_t room;
};

void append(char c, void *data)
{
    auto &wisdom = *static_cast<GrowingText *>(data);
    if (wisdom.text == nullptr)
        return;
    if (wisdom.length + 1 == wisdom.room) {
        auto *longer = static_cast<char *>(std::realloc(wisdom.text, 2 * wisdom.room));
        if (longer == nullptr)
            std::free(wisdom.text);
        wisdom.text = longer;
        wisdom.room *= 2;
        if (longer == nullptr)
            return;
    }
    wisdom.text[wisdom.length++] = c;
}

} // namespace

// Character by character: where FFTW makes the text itself, it ends the process for want of memory; and its C runtime may be
// another one than ours, so that the text would not be ours to free.
char *newWisdomText()
{
    if (!heapHoldsWisdom(0))
        return nullptr;
    constexpr size_t firstRoom = 4096;
    GrowingText wisdom = {static_cast<char *>(std::malloc(firstRoom)), 0, firstRoom};
    fftwf_export_wisdom(append, &wisdom);
    if (wisdom.text != nullptr)
        wisdom.text[wisdom.length] = '\0';
    return wisdom.text;
}

} // namespace orva
