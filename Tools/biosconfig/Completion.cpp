#include "Commands.h"
#include "DumpWords.h"
#include "KnobDump.h"
#include "LowerAscii.h"
#include "Platform.h"

#include <algorithm>

namespace
{

/// Which commands take what behind them.
bool TakesNames(Command command)
{
    return command == Command::List || command == Command::Get || command == Command::Show ||
           command == Command::Export || command == Command::Reset;
}

bool TakesFiles(Command command)
{
    return command == Command::Check || command == Command::Update || command == Command::Diff;
}

constexpr std::string_view kShells[] = {"bash", "zsh", "fish", "powershell"};
/// For the shell: complete names of files.
constexpr const char *kFilesWord = ":files";

constexpr const char *kBashScript = R"sh(# Completes command lines of biosconfig in bash.
_biosconfig()
{
    local line=${COMP_LINE:0:COMP_POINT} words word current
    read -ra words <<<"$line"
    [[ $line != *[[:space:]] ]] || words+=("")
    current=${words[-1]}
    COMPREPLY=()
    while IFS= read -r word; do
        if [[ $word == :files ]]; then
            while IFS= read -r word; do COMPREPLY+=("$word"); done < <(compgen -f -- "$current")
            compopt -o filenames 2>/dev/null
        else
            # bash takes the text behind a "=" for a word of its own.
            [[ $current != *=* ]] || word=${word#*=}
            COMPREPLY+=("$(printf %q "$word")")
        fi
    done < <("${words[0]}" complete-words -- "${words[@]:1}" 2>/dev/null)
    [[ ${#COMPREPLY[@]} != 1 || ${COMPREPLY[0]} != *= ]] || compopt -o nospace 2>/dev/null
}
complete -F _biosconfig biosconfig
)sh";

constexpr const char *kZshScript = R"sh(#compdef biosconfig
# Completes command lines of biosconfig in zsh.
_biosconfig()
{
    local -a found
    local word
    for word in ${(f)"$(${words[1]} complete-words -- ${words[2,CURRENT]} 2>/dev/null)"}; do
        if [[ $word == :files ]]; then _files; else found+=("$word"); fi
    done
    compadd -S '' -- ${(M)found:#*=}
    compadd -- ${found:#*=}
}
if [[ $funcstack[1] == _biosconfig ]]; then _biosconfig "$@"; else compdef _biosconfig biosconfig; fi
)sh";

constexpr const char *kFishScript = R"sh(# Completes command lines of biosconfig in fish.
function __biosconfig_words
    set -l words (commandline -opc) (commandline -ct)
    for word in ($words[1] complete-words -- $words[2..-1] 2>/dev/null)
        if test "$word" = ":files"
            __fish_complete_path (commandline -ct)
        else
            echo $word
        end
    end
end
complete -c biosconfig -f -a '(__biosconfig_words)'
)sh";

constexpr const char *kPowershellScript = R"sh(# Completes command lines of biosconfig in PowerShell.
Register-ArgumentCompleter -Native -CommandName biosconfig, biosconfig.exe -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)
    $words = @($commandAst.CommandElements | ForEach-Object { $_.ToString() })
    if ($wordToComplete -eq '') { $words += '' }
    $rest = @($words | Select-Object -Skip 1)
    & $words[0] complete-words -- @rest 2>$null | ForEach-Object {
        if ($_ -eq ':files') {
            Get-ChildItem -Path "$wordToComplete*" -ErrorAction SilentlyContinue | ForEach-Object {
                [System.Management.Automation.CompletionResult]::new($_.FullName)
            }
        } else {
            $text = if ($_ -match '\s') { "'$_'" } else { $_ }
            [System.Management.Automation.CompletionResult]::new($text, $_, 'ParameterValue', $_)
        }
    }
}
)sh";

/// In the order of kShells.
constexpr const char *kScripts[] = {kBashScript, kZshScript, kFishScript, kPowershellScript};

/// Finds what could stand in the place of the last of `words`.
class Completer
{
public:
    Completer(const Work &work, const std::vector<std::string> &words)
        : m_work(work), m_words(words), m_current(words.empty() ? "" : words.back()), m_commands(DescribeCommands())
    {
    }

