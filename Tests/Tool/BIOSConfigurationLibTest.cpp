#include "KnobDump.h"
#include "KnobFile.h"
#include "ModuleSupport.h"
#include "ToolProgram.h"
#include "xmlInterface.h"

#include <gtest/gtest.h>
#include <optional>

namespace
{

namespace fs = std::filesystem;
using namespace TestSupport;
using namespace StatusCode;

constexpr const char *kComponent = "BiosConfigurationModule";

Status InitLib()
{
    std::string extra;
    return biosConfigurationLibInit("BIOS", extra);
}

std::string Knobs(const std::string &content)
{
    return "<SYSTEM><biosknobs>" + content + "</biosknobs></SYSTEM>";
}

std::string Names(const KnobList &knobs)
{
    std::string names;
    for (const KnobDetails &knob : knobs)
        names.append(knob.name).append(1, ' ');
    return names;
}

class BIOSConfigurationLibTest : public testing::Test
{
protected:
    /// The knobs of a dump; they must be readable.
    KnobList Read(const std::string &dump, const std::string &listFile = "")
    {
        m_machine.UseDump(dump);
        KnobList knobs;
        EXPECT_EQ(InitLib(), Success);
        EXPECT_EQ(readKnob(knobs, listFile), Success);
        return knobs;
    }

