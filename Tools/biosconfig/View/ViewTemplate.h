#pragma once

#include <string_view>

/// Page.html with Page.css and Page.js in it, and with the digests of both in its policy, made when the program is
/// built (cmake/EmbedPage.cmake). "{{name}}" stands where something of that name is to be put in.
extern const std::string_view kViewTemplate;
