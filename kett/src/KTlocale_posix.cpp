#include "KTlocale.h"

#include <locale.h>

namespace kett
{

// All of it, not the numbers alone: the GNU C library has this one at hand, and loses a block for each other
// one that is made while LOCPATH is set.
LocaleC::LocaleC() : here(newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr))), before(nullptr)
{
    if (here != nullptr)
        before = uselocale(static_cast<locale_t>(here));
}

LocaleC::~LocaleC()
{
    if (here == nullptr)
        return;
    uselocale(static_cast<locale_t>(before));
    freelocale(static_cast<locale_t>(here));
}

} // namespace kett