    Machine &m_machine = Machine::Fresh();
};

TEST_F(BIOSConfigurationLibTest, FindsTheToolDirectory)
{
    const EnvironmentSetting programFiles("ProgramFiles", "C:\\Programs");
    const EnvironmentSetting other("BIOSCONFIG_TEST", "plain");
    std::string path = "before";
    for (const char *name : {"BIOSCONFIG_UNSET", ""})
        EXPECT_EQ(GetEnvironmentalVaribaleBiosLib(name, path), Failed) << name;
    EXPECT_EQ(path, "before");
    EXPECT_EQ(GetEnvironmentalVaribaleBiosLib("BIOSCONFIG_TEST", path), Success);
    EXPECT_EQ(path, "plain");
    EXPECT_EQ(GetEnvironmentalVaribaleBiosLib("ProgramFiles", path), Success);
    EXPECT_EQ(path, "C:\\Programs\\Quenor Corporation\\Quenor(R) Tarnwell Tool\\SupportedBinaries\\FENRIK\\");
}

TEST_F(BIOSConfigurationLibTest, InitTellsWhyTheToolCannotBeUsed)
{
    const std::string fn = " Fn:biosConfigurationLibInit biosConfigurationLibInit";
    const std::string noVariable = " **ERROR** " + fn + " - GetEnvironmentalVaribaleBiosLib failed\n";
    const std::string noFolder = " **ERROR**  <-- " + fn + " -failed to create Out directory \n";
    const std::string made = " **ERROR**  <-- " + fn + " - Out directory created \n";
    const std::string exec = " -->  Fn:Exec Exec\n";
    const std::string failed = " **ERROR**  <-- " + fn + " - failed to execute the command \n";
    const struct
    {
        const char *fault;
        Status status;
        std::vector<std::string> lines;
    } cases[] = {
        {"exit:0", Success, {made, exec, " <--  Fn:Exec Exec\n", " <-- " + fn + "\n"}},
        {"exit:1", NotFound, {made, exec, failed}},
        {"exit:2", ToolFailed, {made, exec, failed}},
        {"missing program", Failed, {made, exec, failed}},
        {"missing folder", Failed, {noFolder}},
        {"no variable", Failed, {noVariable}},
    };
    const TraceLog log(kComponent);
    for (const auto &[fault, status, lines] : cases)
    {
        Machine::Fresh().UseFault(fault);
        if (fault == std::string("missing program"))
            fs::remove(m_machine.ToolProgram());
        if (fault == std::string("missing folder"))
            fs::remove_all(m_machine.ToolFile(""));
        std::optional<EnvironmentSetting> programFiles;
        if (fault == std::string("no variable"))
            programFiles.emplace("ProgramFiles", "");
        TraceLog::Take();
        EXPECT_EQ(InitLib(), status) << fault;
        std::vector<std::string> expected = {" --> " + fn + "\n"};
        expected.insert(expected.end(), lines.begin(), lines.end());
        EXPECT_EQ(TraceLog::Take(), expected) << fault;
    }
}

TEST_F(BIOSConfigurationLibTest, WriteKnobTellsWhatTheToolMadeOfTheFile)
{
    const struct
    {
        const char *fault;
        const char *file;
        Status status;
        std::string end;
        std::size_t lines; // two where the tool is not started
    } cases[] = {
        {"exit:0", "a.b\\KNOBS.INI", Success, "writeKnob\n", 4},
        {"exit:0", "knobs", Success, "writeKnob\n", 4},
        {"exit:0", "knobs.txt", Failed, "writeKnob - failed , Improper file format provided \n", 2},
        {"exit:0", "bkc.new\\knobs", Failed, "writeKnob - failed , Improper file format provided \n", 2},
        {"exit:0", "a\"b.ini", Failed, "writeKnob - failed , the path cannot be passed to the tool \n", 2},
        {"exit:1", "knobs.ini", NotFound, "writeKnob - failed to execute the command \n", 3},
        {"crash", "knobs.ini", ToolFailed, "writeKnob - failed to execute the command \n", 3},
        {"missing program", "knobs.ini", Failed, "writeKnob - failed to execute the command \n", 3},
    };
    ASSERT_EQ(InitLib(), Success);
    const TraceLog log(kComponent);
    for (const auto &[fault, file, status, end, count] : cases)
    {
        m_machine.UseFault(fault);
        if (fault == std::string("missing program"))
            fs::remove(m_machine.ToolProgram());
        EXPECT_EQ(writeKnob(file), status) << fault << file;
        const std::vector<std::string> lines = TraceLog::Take();
        ASSERT_EQ(lines.size(), count) << fault << file;
        EXPECT_EQ(lines.front(), " -->  Fn:writeKnob writeKnob\n");
        EXPECT_EQ(lines.back(), (status == Success ? "" : " **ERROR** ") + std::string(" <--  Fn:writeKnob ") + end)
            << file;
    }
}

TEST_F(BIOSConfigurationLibTest, ReadsEveryFieldOfAKnob)
{
    const KnobList knobs =
        Read("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<SYSTEM>\r\n\t<other/>\r\n\t<biosknobs>\r\n"
             "\t\t<!-- first -->\r\n\t\t<comment name=\"Skipped\"/>\r\n"
             "\t\t<knob type=\"t\" setupType=\"s\" name=\"A\" varstoreIndex=\"v\" prompt=\"p\"\r\n "
             "\t\t\tdescription=\"one\r\n\ttwo &amp; \xC3\xA9\" UqiVal=\"u\" size=\"1\" offset=\"o\" depex=\"d\""
             " SetupPgPtr=\"M/N\" default=\"0x0\" CurrentVal=\"0x1\">\r\n"
             "\t\t\t<options>\r\n\t\t\t\t<option text=\"On\" value=\"0x1\"/>\r\n"
             "\t\t\t\t<option text=\"Off\" value=\"0x0\"/>\r\n\t\t\t</options>\r\n\t\t</knob>\r\n"
             "\t\t<knob name=\"TpmDevice\"/>\r\n\t\t<knob prompt=\"nameless\"/>\r\n<![CDATA[ ]]>"
             "\t\t<anything name=\"B\"><options><option text=\"x\" value=\"y\"/></options></anything>\r\n"
             "\t</biosknobs>\r\n\t<biosknobs><knob name=\"C\"/></biosknobs>\r\n</SYSTEM>\r\n");
    ASSERT_EQ(Names(knobs), "A B ");
    const KnobDetails &knob = *knobs.begin();
    const KnobDetails::Text *const fields[] = {
        &knob.type,        &knob.setupType,    &knob.name,      &knob.varstoreIndex, &knob.prompt,
        &knob.description, &knob.UqiVal,       &knob.size,      &knob.offset,        &knob.depex,
        &knob.SetupPgPtr,  &knob.defaultValue, &knob.CurrentVal};
    std::string all;
    for (const KnobDetails::Text *field : fields)
        all.append(*field).append(1, '|');
    EXPECT_EQ(all, "t|s|A|v|p|onetwo & \xC3\xA9|u|1|o|d|M/N|0x0|0x1|");
    EXPECT_EQ(knob.options, (std::pmr::map<KnobDetails::Text, KnobDetails::Text>{{"Off", "0x0"}, {"On", "0x1"}}));

    const KnobDetails &bare = *std::next(knobs.begin());
    EXPECT_EQ(bare.prompt, "NA");
    EXPECT_EQ(bare.description, "NA");
    EXPECT_TRUE(bare.options.empty()); // without a current value they are not read
}

TEST_F(BIOSConfigurationLibTest, PairsOptionsWithWhatWasHeld)
{
    const std::pair<const char *, std::pmr::map<KnobDetails::Text, KnobDetails::Text>> cases[] = {
        {"", {}},
        {"<list><o text='A' value='1'/><o text='A' value='2'/></list>", {{"A", "1"}}},
        {"<list><o text='A' value='1'/><o text='B' value=''/></list>", {{"A", "1"}, {"B", "1"}}},
        {"<list><o value='1'/><o text='A'/></list>", {{"A", "1"}}},
        {" <list><o text='A' value='1'/></list>", {}}, // the first child is a blank
        {"<!-- --><list><o text='A' value='1'/></list>", {}},
    };
    for (const auto &[children, options] : cases)
    {
        const KnobList knobs = Read(Knobs(std::string("<k name='N' CurrentVal='0'>") + children + "</k>"));
        ASSERT_EQ(knobs.Size(), 1U) << children;
        EXPECT_EQ(knobs.begin()->options, options) << children;
    }
}

TEST_F(BIOSConfigurationLibTest, AListFileSelectsAndOrders)
{
    const std::string dump = Knobs("<k name='A'/><k name='B' prompt='first'/><k name='B'/><k name='C'/>");
    const std::string list = m_machine.HostFile("knobs.INI");
    WriteFile(list, "[BiosKnobs]\r\nC=1\r\n;A=1\r\nA =1\r\nB==2\r\nUnknown=1\r\nA=2;x\r\n\r\nC=3");
    KnobList knobs = Read(dump, list);
    EXPECT_EQ(Names(knobs), "C B C ");
    EXPECT_EQ(std::next(knobs.begin())->prompt, "first");

    WriteFile(m_machine.HostFile("none.ini"), "Unknown=1\n");
    EXPECT_EQ(readKnob(knobs, m_machine.HostFile("none.ini")), Success);
    EXPECT_EQ(Names(knobs), "C B C ");
}

TEST_F(BIOSConfigurationLibTest, NamesTheLineOfTheDumpsFileWhereItIsDamaged)
{
    const struct
    {
        std::string knobs;
        std::int32_t line;
    } cases[] = {
        {"\n\t<k name='A'/>\r\n\t\t<k name='B'\n prompt='a & b'/>\n", 4},
        {"\n\n<k name='A'/>\n\x01", 4},
        {"<k name='A'/>\n<k\nname='B'/>", 1}, // only without its line feeds
        {std::string("\n<k name='A'/>\n\0\n", 17), 3},
        {"\n<k name='A'/><k name='\xFF'/>\n", 2},
        {"\n<k name='A'/>\n<p:k/>", 0}, // no more than a namespace without a name
        {std::string("<k name='A'/>").append(11'000'000, ' '), 0},
    };
    for (const auto &[knobs, line] : cases)
    {
        m_machine.UseDump(Knobs(knobs));
        ASSERT_EQ(InitLib(), StatusCode::Success);
        KnobList read;
        std::int32_t damagedLine = -1;
        EXPECT_EQ(readKnob(read, "", &damagedLine), StatusCode::Success);
        EXPECT_EQ(damagedLine, line) << knobs.substr(0, 40);
        EXPECT_FALSE(read.IsEmpty());
    }
    // Declarations of other kinds are no fault.
    EXPECT_EQ(Names(Read("<!DOCTYPE SYSTEM [<!ENTITY % p 'q'><!ATTLIST k name CDATA 'D'>]>" + Knobs("<k/>"))),
              Names(Read(Knobs("<k name='D'/>"))));
}

TEST_F(BIOSConfigurationLibTest, TellsWhyKnobsCannotBeRead)
{
    WriteFile(m_machine.HostFile("empty.ini"), "[BiosKnobs]\n");
    const std::string good = Knobs("<k name='A'/>");
    const struct
    {
        std::string dump;
        std::string listFile;
        const char *message;
        bool emptied;
    } cases[] = {
        {"", "", "readKnob - Doc Pointer is NULL\n", false},
        {"no markup", "", "readKnob - CCXmlGetRootElement return value is NULL\n", false},
        {"<System><biosknobs><k name='A'/></biosknobs></System>", "", "readKnob - Improper file provided\n", false},
        {"<SYSTEM/>", "", "no knobs found\n", true},
        {"<!DOCTYPE SYSTEM [<!ENTITY biosknobs 'x'>]>" + good, "", "readKnob - Doc Pointer is NULL\n", false},
        {"<!DOCTYPE SYSTEM [<!ENTITY x SYSTEM 'x' NDATA n>]>" + good, "", "readKnob - Doc Pointer is NULL\n", false},
        {"<!DOCTYPE SYSTEM [<!ENTITY % p '<!ENTITY x \"y\">'> %p;]>" + good, "", "readKnob - Doc Pointer is NULL\n",
         false},
        {Knobs("<k/>"), "", "no knobs found\n", true},
        {good, m_machine.HostFile("list.txt"), "ReadKnob - failed , Improper file format provided \n", false},
        {good, m_machine.HostFile("empty.ini"), "ReadKnob - failed , Improper file- No Knobs found in file \n", false},
        {good, m_machine.HostFile("missing.ini"), "ReadKnob - failed , Improper file- No Knobs found in file \n",
         false},
    };
    const TraceLog log(kComponent, TRACE_ERROR);
    for (const auto &row : cases)
    {
        KnobList knobs = Read(good);
        m_machine.UseDump(row.dump);
        TraceLog::Take();
        EXPECT_EQ(readKnob(knobs, row.listFile), Failed) << row.dump;
        EXPECT_EQ(TraceLog::Take(), std::vector{(row.emptied ? " **ERROR** " : " **ERROR**  <-- ") +
                                                std::string(" Fn:readKnob ") + row.message})
            << row.dump;
        EXPECT_EQ(knobs.IsEmpty(), row.emptied) << row.dump;
    }
}

} // namespace
