#include "Commands.h"
#include "DebugConfCheck.h"
#include "FilesystemPath.h"
#include "LowerAscii.h"
#include "ModuleWork.h"
#include "OptionJson.h"
#include "OptionValue.h"
#include "Plan.h"
#include "Redaction.h"
#include "TemporaryFolder.h"

#include <algorithm>
#include <utility>

namespace
{

/// A template, its options and what is to be done.
struct Undertaking
{
    explicit Undertaking(LoadedOptions options) : before(std::move(options)) {}

    LoadedOptions before;
    Plan plan;
    /// Of the template to be made: its name without an ending, and its kind.
    std::string stem = "settings";
    TemplateKind kind = TemplateKind::Text;
    /// As the user calls it; empty for a command line.
    std::string templateName;
};

/// Reads the options that are to be changed.
Undertaking Begin(const Work &work)
{
    Undertaking undertaking(ReadOptions(work.arguments, work.steps, work.output));
    if (work.arguments.isRedacted)
        MarkRedacted(undertaking.before.table, work.arguments.redactedToo);
    return undertaking;
}

/// The kind of a template; throws Failure where its name has no ending of one.
TemplateKind KindOfTemplate(const std::string &path)
{
    const std::string ending = LowerAscii(Platform::FromFilesystemPath(Platform::ToFilesystemPath(path).extension()));
    if (ending == ".txt")
        return TemplateKind::Text;
    if (ending == ".ini")
        return TemplateKind::KnobFile;
    throw Failure(ExitCode::NotValid,
                  path + " is no template: its name must end in .txt (assignments) or .ini (a knob file)");
}

/// The name of a template without its ending and without what the module does not take: a "." in front of the ending,
/// and a quotation mark.
std::string SafeStem(const std::string &path)
{
    std::string stem = Platform::FromFilesystemPath(Platform::ToFilesystemPath(path).stem());
    std::replace_if(
        stem.begin(), stem.end(), [](char character) { return character == '.' || character == '"'; }, '_');
    return stem;
}

/// Reads a template and makes the plan for it.
Undertaking PrepareTemplate(const Work &work)
{
    const std::string &path = work.arguments.words.front();
    const TemplateKind kind = KindOfTemplate(path);
    std::string text;
    if (!Platform::ReadTextFile(path, text))
        throw Failure(ExitCode::NotFound, "cannot read the template " + path);
    constexpr std::string_view kMarksOfUtf16[] = {"\xFF\xFE", "\xFE\xFF"};
    if (text.find('\0') != std::string::npos || text.starts_with(kMarksOfUtf16[0]) ||
        text.starts_with(kMarksOfUtf16[1]))
        throw Failure(ExitCode::NotValid, path + " is no template: it is not UTF-8; save it anew in that encoding");
    Undertaking undertaking = Begin(work);
    undertaking.stem = SafeStem(path);
    undertaking.kind = kind;
    undertaking.templateName = path;
    undertaking.plan = MakePlan(undertaking.before.table, ReadTemplate(text, kind), kind);
    return undertaking;
}

void TellFindings(const Work &work, const Undertaking &undertaking)
{
    for (const Finding &finding : undertaking.plan.findings)
        work.output.Tell(finding, undertaking.templateName);
}

std::string ShownValue(const BiosOption &option, std::string_view value)
{
    const std::string text = ValueText(option, value);
    return text.empty() ? "(empty)" : text;
}

/// The value that there is, and the one that waits.
std::string OldText(const BiosOption &option)
{
    const std::string current =
        option.unreadable.empty() ? ShownValue(option, option.currentValue) : CurrentText(option);
    const bool waits = option.pendingValue && !IsSameValue(option, *option.pendingValue, option.currentValue);
    return waits ? current + " (pending " + ShownValue(option, *option.pendingValue) + ")" : current;
}

/// Name, old and new value of what is to be done; `verdicts`, one per change, tell what became of it.
std::string PlanText(const Plan &plan, const std::vector<Verdict> &verdicts, const Terminal &terminal)
{
    const bool isPlan = verdicts.empty();
    TextTable table({{"NAME", 20}, {"OLD", 10}, {"NEW", 10}, {isPlan ? "PLAN" : "OUTCOME", 15}});
    for (std::size_t index = 0; index < plan.changes.size(); ++index)
    {
        const PlannedChange &change = plan.changes[index];
        const BiosOption &option = *change.option;
        const std::string_view planned = change.isToDo         ? "program"
                                         : option.pendingValue ? "pending already"
                                                               : "unchanged";
        const std::string_view outcome = isPlan ? planned : VerdictName(verdicts[index]);
        const bool isBad = !isPlan && verdicts[index] >= Verdict::Rejected;
        table.AddRow({{std::string(option.name), Look::Name},
                      {OldText(option)},
                      {ShownValue(option, change.newValue), change.isToDo ? Look::Changed : Look::Faint},
                      {std::string(outcome), isBad           ? Look::Bad
                                             : change.isToDo ? Look::Good
                                                             : Look::Faint}});
    }
    return table.Text(terminal);
}

void AddPlan(const Work &work, const Plan &plan, const std::vector<Verdict> &verdicts)
{
    Output &output = work.output;
    if (!output.IsJson() && plan.changes.empty())
        return;
    if (!output.IsJson())
        return output.Add(PlanText(plan, verdicts, output.Reader()));
    output.StartArray("changes");
    for (std::size_t index = 0; index < plan.changes.size(); ++index)
        output.AddElement(PlannedJson(plan.changes[index], verdicts.empty() ? nullptr : &verdicts[index]));
    output.EndArray();
}

/// Asks whoever sits in front of a terminal; nobody there agrees.
bool IsAgreed(const Work &work, const Plan &plan)
{
    if (work.arguments.isAgreed || !Platform::IsTerminal(stdin) || !Platform::IsTerminal(stderr))
        return true;
    const Terminal terminal(stderr, work.arguments.color);
    const std::size_t count = plan.ToDo();
    std::fprintf(stderr, "%sProgram %zu %s? [y/N] ", PlanText(plan, {}, terminal).c_str(), count,
                 count == 1 ? "option" : "options");
    std::fflush(stderr);
    char answer[16] = {};
    const bool isRead = std::fgets(answer, sizeof answer, stdin) != nullptr;
    if (!isRead)
        std::fputs("\n", stderr);
    return isRead && (answer[0] == 'y' || answer[0] == 'Y');
}

std::string MakeTemplate(const Undertaking &undertaking, bool onlyChanges)
{
    std::vector<WrittenAssignment> assignments;
    for (const PlannedChange &change : undertaking.plan.changes)
    {
        if (change.isToDo || (!onlyChanges && !change.forTool.empty()))
            assignments.push_back({change.option->name, change.forTool});
    }
    return WriteTemplate(assignments, undertaking.kind);
}

void TellOfDebugConf(Output &output)
{
    for (const std::string &fault : CheckDebugConf())
        output.Tell(Severity::Warning, "debug-conf", fault);
    for (const std::string &useless : UselessDebugConfSettings())
        output.Tell(Severity::Warning, "debug-conf", useless);
}

/// Has the module program the template; gives its message.
std::string Program(const Work &work, const Undertaking &undertaking)
{
    TemporaryFolder folder;
    const std::string ending = undertaking.kind == TemplateKind::Text ? ".txt" : ".ini";
    const std::string path =
        folder.Write(undertaking.stem + ending, MakeTemplate(undertaking, work.arguments.onlyChanges));
    MakeModulePlace(folder);
    TellOfDebugConf(work.output);
    return work.steps.Run(kProgramStep, path, "programming", work.output, true);
}

/// The exit code of what became of a plan.
ExitCode JudgeVerdicts(const std::vector<Verdict> &verdicts)
{
    const auto count = [&](Verdict verdict) { return std::count(verdicts.begin(), verdicts.end(), verdict); };
    if (count(Verdict::Mismatch) > 0)
        return ExitCode::Mismatch;
    const std::ptrdiff_t rejected = count(Verdict::Rejected);
    if (rejected == 0)
        return ExitCode::Done;
    return count(Verdict::PendingRestart) + count(Verdict::InEffect) > 0 ? ExitCode::InPart : ExitCode::ToolFailed;
}

/// The verdicts of what was read back, or, without anything to program, of what had been read before.
std::vector<Verdict> VerdictsOf(const Plan &plan, const OptionTable &table)
{
    std::vector<Verdict> verdicts;
    verdicts.reserve(plan.changes.size());
    for (const PlannedChange &change : plan.changes)
        verdicts.push_back(Verify(change, table));
    return verdicts;
}

/// The options behind the programming. Throws Failure, saying that it was done, where they cannot be read.
LoadedOptions ReadBack(const Work &work)
{
    try
    {
        return ReadMachine(work.arguments, work.steps, work.output);
    }
    catch (const Failure &failure)
    {
        throw Failure(failure.code,
                      "the options were programmed, and could not be read back: " + std::string(failure.what()));
    }
}

/// Programs, reads back and judges.
std::vector<Verdict> Apply(const Work &work, const Undertaking &undertaking, ExitCode &code)
{
    const Plan &plan = undertaking.plan;
    try
    {
        const std::string message = Program(work, undertaking);
        if (!work.arguments.isQuiet)
            Tell(message);
    }
    catch (const Failure &failure)
    {
        if (failure.code != ExitCode::ToolFailed)
            throw;
        work.output.Tell(Severity::Error, MeaningOf(failure.code).word, failure.what());
        code = failure.code;
        std::vector<Verdict> verdicts;
        verdicts.reserve(plan.changes.size());
        for (const PlannedChange &change : plan.changes)
            verdicts.push_back(change.isToDo ? Verdict::Rejected : Verdict::Unchanged);
        return verdicts;
    }
    std::vector<Verdict> verdicts = VerdictsOf(plan, ReadBack(work).table);
    code = JudgeVerdicts(verdicts);
    if (code != ExitCode::Done)
        work.output.Tell(Severity::Error, MeaningOf(code).word,
                         "not every option has been taken as it was programmed; the outcome of each is in the data");
    return verdicts;
}

/// Carries a plan out, as far as it is sound and wished for.
ExitCode CarryOut(const Work &work, const Undertaking &undertaking)
{
    const Plan &plan = undertaking.plan;
    TellFindings(work, undertaking);
    if (!plan.IsSound())
    {
        AddPlan(work, plan, {});
        return ExitCode::NotValid;
    }
    if (undertaking.before.isDamaged && !work.arguments.isDryRun)
        throw Failure(ExitCode::ToolFailed,
                      "the external tool's dump is damaged, so the plan cannot be trusted; nothing "
                      "was programmed");
    const bool hasToDo = plan.ToDo() > 0;
    ExitCode code = ExitCode::Done;
    if (work.arguments.isDryRun)
        AddPlan(work, plan, {});
    else if (!hasToDo)
        AddPlan(work, plan, VerdictsOf(plan, undertaking.before.table));
    else if (!IsAgreed(work, plan))
        throw Failure(ExitCode::NotPermitted, "not agreed; nothing was programmed");
    else
        AddPlan(work, plan, Apply(work, undertaking, code));
    return code == ExitCode::Done && hasToDo && work.arguments.tellsDifferenceByExitCode ? ExitCode::Different : code;
}

} // namespace

