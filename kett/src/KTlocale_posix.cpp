#include "KTlocale.h"

#include <locale.h>

namespace kett
{

NumericLocaleC::NumericLocaleC()
{
    before = uselocale(static_cast<locale_t>(nullptr));
    const locale_t base = duplocale(static_cast<locale_t>(before));
    here = base != nullptr ? newlocale(LC_NUMERIC_MASK, "C", base) : nullptr;
    if (here != nullptr)
        uselocale(static_cast<locale_t>(here));
    else if (base != nullptr)
        freelocale(base);
}

NumericLocaleC::~NumericLocaleC()
{
    if (here == nullptr)
        return;
    uselocale(static_cast<locale_t>(before));
    freelocale(static_cast<locale_t>(here));
}

} // namespace kett
