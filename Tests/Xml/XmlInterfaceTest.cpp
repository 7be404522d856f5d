#include "xmlInterface.h"

#include "ModuleSupport.h"
#include "xmlSavedForm.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <memory>
#include <random>

namespace
{

using namespace TestSupport;

using Document = CCXmlDocumentOwner;

Document Parse(const std::string &text)
{
    return Document(CCXmlParseXMLBuffer(text.data(), static_cast<std::int32_t>(text.size())));
}

Document NewDocument(const char *rootName)
{
    Document document(CCXmlCreateDoc(nullptr));
    CCXmlSetRootElement(document.get(), CCXmlAddNode(nullptr, rootName, nullptr));
    return document;
}

std::string Dump(xmlDocPtr document)
{
    char *block = nullptr;
    std::int32_t size = -1;
    EXPECT_EQ(CCXmlDocDumpMemory(document, &block, &size), StatusCode::Success);
    const std::unique_ptr<char, decltype(&std::free)> owned(block, std::free);
    EXPECT_EQ(block[size], '\0');
    return {block, static_cast<std::size_t>(size)};
}

TEST(XmlInterface, RefusesNullArgumentsWithTheirLines)
{
    const TraceLog log("XMLParser", TRACE_ERROR | TRACE_EXIT);
    CCInitializeXMLParser();
    const Document document = NewDocument("Root");
    const xmlNodePtr root = CCXmlGetRootElement(document.get());
    char *block = nullptr;
    std::int32_t size = 0;
    TraceLog::Take();

    EXPECT_EQ(CCXmlParseXMLfile(nullptr), nullptr);
    EXPECT_EQ(CCXmlParseXMLBuffer(nullptr, 4), nullptr);
    EXPECT_EQ(CCXmlGetRootElement(nullptr), nullptr);
    EXPECT_EQ(CCXmlSetRootElement(document.get(), nullptr), nullptr);
    EXPECT_EQ(CCXmlGetNodeElementName(nullptr), nullptr);
    EXPECT_EQ(CCXmlGetNextNodeChild(nullptr, root), nullptr);
    EXPECT_EQ(CCXmlAddNode(root, nullptr, "x"), nullptr);
    EXPECT_EQ(CCXmlDocDumpMemory(document.get(), nullptr, &size), StatusCode::Missing);
    EXPECT_EQ(CCXmlDocDumpMemory(nullptr, &block, &size), StatusCode::Missing);
    EXPECT_EQ(CCXmlSave("file", nullptr), StatusCode::Failed);
    EXPECT_EQ(CCXmlFreeDocPtr(nullptr), StatusCode::Failed);
    EXPECT_EQ(CCXmlGetAttributeValue(root, nullptr), nullptr);
    CCXmlSetAttributeValue(root, "Name", nullptr);
    EXPECT_EQ(CCXmlGetAttributeValue(root, "Name"), nullptr);

    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void *>(nullptr));
    const std::vector<std::string> expected = {
        " **ERROR**  Fn:CCXmlParseXMLfile Failed to read the XML file " + std::string(address),
        " <--  Fn:CCXmlParseXMLfile return NULL",
        " **ERROR**  Fn:CCXmlParseXMLBuffer Failed to read the XML file " + std::string(address),
        " <--  Fn:CCXmlParseXMLBuffer return status " + std::string(address),
        " <--  Fn:CCXmlGetRootElement Return NULL",
        " <--  Fn:CCXmlSetRootElement Return NULL",
        " <--  Fn:CCXmlGetNodeElementName Return NULL",
        " <--  Fn:CCXmlGetNextNodeChild Return NULL",
        " **ERROR**  Fn:CCXmlAddNode XML pointer passed is NULL",
        " <--  Fn:CCXmlAddNode return status NULL",
        " **ERROR**  Fn:CCXmlDocDumpMemory Memory pointer passed is NULL",
        " **ERROR**  Fn:CCXmlDocDumpMemory Document Pointer or Memory pointer passed is NULL",
        " **ERROR**  Fn:CCXmlSave File name passed is NULL",
        " <--  Fn:CCXmlSave return status 5",
        " <--  Fn:CCXmlFreeDocPtr Document Pointer passed is NULL",
        " **ERROR**  Fn:CCXmlGetAttributeValue Node or attribute name passed is NULL",
        " <--  Fn:CCXmlGetAttributeValue Return NULL",
        " **ERROR**  Fn:CCXmlSetAttributeValue Node or attribute name or attribute value passed is NULL",
        " <--  Fn:CCXmlSetAttributeValue ",
        " <--  Fn:CCXmlGetAttributeValue Return value (null)",
    };
    EXPECT_EQ(TraceLog::Take(), expected);
    CCDeInitializeXMLParser();
}

