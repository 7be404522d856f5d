#pragma once

#include "StatusCode.h"

#include <string>
#include <vector>

/// Reads the host's capability list, the file CapsList.json. Used from one thread at a time. Nothing throws.
namespace XMLReaderLib
{

/// Opens the reader's trace handle and the XML layer. Always Success.
Status Initialize();

/// Closes both. Always Success.
Status UnInitialize();

/// Sets the directory of the capability list, with its final separator. Returns Success, Failed when it is empty (the
/// earlier one stays), NoMemory.
Status InitializeXMLPath(std::string directory);

/// Reads the capabilities of the module `moduleName` into two lists of equal length: names with their ASCII letters in
/// lower case, and descriptions, in the file's order. Returns Success; NotFound when the module is not in the list,
/// and, with the lists untouched, for a null argument; Failed when the file cannot be read, is no JSON or not of the
/// shape of a capability list; NoMemory. After every other failure the lists are empty. nlohmann::json does the
/// parsing.
Status GetCapabilityList(const char *moduleName, std::vector<std::string> *names,
                         std::vector<std::string> *descriptions);

/// Replaces `*text` with the whole file, read as text. Returns Success, or Failed when the file cannot be opened
/// (`*text` is unchanged) or is empty, and for a null `text`.
Status ReadWholeFile(std::string path, std::string *text);

} // namespace XMLReaderLib
