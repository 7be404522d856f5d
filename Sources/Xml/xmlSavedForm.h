#pragma once

#include <string_view>

// The form in which documents of elements and attributes are saved. Part of the XML layer.

/// The text of the root's children, a part of `document`, where the whole of it is well-formed and, byte for byte, what
/// libxml2 would save it as: a declaration, and elements that hold attributes and further elements alone, at most a few
/// levels deep. Empty for every other text, and where there are no children. One pass, nothing is built.
std::string_view RootChildrenInSavedForm(std::string_view document);
