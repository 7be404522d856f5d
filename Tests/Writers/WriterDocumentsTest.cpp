// Runs the cases under Data/Writers; the README there says how they are written.

#include "ModuleSupport.h"
#include "ReportFormat.h"

#include <gtest/gtest.h>
#include <sstream>

namespace
{

using TestSupport::TraceLog;

struct Call
{
    std::string operation;
    std::vector<std::string> arguments;
    Status status = StatusCode::Success;
    std::string failure = {};
};

struct Case
{
    std::string what;
    std::vector<Call> calls = {};
    std::string document = {};
};

std::string Unescape(std::string text)
{
    for (std::size_t found = text.find('\\'); found != std::string::npos; found = text.find('\\', found + 1))
    {
        const char kind = text.at(found + 1);
        if (kind == 'x')
            text.replace(found, 4, 1, static_cast<char>(std::stoi(text.substr(found + 2, 2), nullptr, 16)));
        else
            text.replace(found, 2, 1, kind == 'n' ? '\n' : kind == 't' ? '\t' : kind);
    }
    return text;
}

Call ParseCall(const std::string &line)
{
    const std::vector<std::string> sides = ModuleDataWriter::SplitString(line, " -> ");
    const std::size_t blank = sides[0].find(' ');
    Call call = {sides[0].substr(0, blank), {}};
    if (blank != std::string::npos)
        call.arguments = ModuleDataWriter::SplitString(Unescape(sides[0].substr(blank + 1)), " | ");
    call.arguments.resize(2);
    if (sides.size() > 1)
    {
        const std::size_t colon = sides[1].find(": ");
        call.status = sides[1].substr(0, colon) == "NotFound" ? StatusCode::NotFound : StatusCode::Missing;
        call.failure = sides[1].substr(colon + 2) + '\n';
    }
    return call;
}

std::vector<Case> ReadCases(const std::string &writerClass)
{
    std::istringstream lines(TestSupport::ReadFile(TEST_DATA_DIRECTORY "Writers/" + writerClass));
    std::vector<Case> cases;
    for (std::string line; std::getline(lines, line);)
    {
        if (line.starts_with("# "))
            cases.push_back({line.substr(2)});
        else if (line.starts_with("= "))
            cases.back().document += Unescape(line.substr(2));
        else if (!line.empty())
            cases.back().calls.push_back(ParseCall(line));
    }
    return cases;
}

Status Make(const Call &call, ModuleDataWriter &writer, std::string &buffer)
{
    const auto &[operation, arguments, status, failure] = call;
    if (operation == "Initialize")
        return writer.Initialize(arguments[0], arguments[1]);
    if (operation == "AddSubMod")
        return writer.AddSubMod(arguments[0]);
    if (operation == "AddTab")
        return writer.AddTab(arguments[0], arguments[1]);
    if (operation == "AddGroup")
        return writer.AddGroup(arguments[0]);
    if (operation == "AddRow")
        return writer.AddRow(arguments[0]);
    return operation == "CopyDataToBuffer" ? writer.CopyDataToBuffer(buffer) : writer.UnInitialize();
}

/// What a call must trace: its way in and its way out. A JSON writer adds a group without the latter.
std::vector<std::string> TraceOf(const Call &call, const std::string &writerClass)
{
    const std::string function = " Fn:" + writerClass + "::" + call.operation + " ";
    std::vector<std::string> lines = {" --> " + function + "\n"};
    if (!call.failure.empty())
        lines.push_back(" **ERROR**  <-- " + function + call.failure);
    else if (call.operation != "AddGroup" || writerClass.find("JSON") == std::string::npos)
        lines.push_back(" <-- " + function + "\n");
    return lines;
}

void Check(const Case &tested, OutputKind kind, const std::string &writerClass)
{
    const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
    const TraceLog log(writerClass.c_str());
    std::string buffer = "before";
    for (const Call &call : tested.calls)
    {
        TraceLog::Take();
        EXPECT_EQ(Make(call, *writer, buffer), call.status) << call.operation;
        EXPECT_EQ(TraceLog::Take(), TraceOf(call, writerClass)) << call.operation;
    }
    writer->CopyDataToBuffer(buffer);
    writer->UnInitialize();
    EXPECT_EQ(buffer, tested.document);
}

TEST(WriterDocuments, AreWhatTheCasesSay)
{
    const struct
    {
        OutputKind kind;
        const char *writerClass;
        std::size_t cases;
    } writers[] = {
        {OutputKind::UiXml, "ModuleUIXMLWriter", 3},      {OutputKind::LogXml, "ModuleLogXMLWriter", 10},
        {OutputKind::LogHtml, "ModuleLogHTMLWriter", 10}, {OutputKind::LogHtmlXml, "ModuleLogHTMLXMLWriter", 4},
        {OutputKind::LogJson, "ModuleLogJSONWriter", 11}, {OutputKind::UiJson, "ModuleUIJSONWriter", 10}};
    for (const auto &[kind, writerClass, count] : writers)
    {
        const std::vector<Case> cases = ReadCases(writerClass);
        EXPECT_EQ(cases.size(), count) << writerClass;
        for (const Case &tested : cases)
        {
            SCOPED_TRACE(std::string(writerClass) + ": " + tested.what);
            Check(tested, kind, writerClass);
        }
    }
}

} // namespace
