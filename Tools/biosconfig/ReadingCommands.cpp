#include "Commands.h"
#include "Glob.h"
#include "KnobDump.h"
#include "LowerAscii.h"
#include "OptionDiff.h"
#include "OptionJson.h"
#include "OptionText.h"
#include "OptionValue.h"
#include "PageTree.h"
#include "Platform.h"
#include "Redaction.h"

#include <algorithm>
#include <unordered_set>

namespace
{

constexpr std::size_t kFewestColumnsOfHelp = 40;
constexpr std::size_t kMostColumnsOfHelp = 100;
constexpr std::size_t kUsualColumns = 80;
/// How much of a text stands on either side of what was found in it.
constexpr std::size_t kColumnsAroundFound = 30;

/// The exit code of a command that has found everything: a dump that is damaged gives a part.
ExitCode CodeOf(const LoadedOptions &options)
{
    return options.isDamaged ? ExitCode::InPart : ExitCode::Done;
}

/// Hides values, when what is to be compared has been compared.
void RedactIfWished(const Work &work, OptionTable &table)
{
    if (work.arguments.isRedacted)
        Redact(table, work.arguments.redactedToo);
}

void AddOptionsAsJson(const std::vector<const BiosOption *> &options, Output &output)
{
    output.StartArray("options");
    for (const BiosOption *const option : options)
        output.AddElement(OptionJson(*option));
    output.EndArray();
}

Look LookOfValue(const BiosOption &option)
{
    return option.isRedacted ? Look::Faint : option.isChanged ? Look::Changed : Look::Plain;
}

void ListAsTable(const std::vector<const BiosOption *> &options, Output &output)
{
    TextTable table({{"NAME", 20}, {"VALUE", 10}, {"PROMPT", 16}, {"PAGE", 10}});
    for (const BiosOption *const option : options)
        table.AddRow({{std::string(option->name), Look::Name},
                      {CurrentText(*option), LookOfValue(*option)},
                      {std::string(option->prompt)},
                      {std::string(option->page), Look::Faint}});
    output.Add(table.Text(output.Reader()));
}

/// Writes what `show` says of an option.
class OptionPage
{
public:
    OptionPage(const BiosOption &option, const OptionTable &table, Output &output)
        : m_option(option), m_table(table), m_output(output)
    {
        const std::size_t columns = output.Reader().IsThere() ? output.Reader().Columns() : kUsualColumns;
        m_columns = std::clamp(columns, kFewestColumnsOfHelp, kMostColumnsOfHelp);
    }

    void Write()
    {
        m_output.Add(m_output.Reader().Style(Look::Head, OneLine(m_option.name)) + "  " + OneLine(m_option.prompt) +
                     "\n");
        for (const std::string &line : Wrap(m_option.help, m_columns - 2))
            m_output.Add("  " + line + "\n");
        m_output.Add("\n");
        if (m_option.unreadable.empty())
            AddField("Value", DetailedValue(m_option, m_option.currentValue) + ValueRemark(m_option),
                     LookOfValue(m_option));
        else
            AddField("Value", "(unreadable: " + std::string(m_option.unreadable) + ")", Look::Bad);
        if (m_option.hasDefault)
            AddField("Default", DetailedValue(m_option, m_option.defaultValue));
        if (m_option.pendingValue)
            AddField("Pending", DetailedValue(m_option, *m_option.pendingValue) + ", from the next restart on",
                     Look::Warning);
        AddField("Kind", std::string(KindName(m_option.kind)) + SizeText(m_option) + LimitsText(m_option));
        AddField("Page", std::string(m_option.page));
        AddField("Condition", ConditionText(m_option, m_table));
        AddChoices();
    }

private:
    void AddField(const char *title, const std::string &text, Look look = Look::Plain)
    {
        if (text.empty())
            return;
        constexpr std::size_t kTitleColumns = 12;
        const std::string head =
            std::string("  ") + title + std::string(kTitleColumns - std::string(title).size(), ' ');
        m_output.Add(head + m_output.Reader().Style(look, OneLine(text)) + "\n");
    }