TEST(XmlInterface, WalksChildrenOfEveryKind)
{
    const Document document = Parse("<a>text<!-- c --><b/> <c/></a>");
    const xmlNodePtr root = CCXmlGetRootElement(document.get());
    std::string names;
    for (xmlNodePtr child = CCXmlGetNextNodeChild(root, nullptr); child; child = CCXmlGetNextNodeChild(root, child))
        names += std::string(CCXmlGetNodeElementName(child)) + ' ';
    EXPECT_EQ(names, "text comment b text c ");
}

TEST(XmlInterface, ParsesWhatIsThereOfADamagedText)
{
    const std::pair<std::string, const char *> cases[] = {
        {"<a b='1\r\n2\t3'>x\r\ny\rz</a>", "<a b=\"1 2 3\">x\ny\nz</a>"},
        {"<!DOCTYPE a [<!ENTITY % e '<!--x-->'>]><a/>", "<!DOCTYPE a [\n<!ENTITY % e \"<!--x-->\">\n]>\n<a/>"},
        {"<a><b>x</c><d/>", "<a><b>x</b><d/></a>"},
        {"<a><b c='1' c='2'/><![CDATA[ <x> ]]>&", "<a><b c=\"1\" c=\"2\"/><![CDATA[ <x> ]]></a>"},
        {"<a/>behind", "<a/>"},
    };
    for (const auto &[text, serialised] : cases)
        EXPECT_EQ(Dump(Parse(text).get()), std::string("<?xml version=\"1.0\"?>\n") + serialised + '\n') << text;
    EXPECT_EQ(CCXmlGetRootElement(Parse("no markup").get()), nullptr);
    for (const char *declared : {"e '<b/>'", "e SYSTEM 'file'", "e SYSTEM 'file' NDATA n"})
        EXPECT_EQ(Parse(std::string("<!DOCTYPE a [<!ENTITY ") + declared + ">]><a>x</a>"), nullptr) << declared;
}

TEST(XmlInterface, AddNodeResolvesReferencesAndTextNodesKeepEveryCharacter)
{
    const std::pair<std::string, const char *> cases[] = {
        {"A & B, R&D mode; on &amp; &#65; &", "A &amp; B, R&amp;D mode; on &amp;amp; &amp;#65; &amp;"},
        {"<a href=\"x\">'q'\t", "&lt;a href=\"x\"&gt;'q'\t"},
        {"\xC3\xA9 \xF0\x9F\x98\x80", "&#xE9; &#x1F600;"},
        {"\xED\xA0\xBD\xED\xB8\x80", "&#x1F600;"}, // two surrogates, encoded one by one
        {"\xED\xA0\xBD!", "&#xFFFD;!"},            // one alone
        {std::string("a\0b\x01 \xFF\xEF\xBF\xBF", 9), "a&#xFFFD;b&#xFFFD; &#xFFFD;&#xFFFD;"},
    };
    for (const auto &[text, serialised] : cases)
    {
        const Document document = NewDocument("Root");
        CCXmlAddTextNode(CCXmlGetRootElement(document.get()), "Row", text);
        EXPECT_EQ(Dump(document.get()),
                  std::string("<?xml version=\"1.0\"?>\n<Root><Row>") + serialised + "</Row></Root>\n");
    }
    const Document document = NewDocument("Root");
    const xmlNodePtr root = CCXmlGetRootElement(document.get());
    CCXmlAddNode(root, "Row", "&lt;&#65;");
    CCXmlSetTextAttribute(root, "Name", "&amp;\x80\"");
    EXPECT_EQ(Dump(document.get()),
              "<?xml version=\"1.0\"?>\n<Root Name=\"&amp;amp;&#xFFFD;&quot;\"><Row>&lt;A</Row></Root>\n");
}

