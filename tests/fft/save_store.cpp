// One save of the wisdom store, for the test of its faults: save_store FOLDER [kill N | fail N ERRNO]
//
// Loads the store of the folder, plans a length more, and saves between two marks that a trace of the system
// calls shows. With a fault, the N-th file call of the save kills the process or fails with ERRNO. Ends with
// 3 if there was no N-th.
#include "fft/ORVAfft_internal.h"
#include "support/interposer.h"

#include <kett/KTenv.h>

#include <cstdlib>
#include <cstring>

#include <unistd.h>

using namespace orva;

namespace
{

void mark(const char *name)
{
    static_cast<void>(access(name, F_OK));
}

} // namespace

int main(int count, char **arguments)
{
    if (count < 2)
        return 2;
    KTENV_SetEnvValue("KT_DATA_PATH", arguments[1]);
    __FFTW_LoadWisdom();
    ORVA_FFTProcDestroy(__FFTW_CreatePlan(64, false));
    mark("/the save begins");
    if (count == 4 && std::strcmp(arguments[2], "kill") == 0)
        support::killAtFileCall(std::strtoull(arguments[3], nullptr, 10));
    if (count == 5 && std::strcmp(arguments[2], "fail") == 0)
        support::failFileCall(std::strtoull(arguments[3], nullptr, 10), std::atoi(arguments[4]));
    __FFTW_SaveWisdom();
    const bool happened = support::endFailure();
    mark("/the save ends");
    return count == 2 || happened ? 0 : 3;
}
