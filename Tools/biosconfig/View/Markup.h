#pragma once

#include <string>
#include <string_view>

/// Texts from outside put into an HTML document, one function for each place that they can stand in. The texts are
/// UTF-8; each ill-formed byte becomes U+FFFD, and control characters other than tab and line feed their pictures
/// (U+2400 on), since HTML has no way to write them. May throw std::bad_alloc.

/// As the content of an element.
void AppendElementText(std::string &markup, std::string_view text);

/// As the value of an attribute, between double quotes.
void AppendAttributeText(std::string &markup, std::string_view text);

/// As an id, and behind "#" as the address of the element that has it: letters, digits and "-._~" as they are, every
/// other byte as "%" and two digits. No two texts give the same.
void AppendAnchor(std::string &markup, std::string_view text);

/// A JSON text as the content of a script element: nothing in it can end the element.
void AppendScriptJson(std::string &markup, std::string_view json);