TEST(XmlInterface, SaveReplacesTheFileWholeOrLeavesIt)
{
    const TemporaryDirectory directory;
    const Document document = NewDocument("New");
    const std::string path = directory.Path("file.xml");
    WriteFile(path, "<Old/>");
    EXPECT_EQ(CCXmlSave(path.c_str(), document.get()), StatusCode::Success);
    EXPECT_EQ(ReadFile(path), "<?xml version=\"1.0\"?>\n<New/>\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.Path("")), {}), 1);

    // A path is taken as it stands.
    for (const char *folder : {"a%41b", "aAb"})
        std::filesystem::create_directory(directory.Path(folder));
    WriteFile(directory.Path("aAb/x.xml"), "<Other/>");
    EXPECT_EQ(CCXmlSave(directory.Path("a%41b/x.xml").c_str(), document.get()), StatusCode::Success);
    EXPECT_EQ(ReadFile(directory.Path("aAb/x.xml")), "<Other/>");
    const Document read(CCXmlParseXMLfile(directory.Path("a%41b/x.xml").c_str()));
    EXPECT_EQ(CCXmlGetNodeElementName(CCXmlGetRootElement(read.get())), std::string("New"));

    EXPECT_EQ(CCXmlSave(directory.Path("no folder/file.xml").c_str(), document.get()), StatusCode::Failed);
}

/// Whatever passes for the saved form is what libxml2 reads and saves the same; and what it saves passes.
TEST(XmlInterface, KnowsTheSavedFormByTheByte)
{
    const Document document = NewDocument("Tool");
    const xmlNodePtr root = CCXmlGetRootElement(document.get());
    CCXmlSetTextAttribute(root, "Name", "a<\"\t&\xC3\xA9>");
    for (const char *value : {"", "b\xF0\x9F\x98\x80'", "\n c"})
        CCXmlSetTextAttribute(CCXmlAddNode(CCXmlAddNode(root, "Error", nullptr), "Message", nullptr), "Name", value);
    CCXmlSetTextAttribute(CCXmlAddNode(root, "Error", nullptr), "Date", "d");
    const std::string saved = Dump(document.get());
    EXPECT_EQ(RootChildrenInSavedForm(saved).size(), saved.size() - saved.find("<Error") - 8);

    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    const std::string_view pieces[] = {"<", ">", "/", "\"",   " ",      "&",         ";",
                                       "0", "A", "a", "<!--", "&#x80;", "Name=\"\" "};
    int accepted = 0;
    for (int run = 0; run < 20000; ++run)
    {
        std::string text = saved;
        const std::size_t position = random() % text.size();
        text.replace(position, random() % 3, pieces[random() % std::size(pieces)]);
        if (RootChildrenInSavedForm(text).empty())
            continue;
        ++accepted;
        const Document read(
            xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_NOERROR));
        ASSERT_TRUE(read) << text << " seed " << seed;
        ASSERT_EQ(Dump(read.get()), text) << "seed " << seed;
    }
    EXPECT_GT(accepted, 100);
}

int hostMessages = 0;

TEST(XmlInterface, KeepsMessagesAndTheHostsHandlersToThemselves)
{
    const xmlStructuredErrorFunc before = xmlStructuredError;
    const auto countMessage = [](void *, auto *) { ++hostMessages; };
    xmlSetStructuredErrorFunc(&hostMessages, countMessage);
    testing::internal::CaptureStderr();
    Parse("<a><b></a");
    CCXmlParseXMLfile("no such file");
    const Document document = NewDocument("Root");
    CCXmlSetAttributeValue(CCXmlGetRootElement(document.get()), "Name", "\xFF");
    CCXmlAddNode(CCXmlGetRootElement(document.get()), "Row", "&unknown");
    CCXmlSave("no such folder/file", document.get());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(hostMessages, 0);
    EXPECT_EQ(xmlStructuredError, static_cast<xmlStructuredErrorFunc>(countMessage));
    EXPECT_EQ(xmlStructuredErrorContext, &hostMessages);
    xmlSetStructuredErrorFunc(nullptr, before);
}

} // namespace
