// The store that keeps FFTW's wisdom between runs.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_wisdom_grammar.h"
#include "fft/ORVAfft_wisdom_text.h"
#include "platform/path.h"

#include <kett/KTenv.h>
#include <kett/KTio.h>
#include <kett/KTsettings.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

namespace orva
{

bool __FFTW_WisdomLoaded = false;

namespace
{

struct StorePath {
    char text[512]; // a longer path is cut
};

// Tells whether there is a folder for the store and the store is wanted; gives its path. Asked anew each
// time, since a host may set both at any time.
bool findStore(StorePath &path)
{
    const char *folder = KTENV_GetEnvValue("KT_DATA_PATH");
    if (folder == nullptr || !KTSETTINGS_GetBoolEx(nullptr, "orva.fftw.use_wisdom=[1]"))
        return false;
    std::snprintf(path.text, sizeof path.text, "%s%c%s", folder, pathSeparator, "ruko.optimization");
    return true;
}

// Far above what FFTW can come to know, and below what would be noticed in a host's memory.
constexpr int64_t longestStore = int64_t{64} << 20;

// All of a file and a terminating null, for fftwf_free. Null when the file is too long for a store, or when memory is out;
// a null file is an empty one.
char *readWhole(KT_FILE *file, int32_t &size)
{
    const int64_t length = KTIO_FileSize(file);
    if (length < 0 || length > longestStore)
        return nullptr;
    size = static_cast<int32_t>(length);
    const auto room = static_cast<size_t>(length) + 1;
    auto *text = static_cast<char *>(fftwf_malloc(room));
    if (text == nullptr)
        return nullptr;
    std::memset(text, 0, room);
    KTIO_ReadData(file, text, static_cast<uint64_t>(length));
    return text;
}

bool loadStore()
{
    StorePath path;
    if (__FFTW_WisdomLoaded || !findStore(path))
        return false;
    if (!KTIO_FileExists(path.text)) {
        __FFTW_WisdomLoaded = true;
        return false;
    }
    KT_FILE *file = KTIO_Open(path.text, "r"); // null reads as an empty store
    int32_t size = 0;
    char *text = readWhole(file, size);
    KTIO_CloseFile(file);
    if (text != nullptr && fitsWisdomGrammar({text, static_cast<size_t>(size)}) && heapHoldsWisdom(size))
        fftwf_import_wisdom_from_string(text);
    fftwf_free(text);
    __FFTW_WisdomLoaded = true; // a store that was refused is not read again either
    return true;
}

bool storeHolds(const char *path, std::span<const char> wisdom)
{
    if (!KTIO_FileExists(path))
        return false;
    KT_FILE *file = KTIO_Open(path, "r");
    if (file == nullptr)
        return false;
    int32_t size = 0;
    char *text = readWhole(file, size);
    KTIO_CloseFile(file);
    const bool isEqual = text != nullptr && static_cast<size_t>(size) == wisdom.size() &&
                         std::memcmp(text, wisdom.data(), wisdom.size()) == 0;
    fftwf_free(text);
    return isEqual;
}

bool writeStore(const char *path, std::span<const char> wisdom)
{
    KT_FILE *file = KTIO_Open(path, "w");
    if (file == nullptr)
        return false;
    // A write that fails leaves the store as it was, and counts as done: the next save finds the difference.
    KTIO_WriteData(file, wisdom.data(), wisdom.size());
    KTIO_CloseFile(file);
    return true;
}

bool saveStore()
{
    StorePath path;
    if (!findStore(path))
        return false;
    char *exported = newWisdomText();
    if (exported == nullptr)
        return false;
    const std::span<const char> wisdom(exported, std::strlen(exported));
    const bool isSaved = storeHolds(path.text, wisdom) || writeStore(path.text, wisdom);
    std::free(exported);
    return isSaved;
}

} // namespace

bool __FFTW_LoadWisdom()
{
    if (!enterPlanner())
        return false;
    const bool isRead = loadStore();
    leavePlanner();
    return isRead;
}

bool __FFTW_SaveWisdom()
{
    if (!enterPlanner())
        return false;
    const bool isSaved = saveStore();
    leavePlanner();
    return isSaved;
}

} // namespace orva