    void AddChoices()
    {
        const OptionChoice *const current = m_option.isRedacted ? nullptr : ChoiceOf(m_option, m_option.currentValue);
        const OptionChoice *const byDefault = m_option.isRedacted ? nullptr : ChoiceOf(m_option, m_option.defaultValue);
        if (!m_option.choices.empty())
            m_output.Add("  Choices\n");
        for (const OptionChoice &choice : m_option.choices)
        {
            const bool isCurrent = &choice == current;
            std::string line =
                std::string(isCurrent ? "  * " : "    ") + OneLine(choice.value) + "  " + OneLine(choice.text);
            line += isCurrent ? "  [current]" : "";
            line += &choice == byDefault ? "  [default]" : "";
            m_output.Add(m_output.Reader().Style(isCurrent ? Look::Head : Look::Plain, line) + "\n");
        }
    }

    const BiosOption &m_option;
    const OptionTable &m_table;
    Output &m_output;
    std::size_t m_columns;
};

/// Where a text was found.
struct Found
{
    const char *field = nullptr;
    std::string_view text;
    std::size_t at = 0;
};

/// The first text of an option that `wanted` (in lower case) is in; without a field where it is in none.
Found FindText(const BiosOption &option, const std::string &wanted)
{
    const std::pair<const char *, std::string_view> texts[] = {
        {"name", option.name}, {"prompt", option.prompt}, {"help", option.help}};
    for (const auto &[field, text] : texts)
    {
        const std::size_t at = FindIgnoringCase(text, wanted);
        if (at != std::string_view::npos)
            return {field, text, at};
    }
    for (const OptionChoice &choice : option.choices)
    {
        const std::size_t at = FindIgnoringCase(choice.text, wanted);
        if (at != std::string_view::npos)
            return {"choice", choice.text, at};
    }
    return {};
}

bool IsInsideCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

/// What was found, with something on either side.
std::string Snippet(const Found &found, std::size_t length, const Terminal &terminal)
{
    const std::size_t around = std::string_view(found.field) == "name" ? found.text.size() : kColumnsAroundFound;
    std::size_t begin = found.at > around ? found.at - around : 0;
    std::size_t end = std::min(found.text.size(), found.at + length + around);
    while (begin > 0 && IsInsideCharacter(found.text[begin]))
        --begin;
    while (end < found.text.size() && IsInsideCharacter(found.text[end]))
        ++end;
    const auto part = [&](std::size_t from, std::size_t to) { return OneLine(found.text.substr(from, to - from)); };
    return (begin > 0 ? "..." : "") + part(begin, found.at) +
           terminal.Style(Look::Found, part(found.at, found.at + length)) + part(found.at + length, end) +
           (end < found.text.size() ? "..." : "");
}

/// A line an option: its name, and the text that something was found in, behind the word for what it is.
void AddFound(const std::vector<const BiosOption *> &options, const std::vector<Found> &places, std::size_t length,
              Output &output)
{
    std::size_t widest = 0;
    for (const BiosOption *const option : options)
        widest = std::max(widest, ColumnsOf(option->name));
    for (std::size_t index = 0; index < options.size(); ++index)
    {
        const Found &place = places[index];
        const std::string name = OneLine(options[index]->name);
        const std::string blanks(widest - std::min(widest, ColumnsOf(name)) + 2, ' ');
        const bool isInName = place.text.data() == options[index]->name.data();
        output.Add(isInName ? Snippet(place, length, output.Reader()) + blanks + OneLine(options[index]->prompt) + "\n"
                            : output.Reader().Style(Look::Name, name) + blanks + place.field + ": " +
                                  Snippet(place, length, output.Reader()) + "\n");
    }
}

void AddPagesAsText(const PageTree &tree, Output &output)
{
    TextTable table({{"PAGE", 20}, {"OPTIONS", 7}, {"CHANGED", 7}});
    for (const std::string_view path : tree.Paths())
    {
        const std::size_t depth = PageTree::DepthOf(path);
        // A terminal shows the tree, a program gets the whole path.
        const std::string title = output.Reader().IsThere()
                                      ? std::string(2 * depth, ' ') + std::string(PageTree::TitleOf(path))
                                      : std::string(path);
        const PageCount &count = tree.CountOf(path);
        table.AddRow({{title, Look::Name},
                      {std::to_string(count.options)},
                      {std::to_string(count.changed), count.changed ? Look::Changed : Look::Faint}});
    }
    output.Add(table.Text(output.Reader()));
}

void AddChangesAsTable(const std::vector<OptionChange> &changes, Output &output)
{
    TextTable table({{"NAME", 20}, {"OLD", 10}, {"NEW", 10}, {"PAGE", 10}});
    for (const OptionChange &change : changes)
    {
        const std::string oldText = change.before ? ValueText(*change.before, change.OldValue()) : "(added)";
        const std::string newText = change.after ? ValueText(*change.after, change.NewValue()) : "(removed)";
        table.AddRow({{std::string(change.option.name), Look::Name},
                      {oldText.empty() ? "(empty)" : oldText, Look::Bad},
                      {newText.empty() ? "(empty)" : newText, Look::Good},
                      {std::string(change.option.page), Look::Faint}});
    }
    output.Add(table.Text(output.Reader()));
}

ExitCode AddChanges(const Work &work, const std::vector<OptionChange> &changes, ExitCode code)
{
    Output &output = work.output;
    if (output.IsJson())
    {
        output.StartArray("changes");
        for (const OptionChange &change : changes)
            output.AddElement(ChangeJson(change));
        output.EndArray();
    }
    else if (!changes.empty())
        AddChangesAsTable(changes, output);
    std::unordered_set<std::string_view> pages;
    for (const OptionChange &change : changes)
        pages.insert(change.option.page);
    if (output.Reader().IsThere() && !work.arguments.isQuiet)
        Tell(changes.empty() ? "nothing differs"
                             : std::to_string(changes.size()) +
                                   (changes.size() == 1 ? " option differs on " : " options differ on ") +
                                   std::to_string(pages.size()) + (pages.size() == 1 ? " page" : " pages"));
    if (code == ExitCode::Done && work.arguments.tellsDifferenceByExitCode && !changes.empty())
        return ExitCode::Different;
    return code;
}

/// The dump itself, byte for byte.
ExitCode ExportDump(const Work &work)
{
    const Arguments &arguments = work.arguments;
    if (arguments.isRedacted || arguments.onlyChanged || !arguments.words.empty())
        throw Failure(ExitCode::WrongUsage,
                      "a dump is exported as it is, with all options and values; for a part of it, or "
                      "without secrets, use --json");
    const LoadedOptions options = ReadOptions(arguments, work.steps, work.output);
    const std::string dump = arguments.dumpPath.empty() ? toolDumpFile(ToolPlace(arguments)) : arguments.dumpPath;
    const Platform::StreamOwner stream = Platform::OpenStream(dump, "rb");
    std::string bytes;
    if (!stream || !Platform::ReadBytes(stream.get(), bytes))
        throw Failure(ExitCode::Unexpected, "cannot read the dump " + ShownPath(dump));
    work.output.Add(bytes);
    return CodeOf(options);
}

/// Adds the assignments of the options' values; false where a value cannot be written.
bool AddTemplate(const std::vector<const BiosOption *> &options, TemplateKind kind, Output &output)
{
    std::vector<std::string> values;
    std::vector<WrittenAssignment> assignments;
    std::size_t redacted = 0;
    values.reserve(options.size()); // views refer to them
    for (const BiosOption *const option : options)
    {
        const bool isKnown = !option->isRedacted && option->unreadable.empty();
        const std::optional<std::string> value = isKnown ? WritableValue(*option, option->currentValue) : std::nullopt;
        if (value)
            assignments.push_back({option->name, values.emplace_back(*value)});
        else if (option->isRedacted)
            ++redacted;
        else
            output.Tell(Severity::Warning, "not-writable",
                        std::string(option->name) + (option->unreadable.empty()
                                                         ? " is left out: its value is none that a template can give it"
                                                         : " is left out: its value could not be read"),
                        {{"option", option->name}});
    }
    if (redacted > 0)
        output.Tell(Severity::Note, "redacted",
                    std::to_string(redacted) + (redacted == 1 ? " option is" : " options are") +
                        " left out, since values are redacted");
    output.Add(WriteTemplate(assignments, kind));
    return assignments.size() + redacted == options.size();
}

/// Has `add` add each option that the command line names, or adds them all as JSON.
template <typename Add>
ExitCode WithNamedOptions(const Work &work, Add add)
{
    LoadedOptions options = ReadOptions(work.arguments, work.steps, work.output);
    RedactIfWished(work, options.table);
    ExitCode code = CodeOf(options);
    const std::vector<const BiosOption *> found = FindOptions(work, options.table, code);
    if (work.output.IsJson())
    {
        AddOptionsAsJson(found, work.output);
        return code;
    }
    for (const BiosOption *const option : found)
        add(*option, options.table);
    return code;
}

} // namespace

