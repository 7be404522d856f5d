#include "WholeFile.h"

#include "ReplacedFile.h"
#include "ToolError.h"

void WriteWholeFile(const std::string &path, const std::function<bool(std::FILE *stream)> &write,
                    Platform::FileAccess access)
{
    Platform::ReplacedFile file(path, access);
    if (!file.Open() || !write(file.Stream()) || !file.Commit())
        throw ToolError(ExitCode::CannotWrite, "cannot write \"" + path + "\"");
}
