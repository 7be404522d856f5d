#pragma once

#include "SettingsSource.h"

#include <functional>
#include <string_view>

/// Takes the next piece of a dump, with line feeds as line ends; returns false when it cannot.
using DumpSink = std::function<bool(std::string_view piece)>;

/// Hands the XML dump of all settings of `source`, UTF-8 and indented by tabs, to `sink` piece by piece; the document
/// never stands in memory as a whole. The root element is `rootName`. Returns false when the sink refused a piece;
/// `count` is then anything, else the number of settings. Throws what the source throws. Ill-formed UTF-8 and
/// characters that XML cannot hold become U+FFFD. The text is put together
/// here, since libxml2's xmlTextWriter needs a good deal more time; the layout is its.
///
/// What a source says beyond the attributes that every knob has stands in further ones: `kind`, `signed`, `min`, `max`,
/// `step`, `minLength`, `maxLength`, `readOnly`, `state` ("locked", "hidden") and `unreadable`, the reason why there is
/// no current value; `default` is missing where there is none. The element `biosknobs` has `pending`, the number of
/// settings that wait, where the source knows it, and `valuesNeedRights="TRUE"` where it says so.
bool WriteDump(SettingsSource &source, const char *rootName, const DumpSink &sink, std::size_t &count);
