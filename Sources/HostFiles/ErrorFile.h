#pragma once

#include "StatusCode.h"

/// The host's error file, Error.xml, which every failure of the module gets an entry in. Texts are UTF-8. Nothing
/// throws.

/// Says where the error file lies: `directory` with its final separator, and `fileName`. The first setting that has
/// both stays until the module is unloaded. Returns Success, Failed when a pointer is null, NoMemory.
Status InitErrorFile(const char *directory, const char *fileName);

/// Adds an entry to the error file, under the process-wide mutex of the host. `line` is decimal text, `date` the build
/// date. Returns Success, also when no error file is set and nothing was written; NotFound when an argument is null or
/// message or title is empty; NoMemory; otherwise what WriteErrorEntry returns.
Status ReportError(const char *message, const char *title, const char *sourceFile, const char *line, const char *date);

/// Adds an entry to the error file at `path`: reads or creates it, appends, saves. Returns Success; NotFound for a null
/// argument, an empty message or title, and without the host's shared object; Missing when the mutex cannot be had;
/// NoMemory; Failed when the document cannot be created or saved.
Status WriteErrorEntry(const char *path, const char *message, const char *title, const char *sourceFile,
                       const char *line, const char *date);
