#include "seams/xml.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>
#include <thread>

#include "adapters/msxml/msxml_document.h"
#include "seams/automation_error.h"
#include "tests/contract/contract_fixture.h"
#include "tests/support/hostile_markup.h"

// What the adapter over MSXML does beyond the seam's contract: its guards, and documents that others made.

namespace parvex {
namespace {

using test::RefusalOf;
using test::Repeated;
using windows::ComPointer;
using xml::Document;

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

// --- Documents of others ---------------------------------------------------------------------------------------------

TEST(XmlAdopted, DocumentIsChangedInPlace) {
  const Document made = Document::Parse("<COMMAND/>");
  const Document adopted = windows::AdoptDocument(windows::ComDocument(made).Get());
  adopted.Root().SetText("changed");
  EXPECT_EQ(made.Root().Text(), "changed");
}

TEST(XmlAdopted, NothingAndAnotherObjectAreErrors) {
  EXPECT_EQ(test::RaisedBy([] { windows::AdoptDocument(nullptr); }), 91);
  const Document made = Document::Parse("<a/>");
  ComPointer<IXMLDOMElement> element;
  windows::ComDocument(made)->get_documentElement(element.Out());
  EXPECT_EQ(test::RaisedBy([&] { windows::AdoptDocument(element.Get()); }), 13);
}

TEST(XmlAdopted, DocumentIsSelectedFromByXPathWhateverItsOwnerChose) {
  const Document made = Document::Parse("<a><b>1</b><b>2</b></a>");
  const auto com = windows::ComDocument(made);
  const windows::Bstr name("SelectionLanguage");
  windows::Variant patterns;
  V_VT(&patterns.Get()) = VT_BSTR;
  V_BSTR(&patterns.Get()) = windows::Bstr("XSLPattern").Detach();
  ASSERT_EQ(com->setProperty(name.Get(), patterns.Get()), S_OK);
  EXPECT_EQ(windows::AdoptDocument(com.Get()).First("a/b[1]").Text(), "1") << "patterns count from 0";
}

}  // namespace
}  // namespace parvex
