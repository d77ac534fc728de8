#include "seams/xml.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <functional>
#include <string>
#include <thread>

#include "adapters/msxml/msxml_document.h"
#include "seams/automation_error.h"
#include "tests/contract/contract_fixture.h"
#include "tests/contract/xml_reading.h"
#include "tests/support/hostile_markup.h"

// What the adapter over MSXML does beyond the seam's contract: its guards, and documents that others made.

namespace parvex {
namespace {

using test::RefusalOf;
using test::Repeated;
using windows::ComPointer;
using xml::Document;

constexpr IID kDocument2 = {0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

// Of MSXML 3 and 6, for one apartment and free-threaded.
constexpr CLSID kDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
constexpr CLSID kFreeThreaded30 = {0xF5078F33, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
constexpr CLSID kDocument60 = {0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr CLSID kFreeThreaded60 = {0x88D96A06, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};

DWORD WINAPI RunInApartment(void* act) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  (*static_cast<const std::function<void()>*>(act))();
  CoUninitialize();
  return 0;
}

// Runs in an apartment of its own, with the stack that a script host gives its threads.
void OnASmallStack(const std::function<void()>& act) {
  constexpr SIZE_T kStack = 1u << 20;
  const HANDLE thread = CreateThread(nullptr, kStack, RunInApartment, const_cast<std::function<void()>*>(&act),
                                     STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  ASSERT_NE(thread, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
}

TEST(XmlGuards, RefuseNestedEntities) {
  const std::string declared = "<!DOCTYPE a [<!ENTITY x \"lol\"><!ENTITY y \"&x;&x;&x;\">]>";
  EXPECT_NE(RefusalOf(declared + "<a>&y;</a>").find("plain text"), std::string::npos);
}

TEST(XmlGuards, RefuseEntitiesThatExpandBeyondTheBound) {
  const std::string declared = "<!DOCTYPE a [<!ENTITY e \"" + std::string(10'000, 'x') + "\">]>";
  EXPECT_EQ(Document::Parse(declared + "<a>" + Repeated("&e;", 90) + "</a>").Root().Text().size(), 900'000u);
  EXPECT_NE(RefusalOf(declared + "<a>" + Repeated("&e;", 101) + "</a>").find("expand"), std::string::npos);
}

TEST(XmlGuards, RefuseDefaultedAttributesBeyondTheBound) {
  const std::string declared = "<!DOCTYPE a [<!ATTLIST b c CDATA \"" + std::string(10'000, '>') + "\">]>";
  EXPECT_NE(RefusalOf(declared + "<a>" + Repeated("<b/>", 101) + "</a>").find("expand"), std::string::npos);
  EXPECT_EQ(Document::Parse(declared + "<a>" + Repeated("<b/>", 9) + "</a>").ParseError(), "");
}

TEST(XmlGuards, ReadNoFile) {
  test::ContractMachine machine;
  machine.files.Replace(machine.Path("secret.txt"), "secret");
  machine.files.Replace(machine.Path("subset.dtd"), "<!ENTITY e \"secret\"><!ATTLIST a k CDATA \"secret\">");
  EXPECT_NE(RefusalOf("<!DOCTYPE a [<!ENTITY e SYSTEM \"" + machine.Path("secret.txt") + "\">]><a>&e;</a>"), "");
  EXPECT_NE(RefusalOf("<!DOCTYPE a [<!ENTITY % e SYSTEM \"" + machine.Path("subset.dtd") + "\">%e;]><a/>"), "");
  EXPECT_EQ(Document::Parse("<!DOCTYPE a SYSTEM \"" + machine.Path("subset.dtd") + "\"><a/>").Root().Attribute("k"),
            std::nullopt);
}

TEST(XmlGuards, SeeQuotesInTagsWhenTheyCountElements) {
  EXPECT_NE(RefusalOf(Repeated("<d a='/>'>", 1'001) + Repeated("</d>", 1'001)).find("nested"), std::string::npos);
  EXPECT_NE(RefusalOf(Repeated("<d b=\"'\">", 1'001) + Repeated("</d>", 1'001)).find("nested"), std::string::npos);
}

TEST(XmlGuards, LeaveTheStackOfAHostAsItIs) {
  OnASmallStack([] {
    for (const std::size_t depth : {200u, 1'000u, 100'000u}) {
      const Document document = Document::Parse(Repeated("<d>", depth) + "x" + Repeated("</d>", depth));
      if (document.IsEmpty()) {
        EXPECT_NE(document.ParseError(), "") << depth;
        continue;
      }
      const Document other = Document::Parse("<o/>");
      other.Append(document.Root().FirstChild().Clone());
      EXPECT_EQ(other.Root().Text(), "x");
      EXPECT_EQ(other.All("//d").size(), depth - 1);
    }
  });
}

TEST(XmlGuards, RefuseExpressionsThatAreNestedTooDeeply) {
  OnASmallStack([] {
    const Document document = Document::Parse("<a/>");
    EXPECT_THROW(document.First(Repeated("(", 100'000) + "a" + Repeated(")", 100'000)), AutomationError);
    EXPECT_THROW(document.First("a" + Repeated("[a", 100'000) + Repeated("]", 100'000)), AutomationError);
    EXPECT_TRUE(document.First("a"));
  });
}

// A node is found among others without a mark on it.
TEST(XmlGuards, LeaveEveryAttributeAsItIsWhenANodeIsMoved) {
  const Document document = Document::Parse("<r><r parvex-mark='own'><b/></r><c/></r>");
  document.First("r/c").Append(document.First("r/r"));
  EXPECT_EQ(test::Outline(document.Root()), "r[c[r(parvex-mark=own)[b[]]]]");
}

// --- Documents of others ---------------------------------------------------------------------------------------------

TEST(XmlAdopted, DocumentIsChangedInPlace) {
  const Document made = Document::Parse("<COMMAND/>");
  const Document adopted = windows::AdoptDocument(windows::ComDocument(made).Get());
  adopted.Root().SetText("changed");
  EXPECT_EQ(made.Root().Text(), "changed");
}

TEST(XmlAdopted, NothingAndAnotherObjectAreErrorsThatSayWhichDocumentIsExpected) {
  EXPECT_EQ(test::RaisedBy([] { windows::AdoptDocument(nullptr); }), 91);
  const Document made = Document::Parse("<a/>");
  ComPointer<IXMLDOMElement> element;
  windows::ComDocument(made)->get_documentElement(element.Out());
  EXPECT_EQ(test::RaisedBy([&] { windows::AdoptDocument(element.Get()); }), 13);
  EXPECT_NE(test::DescriptionOfErrorIn([&] { windows::AdoptDocument(element.Get()); }).find("DOMDocument of MSXML 3"),
            std::string::npos);
}

windows::Variant Property(const ComPointer<IXMLDOMDocument2>& document, const char* name) {
  windows::Variant value;
  EXPECT_HRESULT_SUCCEEDED(document->getProperty(windows::Bstr(name).Get(), value.Out()));
  return value;
}

std::string TextProperty(const ComPointer<IXMLDOMDocument2>& document, const char* name) {
  const windows::Variant value = Property(document, name);
  return V_VT(&value.Get()) == VT_BSTR ? windows::TextOf(V_BSTR(&value.Get())) : "no text";
}

void SetProperty(const ComPointer<IXMLDOMDocument2>& document, const char* name, std::string_view text) {
  windows::Variant value;
  V_VT(&value.Get()) = VT_BSTR;
  V_BSTR(&value.Get()) = windows::Bstr(text).Detach();
  EXPECT_HRESULT_SUCCEEDED(document->setProperty(windows::Bstr(name).Get(), value.Get()));
}

ComPointer<IXMLDOMDocument2> MadeBy(const CLSID& maker, std::string_view text) {
  ComPointer<IXMLDOMDocument2> document;
  EXPECT_HRESULT_SUCCEEDED(
      CoCreateInstance(maker, nullptr, CLSCTX_INPROC_SERVER, kDocument2, reinterpret_cast<void**>(document.Out())));
  document->put_async(VARIANT_FALSE);
  VARIANT_BOOL loaded = VARIANT_FALSE;
  document->loadXML(windows::Bstr(text).Get(), &loaded);
  EXPECT_TRUE(loaded) << text;
  return document;
}

TEST(XmlAdopted, DocumentIsSelectedFromByXPathWhateverItsOwnerChose) {
  const auto com = MadeBy(kDocument30, "<a><b>1</b><b>2</b></a>");
  SetProperty(com, "SelectionLanguage", "XSLPattern");
  const Document adopted = windows::AdoptDocument(com.Get());
  EXPECT_EQ(adopted.First("a/b[1]").Text(), "1") << "patterns count from 0";
  EXPECT_EQ(adopted.All("a/b[2]").front().Text(), "2");
}

TEST(XmlAdopted, DocumentKeepsTheLanguageAndTheNamespacesThatItsOwnerChose) {
  for (const char* language : {"XSLPattern", "XPath"}) {
    const auto com = MadeBy(kDocument30, "<a xmlns:n='urn:n'><n:b>1</n:b></a>");
    SetProperty(com, "SelectionLanguage", language);
    SetProperty(com, "SelectionNamespaces", "xmlns:m='urn:n'");
    const Document adopted = windows::AdoptDocument(com.Get());
    EXPECT_EQ(TextProperty(com, "SelectionLanguage"), language);
    const xml::Node found = adopted.First("//m:b");
    EXPECT_EQ(found.Text(), "1");
    EXPECT_EQ(found.All("..").size(), 1u);
    EXPECT_EQ(test::RaisedBy([&] { adopted.First("//m:b['"); }), 5);
    EXPECT_EQ(test::RaisedBy([&] { adopted.All("//m:b['"); }), 5);
    EXPECT_EQ(TextProperty(com, "SelectionLanguage"), language);
    EXPECT_EQ(TextProperty(com, "SelectionNamespaces"), "xmlns:m='urn:n'");
  }
}

TEST(XmlAdopted, DocumentThatGoesOutIsAsAFreshOne) {
  const Document made = Document::Parse("<a><b/></a>");
  made.All("//b");
  EXPECT_EQ(TextProperty(windows::ComDocument(made), "SelectionLanguage"),
            TextProperty(MadeBy(kDocument30, "<a/>"), "SelectionLanguage"));
}

// --- Documents of another make ---------------------------------------------------------------------------------------

class XmlOfAnotherMake : public testing::TestWithParam<CLSID> {};

TEST_P(XmlOfAnotherMake, TakesNodesOfOursAndGivesItsOwn) {
  const auto com = MadeBy(GetParam(), "<COMMAND><NAME>x</NAME></COMMAND>");
  const Document adopted = windows::AdoptDocument(com.Get());
  const Document made = Document::Parse("<o k='v'><p>t<![CDATA[c]]></p></o>");
  EXPECT_EQ(test::Outline(adopted.Append(made.Root())), "o(k=v)[p[#text't'#cdata-section'c']]");
  made.Append(adopted.First("//NAME"));
  EXPECT_EQ(test::Outline(made.Root()), "NAME[#text'x']");
  EXPECT_EQ(test::Outline(adopted.Root()), "COMMAND[o(k=v)[p[#text't'#cdata-section'c']]]");
}

INSTANTIATE_TEST_SUITE_P(Makes, XmlOfAnotherMake,
                         testing::Values(kDocument30, kFreeThreaded30, kDocument60, kFreeThreaded60));

/// A document in the apartment of another thread: as strict about nodes as a document of another make.
class XmlOfAnotherApartment : public testing::Test {
 protected:
  XmlOfAnotherApartment() {
    thread_ = std::thread([this] {
      CoInitializeEx(nullptr, COINIT_MULTITHREADED);
      const auto made = MadeBy(kDocument30, "<COMMAND><NAME>x</NAME></COMMAND>");
      EXPECT_HRESULT_SUCCEEDED(CoMarshalInterThreadInterfaceInStream(kDocument2, made.Get(), &stream_));
      SetEvent(ready_);
      WaitForSingleObject(done_, INFINITE);
      CoUninitialize();
    });
    WaitForSingleObject(ready_, INFINITE);
    EXPECT_HRESULT_SUCCEEDED(
        CoGetInterfaceAndReleaseStream(stream_, kDocument2, reinterpret_cast<void**>(proxy_.Out())));
    adopted = windows::AdoptDocument(proxy_.Get());
  }
  ~XmlOfAnotherApartment() override {
    adopted = {};
    proxy_ = {};
    SetEvent(done_);
    thread_.join();
    CloseHandle(ready_);
    CloseHandle(done_);
  }

  Document adopted;

 private:
  const HANDLE ready_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  const HANDLE done_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  IStream* stream_ = nullptr;
  ComPointer<IXMLDOMDocument2> proxy_;
  std::thread thread_;
};

TEST_F(XmlOfAnotherApartment, TakesANodeOfOurs) {
  const Document made = Document::Parse(
      "<o k='v'><m/><p xmlns:n='urn:n' n:k='w'>t<![CDATA[c<]]><!-- d --><?i j?><n:q>u</n:q></p><r/></o>");
  const xml::Node moved = adopted.Append(made.First("//p"));
  EXPECT_EQ(moved.Name(), "p");
  EXPECT_EQ(test::Outline(made.Root()), "o(k=v)[m[]r[]]") << "it is moved, not copied";
  EXPECT_EQ(adopted.First("//p/*").Name(), "n:q");
  EXPECT_EQ(test::Outline(test::Reparsed(adopted)),
            "COMMAND[NAME[#text'x']p(n:k=w)[#text't'#cdata-section'c<'#comment' d 'i[]n:q[#text'u']]]")
      << adopted.Xml();
}

TEST_F(XmlOfAnotherApartment, AHandleOnAMovedNodeAndItsCopiesStayValid) {
  const Document made = Document::Parse("<o/>");
  const xml::Node node = made.CreateElement("PARAMETER");
  const xml::Node copy = node;
  adopted.Append(node);
  xml::AppendElement(copy, "VALUE", "7");
  node.SetAttribute("k", "w");
  EXPECT_EQ(test::Outline(adopted.Root()), "COMMAND[NAME[#text'x']PARAMETER(k=w)[VALUE[#text'7']]]");
  EXPECT_EQ(node.Parent().Name(), "COMMAND");
}

TEST_F(XmlOfAnotherApartment, GivesItsNodesToADocumentOfOurs) {
  const Document made = Document::Parse("<o/>");
  made.Append(adopted.First("//NAME"));
  EXPECT_EQ(test::Outline(made.Root()), "o[NAME[#text'x']]");
  EXPECT_EQ(test::Outline(adopted.Root()), "COMMAND[]");
}

TEST_F(XmlOfAnotherApartment, TakesAPartThatIsNestedDeeply) {
  const Document made = Document::Parse("<o>" + Repeated("<d>", 200) + "x" + Repeated("</d>", 200) + "</o>");
  adopted.Append(made.Root().FirstChild());
  EXPECT_EQ(adopted.All("//d").size(), 200u);
}

TEST_F(XmlOfAnotherApartment, RefusesWhatADocumentOfOursRefusesAndStaysAsItIs) {
  const Document made = Document::Parse("<o k='v'/>");
  EXPECT_EQ(test::RaisedBy([&] { adopted.AsNode().Append(made.Root()); }), 5) << "a second root";
  EXPECT_EQ(test::RaisedBy([&] { adopted.Append(made.First("//@k")); }), 5);
  EXPECT_EQ(test::Outline(made.Root()), "o(k=v)[]");
  EXPECT_EQ(test::Outline(adopted.Root()), "COMMAND[NAME[#text'x']]");
}

using Query = HRESULT(STDMETHODCALLTYPE*)(IUnknown*, REFIID, void**);
Query originalQuery = nullptr;

HRESULT STDMETHODCALLTYPE QueryWithoutTheSecondInterface(IUnknown* self, REFIID id, void** object) {
  if (id == kDocument2) {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  return originalQuery(self, id, object);
}

/// Documents of before MSXML 3 have no second interface. The instance that this is given answers from now on as one of
/// them: its table of members is replaced by one in which the question for interfaces refuses that one.
void TakeAwayTheSecondInterface(IXMLDOMDocument2* document) {
  constexpr std::size_t kMembers = 85;  // of the widest interface of a document
  static void* table[kMembers];
  void*** const instance = reinterpret_cast<void***>(document);
  std::copy(*instance, *instance + kMembers, table);
  originalQuery = reinterpret_cast<Query>(table[0]);
  table[0] = reinterpret_cast<void*>(QueryWithoutTheSecondInterface);
  *instance = table;
}

TEST(XmlAdopted, DocumentWithoutALanguageToChooseIsServedInItsOwn) {
  const auto com = MadeBy(kDocument30, "<COMMAND><NAME>x</NAME></COMMAND>");
  TakeAwayTheSecondInterface(com.Get());
  const Document adopted = windows::AdoptDocument(com.Get());
  EXPECT_EQ(adopted.First(".//COMMAND/NAME").Text(), "x");
  adopted.Append(Document::Parse("<o/>").Root());
  EXPECT_EQ(test::Outline(adopted.Root()), "COMMAND[NAME[#text'x']o[]]");
}

}  // namespace
}  // namespace parvex
