#pragma once

#include "KnobList.h"
#include "StatusCode.h"

#include <string>

struct _xmlNode;

/// What the external tool says of the machine's BIOS options.

/// Has the tool dump its knobs and reads them. With an empty `listFile` all knobs replace the content of `knobs`; else
/// `listFile` is the path of a text file with the extension ini that names knobs, and those found are appended in its
/// order. Returns Success when the dump holds a knob; NotFound, Failed or ToolFailed from the tool; Failed for a list
/// file with another extension or without names and for a dump that is missing, unusable or without knobs; NoMemory.
/// `knobs` keeps its content on failure, except that a dump without knobs empties it when `listFile` is empty.
Status readKnob(KnobList &knobs, const std::string &listFile);

/// Fills a fresh record from a node of the dump. Returns Success; Failed when the node is no usable knob; NoMemory.
Status getknobDetails(_xmlNode *knobNode, KnobDetails &record);
