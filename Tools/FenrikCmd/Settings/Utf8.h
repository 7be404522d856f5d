#pragma once

#include <string>

/// `text` with U+FFFD in the place of ill-formed UTF-8 and of characters that XML cannot hold, carriage returns among
/// them. libxml2's xmlGetUTF8Char and xmlCopyCharMultiByte do the
/// work.
std::string FittingText(const std::string &text);

/// Whether `text` is printable ASCII, which is fit for everything.
bool IsPlainText(const std::string &text);