ExitCode ListOptions(const Work &work)
{
    LoadedOptions options = ReadOptions(work.arguments, work.steps, work.output);
    ExitCode code = CodeOf(options);
    const std::vector<const BiosOption *> selected = SelectOptions(work, options.table, code);
    RedactIfWished(work, options.table);
    if (work.output.IsJson())
        AddOptionsAsJson(selected, work.output);
    else if (work.arguments.isCsv)
        work.output.Add(OptionsAsCsv(selected));
    else if (!selected.empty())
        ListAsTable(selected, work.output);
    return code;
}

ExitCode GetValues(const Work &work)
{
    return WithNamedOptions(work, [&](const BiosOption &option, const OptionTable & /*table*/)
                            { work.output.Add(OneLine(CurrentText(option)) + "\n"); });
}

ExitCode ShowOptions(const Work &work)
{
    bool isFirst = true;
    return WithNamedOptions(work,
                            [&](const BiosOption &option, const OptionTable &table)
                            {
                                work.output.Add(isFirst ? "" : "\n");
                                isFirst = false;
                                OptionPage(option, table, work.output).Write();
                            });
}

ExitCode SearchOptions(const Work &work)
{
    LoadedOptions options = ReadOptions(work.arguments, work.steps, work.output);
    RedactIfWished(work, options.table);
    const std::string wanted = LowerAscii(work.arguments.words.front());
    std::vector<const BiosOption *> found;
    std::vector<Found> places;
    for (const BiosOption &option : options.table.Options())
    {
        const Found place = FindText(option, wanted);
        if (!place.field)
            continue;
        found.push_back(&option);
        places.push_back(place);
    }
    if (work.output.IsJson())
        AddOptionsAsJson(found, work.output);
    else
        AddFound(found, places, wanted.size(), work.output);
    if (!found.empty())
        return CodeOf(options);
    work.output.Tell(Severity::Error, "not-found",
                     "no option has \"" + work.arguments.words.front() + "\" in its name, prompt, help or choices");
    return ExitCode::NotFound;
}

