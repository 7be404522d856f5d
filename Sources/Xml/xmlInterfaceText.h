#pragma once

#include <string>

// Texts from outside, made fit for an XML document. Part of the XML layer.

/// `text` (UTF-8) as an XML document can hold it: two surrogates encoded one by one become the character they stand
/// for; ill-formed bytes and characters that XML does not know become U+FFFD (xmlGetUTF8Char, xmlIsCharQ).
std::string MakeXmlText(std::string text);

/// `text` with every "&" written so that nothing behind it is taken for a reference.
std::string EscapeReferences(std::string text);