ExitCode CheckTemplate(const Work &work)
{
    const Undertaking undertaking = PrepareTemplate(work);
    TellFindings(work, undertaking);
    AddPlan(work, undertaking.plan, {});
    if (!undertaking.plan.IsSound())
        return ExitCode::NotValid;
    return undertaking.before.isDamaged ? ExitCode::InPart : ExitCode::Done;
}

ExitCode UpdateFromTemplate(const Work &work)
{
    return CarryOut(work, PrepareTemplate(work));
}

ExitCode SetOptions(const Work &work)
{
    Undertaking undertaking = Begin(work);
    undertaking.plan = MakePlan(undertaking.before.table, ReadAssignments(work.arguments.words), TemplateKind::Text);
    const ExitCode code = CarryOut(work, undertaking);
    const std::vector<Finding> &findings = undertaking.plan.findings;
    const bool isUnknown = std::any_of(findings.begin(), findings.end(),
                                       [](const Finding &finding) { return finding.code == "unknown-option"; });
    return code == ExitCode::NotValid && isUnknown ? ExitCode::NotFound : code;
}

ExitCode ResetOptions(const Work &work)
{
    Undertaking undertaking = Begin(work);
    ExitCode code = ExitCode::Done;
    std::vector<const BiosOption *> options;
    if (work.arguments.allOptions)
    {
        for (const BiosOption &option : undertaking.before.table.Options())
        {
            if (option.isChanged || option.pendingValue)
                options.push_back(&option);
        }
    }
    else
        options = FindOptions(work, undertaking.before.table, code);
    if (code != ExitCode::Done)
        return code;
    undertaking.plan = PlanDefaults(options);
    return CarryOut(work, undertaking);
}
