#include "Commands.h"

#include <algorithm>

namespace
{

/// `text` as it stands, for a page of the manual.
std::string Roff(std::string_view text)
{
    std::string escaped;
    bool isAtStart = true;
    for (const char character : text)
    {
        if (isAtStart && (character == '.' || character == '\''))
            escaped += "\\&";
        if (character == '\\')
            escaped += "\\e";
        else if (character == '-')
            escaped += "\\-";
        else if (character == '\'')
            escaped += "\\(aq";
        else
            escaped += character;
        isAtStart = character == '\n';
    }
    return escaped;
}

std::string Capitals(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char letter)
                   { return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter; });
    return text;
}

std::string Spellings(const OptionHelp &option)
{
    std::string spellings;
    for (const char character : option.names)
        spellings += character == ',' ? std::string(", ") : std::string(1, character);
    return spellings;
}

std::string ValuesText(const OptionHelp &option)
{
    std::string text;
    for (const std::string &value : option.values)
        text += (text.empty() ? "; one of: " : ", ") + value;
    return text;
}

void AddCommand(const CommandHelp &command, Output &output)
{
    output.Add(".SS \"" + Roff(command.name + (command.words.empty() ? "" : " " + command.words)) + "\"\n" +
               Roff(command.text) + ".\n");
    for (const OptionHelp &option : command.options)
    {
        if (option.names.find("--help") != std::string::npos)
            continue;
        output.Add(".TP\n\\fB" + Roff(Spellings(option)) + "\\fR" +
                   (option.valueName.empty() ? "" : " \\fI" + Roff(option.valueName) + "\\fR") + "\n" +
                   Roff(option.text + ValuesText(option)) + ".\n");
    }
}

} // namespace

ExitCode PrintManual(const Work &work)
{
    Output &output = work.output;
    output.Add(".TH BIOSCONFIG 1 \"\" \"biosconfig " BIOSCONFIG_VERSION "\" \"BIOS configuration module\"\n"
               ".SH NAME\nbiosconfig \\- shows, compares and programs BIOS options\n"
               ".SH SYNOPSIS\n.B biosconfig\n.I COMMAND\n[\\fIOPTIONS\\fR] [\\fIARGUMENTS\\fR]\n"
               ".SH COMMANDS\n");
    for (const CommandHelp &command : DescribeCommands())
        AddCommand(command, output);
    for (const HelpTopic &topic : DescribeTopics())
        output.Add(".SH \"" + Roff(Capitals(topic.title)) + "\"\n.nf\n" + Roff(topic.text) + ".fi\n");
    return ExitCode::Done;
}
