#include "Commands.h"
#include "FilesystemPath.h"
#include "Program.h"
#include "Redaction.h"
#include "TemporaryFolder.h"
#include "ViewPage.h"

#include <algorithm>
#include <unordered_map>

namespace
{

/// What people call the options of a file: its name without the ending.
std::string NameOf(const std::string &file)
{
    return Platform::FromFilesystemPath(Platform::ToFilesystemPath(file).stem());
}

/// A path as it is written on every system.
std::string PathTitle(const std::string &file)
{
    std::string path = ShownPath(file);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::string TitleOfFirst(const Arguments &arguments)
{
    if (!arguments.dumpPath.empty())
        return NameOf(arguments.dumpPath);
    const std::string machine = arguments.isRedacted ? "" : Platform::MachineName();
    return machine.empty() ? "this machine" : machine;
}

/// Titles that tell the columns apart: where files have one name, with their folders, unless these are nobody's
/// business, or at last numbered.
std::vector<std::string> TitlesOf(const Arguments &arguments)
{
    std::vector<std::string> titles = {TitleOfFirst(arguments)};
    std::vector<std::string> paths = {arguments.dumpPath.empty() ? titles.front() : PathTitle(arguments.dumpPath)};
    for (const std::string &path : arguments.comparedPaths)
    {
        titles.push_back(NameOf(path));
        paths.push_back(PathTitle(path));
    }
    std::unordered_map<std::string, std::size_t> uses;
    for (const std::string &title : titles)
        ++uses[title];
    std::unordered_map<std::string, std::size_t> usesSoFar;
    for (std::size_t index = 0; index < titles.size(); ++index)
    {
        if (uses[titles[index]] > 1 && !arguments.isRedacted)
            titles[index] = paths[index];
        const std::size_t number = ++usesSoFar[titles[index]];
        if (number > 1)
            titles[index] += " (" + std::to_string(number) + ")";
    }
    return titles;
}

std::string MakePage(const Work &work, ExitCode &code)
{
    std::vector<LoadedOptions> loaded;
    loaded.reserve(work.arguments.comparedPaths.size() + 1); // tables are referred to
    loaded.push_back(ReadOptions(work.arguments, work.steps, work.output));
    for (const std::string &path : work.arguments.comparedPaths)
        loaded.push_back(ReadOptionsFile(path, work.output));
    const std::vector<std::string> titles = TitlesOf(work.arguments);
    std::vector<ViewColumn> columns;
    std::vector<OptionTable *> tables;
    columns.reserve(loaded.size());
    tables.reserve(loaded.size());
    for (LoadedOptions &options : loaded)
    {
        code = options.isDamaged ? ExitCode::InPart : code;
        columns.push_back({titles[columns.size()], &options.table});
        tables.push_back(&options.table);
    }
    Comparison comparison = Compare(columns);
    if (work.arguments.isRedacted)
        RedactTogether(tables, work.arguments.redactedToo);
    ViewContent content = ArrangeByPages(std::move(columns), std::move(comparison));
    content.time = work.arguments.tellsNoTime ? "" : TimeNow();
    content.isRedacted = work.arguments.isRedacted;
    return MakeViewPage(content);
}

void OpenPage(const std::string &path)
{
    if (!Platform::OpenWithItsProgram(path))
        throw Failure(ExitCode::Unexpected, "no program opens the page; it is in " + ShownPath(path));
}

/// Keeps a page among the temporary files, which nobody else may read, and opens it.
void OpenTemporaryPage(const std::string &page)
{
    TemporaryFolder folder;
    const std::string path = folder.Write("bios-options.html", page);
    folder.Keep();
    Tell("the page is in " + ShownPath(path));
    OpenPage(path);
}

} // namespace

ExitCode ViewOptions(const Work &work)
{
    ExitCode code = ExitCode::Done;
    const std::string page = MakePage(work, code);
    const std::string &path = work.arguments.outputPath;
    if (work.arguments.opensPage && path == kStandardOutput)
    {
        OpenTemporaryPage(page);
        return code;
    }
    work.output.Add(page);
    work.output.Finish();
    if (work.arguments.opensPage)
        OpenPage(path);
    return code;
}
