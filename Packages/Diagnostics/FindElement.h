#pragma once

#include "Container.h"

/// The first element of `container` that `matches`, or null; a null container holds none.
template <typename Element, typename Matches>
Element *FindElement(ContainerHandle_t *container, Matches matches)
{
    void *data = nullptr;
    for (std::uint32_t index = 0; RetrieveFromIndex(container, data, index) == StatusCode::Success; ++index)
    {
        Element *const element = static_cast<Element *>(data);
        if (matches(*element))
            return element;
    }
    return nullptr;
}
