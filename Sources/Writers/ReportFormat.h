#pragma once

#include "ModuleDataWriter.h"
#include "OutputKind.h"

#include <memory>

/// The formats of a report: what files of each kind are called, and who writes them.

/// The ending of a report file's name, which stands directly behind the option's name; empty for a kind without a
/// format and where the format has none.
const char *ReportFileEnding(OutputKind kind);

/// Makes the writer of `kind`, owned by the caller (DestroyModuleDataWriter). Null for a kind without a format and when
/// memory runs out.
ModuleDataWriter *CreateModuleDataWriter(OutputKind kind);

/// Destroys a writer; null is ignored.
void DestroyModuleDataWriter(ModuleDataWriter *writer);

struct DestroyWriter
{
    void operator()(ModuleDataWriter *writer) const { DestroyModuleDataWriter(writer); }
};
using ModuleDataWriterOwner = std::unique_ptr<ModuleDataWriter, DestroyWriter>;
