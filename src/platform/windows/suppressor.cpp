// The suppressor's functions as they are called, each passed on to the DLL that has it. No package brings that DLL, so it is
// looked for beside this library, and not before somebody wants a suppressor: all else works without it.
#include "noisesup/ORVAnoisesup_webrtc.h"

#include <kett/KTdebug.h>

#include <array>
#include <cstring>
#include <cwchar>

#include <windows.h>

namespace orva
{

namespace
{

constexpr wchar_t fileName[] = L"libwebrtc_audio_processing-1.dll";

struct Suppressor {
    decltype(&WebRtcNs_Create) create;
    decltype(&WebRtcNs_Free) free;
    decltype(&WebRtcNs_Init) init;
    decltype(&WebRtcNs_set_policy) setPolicy;
    decltype(&WebRtcNs_Process) process;
    decltype(&WebRtcSpl_AnalysisQMF) analyse;
    decltype(&WebRtcSpl_SynthesisQMF) synthesise;
};

Suppressor suppressor;
INIT_ONCE found = INIT_ONCE_STATIC_INIT;

// Loads the DLL that stands in the folder of this library; null where there is none.
HMODULE load()
{
    HMODULE self = nullptr;
    std::array<wchar_t, 32768> path; // the longest there is
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<LPCWSTR>(&found), &self))
        return nullptr;
    const DWORD length = GetModuleFileNameW(self, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0 || length == path.size())
        return nullptr;
    wchar_t *name = std::wcsrchr(path.data(), L'\\') + 1;
    if (name + std::size(fileName) > path.data() + path.size())
        return nullptr;
    std::wcscpy(name, fileName);
    return LoadLibraryExW(path.data(), nullptr,
                          LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

template <class Function> bool find(HMODULE module, const char *name, Function &function)
{
    const FARPROC address = GetProcAddress(module, name);
    std::memcpy(&function, &address, sizeof function);
    return address != nullptr;
}

// The DLL stays loaded to the end of the process.
BOOL CALLBACK look(INIT_ONCE *, void *, void **)
{
    const HMODULE module = load();
    if (module == nullptr)
        return FALSE;
    Suppressor s;
    if (find(module, "WebRtcNs_Create", s.create) && find(module, "WebRtcNs_Free", s.free) &&
        find(module, "WebRtcNs_Init", s.init) && find(module, "WebRtcNs_set_policy", s.setPolicy) &&
        find(module, "WebRtcNs_Process", s.process) && find(module, "WebRtcSpl_AnalysisQMF", s.analyse) &&
        find(module, "WebRtcSpl_SynthesisQMF", s.synthesise)) {
        suppressor = s;
        return TRUE;
    }
    FreeLibrary(module);
    return FALSE;
}

} // namespace

} // namespace orva

using namespace orva;

NsHandle *WebRtcNs_Create(void)
{
    if (InitOnceExecuteOnce(&found, look, nullptr, nullptr))
        return suppressor.create();
    KTDEBUG_Error(-1, "ORVA_CreateNoiseSup: libwebrtc_audio_processing-1.dll is missing beside liborva.");
    return nullptr;
}

void WebRtcNs_Free(NsHandle *ns)
{
    suppressor.free(ns);
}

int WebRtcNs_Init(NsHandle *ns, uint32_t sampleRate)
{
    return suppressor.init(ns, sampleRate);
}

int WebRtcNs_set_policy(NsHandle *ns, int policy)
{
    return suppressor.setPolicy(ns, policy);
}

void WebRtcNs_Process(NsHandle *ns, const float *const *input, size_t bandCount, float *const *output)
{
    suppressor.process(ns, input, bandCount, output);
}

void WebRtcSpl_AnalysisQMF(const int16_t *input, size_t inputLength, int16_t *low, int16_t *high,
                           int32_t *filterState1, int32_t *filterState2)
{
    suppressor.analyse(input, inputLength, low, high, filterState1, filterState2);
}

void WebRtcSpl_SynthesisQMF(const int16_t *low, const int16_t *high, size_t bandLength, int16_t *output,
                            int32_t *filterState1, int32_t *filterState2)
{
    suppressor.synthesise(low, high, bandLength, output, filterState1, filterState2);
}
