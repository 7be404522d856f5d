#pragma once

#include "KnobList.h"
#include "StatusCode.h"

#include <cstdint>
#include <string>
#include <unordered_map>

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

/// What the dump of a real machine may tell of a knob beyond its record. Empty texts: it does not.
struct KnobFurther
{
    /// The source's own word for the kind (kind), such as "enumeration".
    std::string kind;
    /// Decimal numbers: the limits of a number (min, max, step) and of the length of a text in characters (minLength,
    /// maxLength).
    std::string least;
    std::string most;
    std::string step;
    std::string minLength;
    std::string maxLength;
    /// "locked" or "hidden" (state): what its condition makes of it now.
    std::string state;
    /// Why there is no current value (unreadable).
    std::string unreadable;
    bool isReadOnly = false;
    /// Whether a number may be negative (signed).
    bool isSigned = false;
    bool hasDefault = true;
};

/// What a dump may tell beyond the records of its knobs; texts are UTF-8.
struct FurtherDetails
{
    /// Whether it tells which values wait for a restart (the attribute pending of biosknobs, their number).
    bool tellsPending = false;
    /// By the records of a list, the values that become current with the next restart, as CurrentVal has them.
    std::unordered_map<const KnobDetails *, std::string> pendingValues;
    /// By the records of a list; those alone that have the attribute kind.
    std::unordered_map<const KnobDetails *, KnobFurther> ofKnobs;
    /// Whether the values are not for everybody (the attribute valuesNeedRights of biosknobs).
    bool valuesNeedRights = false;
};

enum class DumpOutcome
{
    Read,
    /// The file could not be opened.
    Unreadable,
    /// Not XML, or with a root element of another name.
    NoDump,
    NoKnobs,
    NoMemory
};

/// Reads a dump from a file, whoever made it, with no tool started and no trace written. `knobs` is replaced; where
/// nothing could be read it keeps its content, but for NoKnobs, which empties it. `damagedLine` as for readKnob: a dump
/// that is not well-formed counts as read, as far as it could be.
DumpOutcome readDump(const std::string &file, KnobList &knobs, FurtherDetails &further, std::int32_t &damagedLine);

/// The dump that the tool in `directory` (with final separator) makes for this library. May throw std::bad_alloc.
std::string toolDumpFile(const std::string &directory);