    void Complete()
    {
        if (m_words.size() < 2)
        {
            for (const CommandHelp &command : m_commands)
                Offer(command.name);
            Offer("--help");
            return Offer("--version");
        }
        const auto command = std::find_if(m_commands.begin(), m_commands.end(),
                                          [&](const CommandHelp &known) { return known.name == m_words.front(); });
        if (command != m_commands.end() && !CompleteValue(*command))
            CompleteWord(*command);
    }

private:
    void Offer(std::string_view word)
    {
        if (LowerAscii(std::string(word.substr(0, m_current.size()))) == LowerAscii(m_current))
            m_work.output.Add(std::string(word) + "\n");
    }

    static const OptionHelp *FindOption(const CommandHelp &command, const std::string &spelling)
    {
        for (const OptionHelp &option : command.options)
        {
            const std::string names = "," + option.names + ",";
            if (names.find("," + spelling + ",") != std::string::npos)
                return &option;
        }
        return nullptr;
    }

    /// The value of an option that stands in front of it, or behind its "="; false where there is none.
    bool CompleteValue(const CommandHelp &command)
    {
        const OptionHelp *const option = FindOption(command, m_words[m_words.size() - 2]);
        if (!option || option->valueName.empty())
            return false;
        for (const std::string &value : option->values)
            Offer(value);
        if (option->names.find("--page") != std::string::npos)
            OfferPages();
        else if (option->values.empty())
            m_work.output.Add(std::string(kFilesWord) + "\n");
        return true;
    }

    void CompleteWord(const CommandHelp &command)
    {
        if (m_current.starts_with('-'))
        {
            for (const OptionHelp &option : command.options)
                Offer(option.names.substr(option.names.find("--")));
            return;
        }
        if (TakesFiles(command.command))
            m_work.output.Add(std::string(kFilesWord) + "\n");
        else if (command.command == Command::Completion)
            std::for_each(std::begin(kShells), std::end(kShells), [&](std::string_view shell) { Offer(shell); });
        else if (command.command == Command::Help)
            std::for_each(m_commands.begin(), m_commands.end(), [&](const CommandHelp &help) { Offer(help.name); });
        else if (command.command == Command::Set)
            OfferAssignments();
        else if (TakesNames(command.command))
            OfferNames("");
    }

    /// What stands behind an option in front of the word; empty where it is not there.
    std::string ValueOf(std::string_view option) const
    {
        for (std::size_t index = 0; index + 1 < m_words.size(); ++index)
        {
            if (m_words[index] == option)
                return m_words[index + 1];
        }
        return {};
    }

    /// The dump of --from, or the last one that the tool has made.
    std::string DumpPath() const
    {
        std::string dump = ValueOf("--from");
        if (!dump.empty())
            return dump;
        Arguments arguments = m_work.arguments;
        arguments.programFiles = ValueOf("--program-files");
        if (arguments.programFiles.empty())
            Platform::ReadEnvironmentVariable("BIOSCONFIG_PROGRAM_FILES", arguments.programFiles);
        return toolDumpFile(ToolPlace(arguments));
    }

    void OfferNames(const std::string &behind)
    {
        for (const std::string &name : ReadDumpWords(DumpPath(), "").names)
            Offer(name + behind);
    }

    void OfferAssignments()
    {
        const std::string name = m_current.substr(0, m_current.find('='));
        if (name == m_current)
            return OfferNames("=");
        for (const std::string &choice : ReadDumpWords(DumpPath(), name).choices)
            Offer(name + "=" + choice);
    }

    void OfferPages()
    {
        for (const std::string &page : ReadDumpWords(DumpPath(), "").pages)
            Offer(page);
    }

    const Work &m_work;
    const std::vector<std::string> &m_words;
    std::string m_current;
    std::vector<CommandHelp> m_commands;
};

} // namespace

ExitCode PrintCompletion(const Work &work)
{
    const std::string &shell = work.arguments.words.front();
    const auto *const found = std::find(std::begin(kShells), std::end(kShells), shell);
    if (found == std::end(kShells))
        throw Failure(ExitCode::WrongUsage,
                      "there is no completion for \"" + shell + "\"; there is one for bash, zsh, fish and powershell");
    work.output.Add(kScripts[found - std::begin(kShells)]);
    return ExitCode::Done;
}

ExitCode CompleteWords(const Work &work)
{
    try
    {
        Completer(work, work.arguments.words).Complete();
    }
    catch (const Failure &failure)
    {
        work.output.TellVerbose(failure.what()); // nothing to complete with
    }
    return ExitCode::Done;
}
