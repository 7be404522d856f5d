#include "Commands.h"
#include "Glob.h"

#include <algorithm>
#include <unordered_set>

namespace
{

/// Whether `page` is `wanted` or lies below it; both without a difference of case.
bool IsOnPage(std::string_view page, std::string_view wanted)
{
    return MatchesGlob(wanted, page) || MatchesGlob(std::string(wanted) + "/*", page);
}

std::string Question(std::string_view nearest)
{
    return nearest.empty() ? "" : "; did you mean \"" + std::string(nearest) + "\"?";
}

/// The nearest of the pages and of what stands above them.
std::string_view NearestPage(const OptionTable &table, std::string_view wanted)
{
    std::unordered_set<std::string_view> pages;
    for (const BiosOption &option : table.Options())
    {
        pages.insert(option.page);
        for (std::size_t slash = option.page.find('/'); slash != std::string_view::npos;
             slash = option.page.find('/', slash + 1))
            pages.insert(option.page.substr(0, slash));
    }
    return Nearest(wanted, {pages.begin(), pages.end()});
}

void TellUnknown(const Work &work, const OptionTable &table, const std::string &name, ExitCode &code)
{
    code = ExitCode::NotFound;
    work.output.Tell(Severity::Error, "unknown-option",
                     "there is no option \"" + name + "\"" + Question(table.NearestName(name)), {{"option", name}});
}

} // namespace

std::vector<const BiosOption *> SelectOptions(const Work &work, const OptionTable &table, ExitCode &code)
{
    const Arguments &arguments = work.arguments;
    std::vector<const BiosOption *> selected;
    std::vector<bool> fits(arguments.words.size());
    bool pageFits = false;
    for (const BiosOption &option : table.Options())
    {
        bool isWanted = arguments.words.empty();
        for (std::size_t index = 0; index < fits.size(); ++index)
        {
            if (!MatchesGlob(arguments.words[index], option.name))
                continue;
            fits[index] = true;
            isWanted = true;
        }
        if (!arguments.page.empty() && !IsOnPage(option.page, arguments.page))
            continue;
        pageFits = true;
        if (isWanted && (!arguments.onlyChanged || option.isChanged) && (!arguments.onlyPending || option.pendingValue))
            selected.push_back(&option);
    }
    for (std::size_t index = 0; index < fits.size(); ++index)
    {
        if (!fits[index])
            TellUnknown(work, table, arguments.words[index], code);
    }
    if (!arguments.page.empty() && !pageFits)
    {
        code = ExitCode::NotFound;
        work.output.Tell(Severity::Error, "unknown-page",
                         "there is no setup page \"" + arguments.page + "\"" +
                             Question(NearestPage(table, arguments.page)));
    }
    return selected;
}

std::vector<const BiosOption *> FindOptions(const Work &work, const OptionTable &table, ExitCode &code)
{
    std::vector<const BiosOption *> found;
    for (const std::string &name : work.arguments.words)
    {
        const BiosOption *const option = table.Find(name);
        if (option)
            found.push_back(option);
        else
            TellUnknown(work, table, name, code);
    }
    return found;
}
