// Memory from the C heap: zeroed arrays, and a holder that frees what it holds.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace orva
{

// `count` zeroed elements for std::free. A count of 0 gives a block, too, so that null means that memory is out; a size that
// overflows counts as that.
template <class Element> Element *newZeroed(size_t count)
{
    return static_cast<Element *>(std::calloc(count > 0 ? count : 1, sizeof(Element)));
}

struct Free {
    void operator()(void *block) const
    {
        std::free(block);
    }
};

// Owns a block of the C heap.
template <class Element> using Owned = std::unique_ptr<Element, Free>;

template <class Element> Owned<Element> ownZeroed(size_t count)
{
    return Owned<Element>(newZeroed<Element>(count));
}

} // namespace orva