ExitCode ListPages(const Work &work)
{
    LoadedOptions options = ReadOptions(work.arguments, work.steps, work.output);
    const PageTree tree(options.table);
    if (!work.output.IsJson())
    {
        AddPagesAsText(tree, work.output);
        return CodeOf(options);
    }
    work.output.StartArray("pages");
    for (const std::string_view path : tree.Paths())
    {
        const PageCount &count = tree.CountOf(path);
        work.output.AddElement({{"page", path}, {"options", count.options}, {"changed", count.changed}});
    }
    work.output.EndArray();
    return CodeOf(options);
}

ExitCode DiffOptions(const Work &work)
{
    const Arguments &arguments = work.arguments;
    if (arguments.toDefaults)
    {
        LoadedOptions options = ReadOptions(arguments, work.steps, work.output);
        const std::vector<OptionChange> changes = DiffToDefaults(options.table);
        RedactIfWished(work, options.table);
        return AddChanges(work, changes, CodeOf(options));
    }
    LoadedOptions before = ReadOptionsFile(arguments.words.front(), work.output);
    LoadedOptions after = arguments.words.size() > 1 ? ReadOptionsFile(arguments.words.back(), work.output)
                                                     : ReadOptions(arguments, work.steps, work.output);
    const std::vector<OptionChange> changes = Diff(before.table, after.table);
    RedactIfWished(work, before.table);
    RedactIfWished(work, after.table);
    return AddChanges(work, changes, before.isDamaged ? ExitCode::InPart : CodeOf(after));
}

ExitCode ExportTemplate(const Work &work)
{
    const std::string &path = work.arguments.outputPath;
    if (path.ends_with(".xml") && !work.output.IsJson())
        return ExportDump(work);
    LoadedOptions options = ReadOptions(work.arguments, work.steps, work.output);
    ExitCode code = CodeOf(options);
    const std::vector<const BiosOption *> selected = SelectOptions(work, options.table, code);
    RedactIfWished(work, options.table);
    if (work.output.IsJson())
    {
        AddOptionsAsJson(selected, work.output);
        return code;
    }
    const TemplateKind kind = path.ends_with(".ini") ? TemplateKind::KnobFile : TemplateKind::Text;
    return AddTemplate(selected, kind, work.output) || code != ExitCode::Done ? code : ExitCode::InPart;
}
