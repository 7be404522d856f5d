#pragma once

#include "KnobList.h"
#include "StatusCode.h"

#include <cstdint>
#include <string>

struct _xmlNode;

/// What the external tool says of the machine's BIOS options.

/// Has the tool dump its knobs and reads them. With an empty `listFile` all knobs replace the content of `knobs`; else
/// `listFile` is the path of a text file with the extension ini that names knobs, and those found are appended in its
/// order. Returns Success when the dump holds a knob; NotFound, Failed or ToolFailed from the tool; Failed for a list
/// file with another extension or without names and for a dump that is missing, unusable or without knobs; NoMemory.
/// `knobs` keeps its content on failure, except that a dump without knobs empties it when `listFile` is empty.
///
/// A dump that is not well-formed gives what can be recovered of it; `damagedLine`, if given, is then the line of the
/// dump's file in which libxml2 noticed, and 0 for every other dump.
Status readKnob(KnobList &knobs, const std::string &listFile, std::int32_t *damagedLine = nullptr);

/// Fills a fresh record from a node of the dump. Returns Success; Failed when the node is no usable knob; NoMemory.
Status getknobDetails(_xmlNode *knobNode, KnobDetails &record);
