#pragma once

#include "StatusCode.h"
#include "xmlInterface.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

/// One BIOS option as the external tool dumps it. All texts are UTF-8, copied unchanged from the dump.
struct KnobDetails
{
    std::string type;
    std::string setupType;
    std::string name;
    std::string varstoreIndex;
    std::string prompt;
    std::string description;
    std::string UqiVal;
    /// Bytes, as a number in text form.
    std::string size;
    std::string offset;
    /// The condition under which the option can be changed.
    std::string depex;
    /// The setup page, its parts joined by "/".
    std::string SetupPgPtr;
    std::string defaultValue;
    /// A hexadecimal number where the option has a list of values.
    std::string CurrentVal;
    /// Text to value (a hexadecimal number), in byte-wise order of the texts.
    std::map<std::string, std::string> options;
};

/// Knobs in the order of the dump. A deque: growing moves no record.
using KnobList = std::deque<KnobDetails>;

/// Reads the environment variable `variableName` (Platform::ReadEnvironmentVariable) into `path`; for "ProgramFiles"
/// the external tool's directory below it, with a final backslash. Returns Success; Failed when the variable is not set
/// or empty; NoMemory. `path` keeps its content on failure.
Status GetEnvironmentalVaribaleBiosLib(std::string variableName, std::string &path);

/// Finds the external tool, makes the folder "out" in its directory and runs its status command. The arguments have no
/// effect. Returns Success when the BIOS interface can be used; NotFound when the tool ended with exit code 1;
/// ToolFailed for another exit code; Failed when the tool's directory is not known, the folder cannot be made or the
/// tool cannot be started; NoMemory.
Status biosConfigurationLibInit(std::string componentName, std::string &extra);

/// Runs one command line (program first, in quotation marks; ANSI code page on Windows) and waits for it without limit
/// (Platform::RunCommand). Returns Success for exit code 0, NotFound for 1, ToolFailed for another, Failed when the
/// program could not be started, NoMemory.
Status Exec(std::string command);

/// Has the tool dump its knobs and reads them. With an empty `listFile` all knobs replace the content of `knobs`; else
/// `listFile` is the path of a text file with the extension ini that names knobs, and those found are appended in its
/// order. Returns Success when the dump holds a knob; NotFound, Failed or ToolFailed from the tool; Failed for a list
/// file with another extension or without names and for a dump that is missing, unusable or without knobs; NoMemory.
/// `knobs` keeps its content on failure, except that a dump without knobs empties it when `listFile` is empty.
Status readKnob(KnobList &knobs, const std::string &listFile);

/// Fills a fresh record from a node of the dump. Returns Success; Failed when the node is no usable knob; NoMemory.
Status getknobDetails(xmlNodePtr knobNode, KnobDetails &record);

/// Appends to `names` the text before the first "=" of every line of the file that has a "=" and no ";". A file that
/// cannot be opened has no lines. Returns Success, or NoMemory.
Status readKnobNames(std::vector<std::string> &names, std::string path);
