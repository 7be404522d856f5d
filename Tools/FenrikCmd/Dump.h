#pragma once

#include "Firmware.h"

#include <functional>
#include <string_view>

/// Takes the next piece of a dump, with line feeds as line ends; returns false when it cannot.
using DumpSink = std::function<bool(std::string_view piece)>;

/// Hands the XML dump of all options of `firmware`, UTF-8 and indented by tabs, to `sink` piece by piece; the document
/// never stands in memory as a whole. The root element is `rootName`. Returns false when the sink refused a piece.
/// libxml2's xmlTextWriter does the work.
bool WriteDump(const Firmware &firmware, const char *rootName, const DumpSink &sink);
