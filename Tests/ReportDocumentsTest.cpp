// The documents of one small invented firmware, of every kind, against those under Data.

#include "BiosConfiguration.h"
#include "ModuleDataWriter.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

/// Puts knobs into a module as a dump would, and hands out its groups.
struct BiosConfigModuleInspector
{
    static GroupMap &Fill(BiosConfigModule &module, KnobList knobs)
    {
        module.m_knobs = std::move(knobs);
        module.PrintDataToVector();
        return module.m_groups;
    }
};

namespace
{

const std::string kData = TEST_DATA_DIRECTORY;

KnobList FirmwareKnobs()
{
    KnobList knobs;
    const xmlDocPtr dump = CCXmlParseXMLfile((kData + "Firmware.xml").c_str());
    const xmlNodePtr list = CCXmlGetNextNodeChild(CCXmlGetRootElement(dump), nullptr);
    for (xmlNodePtr knob = CCXmlGetNextNodeChild(list, nullptr); knob; knob = CCXmlGetNextNodeChild(list, knob))
    {
        KnobDetails record;
        if (getknobDetails(knob, record) == StatusCode::Success)
            knobs.push_back(record);
    }
    CCXmlFreeDocPtr(dump);
    return knobs;
}

/// The calls that the report makes.
std::string MakeReport(OutputKind kind)
{
    BiosConfigModule module;
    const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
    writer->Initialize(module.GetModuleName(), "");
    writer->AddTab("Bios Options", "Name,Value,Prompt,Description");
    for (const auto &[name, rows] : BiosConfigModuleInspector::Fill(module, FirmwareKnobs()))
    {
        writer->AddGroup(name);
        for (const std::string &row : rows)
            writer->AddRow(row);
    }
    std::string report;
    writer->CopyDataToBuffer(report);
    writer->UnInitialize();
    return report;
}

std::string ReadBytes(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Golden
{
    OutputKind kind;
    const char *file;
};
constexpr Golden kGoldens[] = {
    {OutputKind::UiXml, "Report_UI.xml"},     {OutputKind::LogXml, "Report_LOG.xml"},
    {OutputKind::LogHtml, "Report_LOG.html"}, {OutputKind::LogHtmlXml, "Report_LOG.txt"},
    {OutputKind::LogJson, "Report_LOG.json"}, {OutputKind::UiJson, "Report_UI.json"},
};

TEST(ReportDocuments, AreTheGoldenOnes)
{
    ASSERT_EQ(FirmwareKnobs().size(), 7U);
    for (const Golden &golden : kGoldens)
    {
        const std::string report = MakeReport(golden.kind);
        EXPECT_EQ(report, ReadBytes(kData + golden.file)) << golden.file;
    }
}

} // namespace
