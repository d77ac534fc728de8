#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parvex_idl.h"
#include "tests/com/com_session.h"

// The command interface, early bound: both entries, what they do to the caller's document, what they refuse.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr auto kInvalidCall = static_cast<HRESULT>(0x800A0005);
constexpr auto kObjectNotSet = static_cast<HRESULT>(0x800A005B);

domDocument* AsArgument(IUnknown* object) { return reinterpret_cast<domDocument*>(object); }

class CommandInterface : public testing::Test {
 protected:
  HRESULT Pull(IUnknown* command) {
    domDocument* argument = AsArgument(command);
    domDocument* answered = nullptr;
    const HRESULT result = pull->Pull(&argument, &answered);
    EXPECT_EQ(argument, AsArgument(command)) << "the caller's reference stays";
    reply = ComPointer<IUnknown>::Attach(reinterpret_cast<IUnknown*>(answered));
    return result;
  }
  ComPointer<IXMLDOMDocument2> Reply() { return reply.As<IXMLDOMDocument2>(kXmlDocument2); }

  const ComPointer<ILegacyORLAPull> pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  ComPointer<IUnknown> reply;
};

TEST_F(CommandInterface, AnUnknownCommandGetsTheFailureReplyFromBothEntries) {
  Bstr command(Command("noSuchCommand"));
  BSTR argument = command.Get();
  Bstr text;
  ASSERT_EQ(pull->PullNGORLA(&argument, text.Out()), S_OK);
  EXPECT_EQ(argument, command.Get()) << "the caller's text stays";
  const auto parsed = NewDocument(text.Text());
  ASSERT_EQ(Pull(NewDocument(Command("noSuchCommand")).Get()), S_OK);
  for (const auto& document : {parsed, Reply()}) {
    ASSERT_TRUE(document);
    EXPECT_EQ(TextAt(document.Get(), "/LegacyORLA/returnError"), "-1");
    EXPECT_EQ(TextAt(document.Get(), "/LegacyORLA/errorMessage"), "Unrecognized or Failed Command");
  }
}

TEST_F(CommandInterface, TheCallersDocumentIsChangedInPlaceAndTheReplyIsADocumentOfItsOwn) {
  const auto command = NewDocument(Command("getProjectProperties", {{"projectName", "Riverside Clinic"}}));
  ASSERT_EQ(Pull(command.Get()), S_OK) << TakeErrorInfo().description;
  ASSERT_TRUE(Reply());
  EXPECT_EQ(TextAt(Reply().Get(), "//NAME"), "Riverside Clinic");
  EXPECT_EQ(TextAt(command.Get(), "/COMMAND/NAME"), "getProjectEx");
  EXPECT_EQ(TextAt(command.Get(), "/COMMAND/PARAMETER[NAME='pdsg']/VALUE"), "KDQ47");
  EXPECT_NE(Reply().As<IUnknown>(IID_IUnknown).Get(), command.As<IUnknown>(IID_IUnknown).Get());
}

std::string Language(IXMLDOMDocument2* document) {
  Variant language;
  EXPECT_HRESULT_SUCCEEDED(document->getProperty(Bstr("SelectionLanguage").Get(), language.Out()));
  return TextOf(V_BSTR(&language.Get()));
}

TEST_F(CommandInterface, TheCallersDocumentKeepsItsSelectionLanguageAlsoWhenTheCallFails) {
  for (const char* language : {"XSLPattern", "XPath"}) {
    const Bstr chosen(language);
    for (const auto& xml : {Command("getProjectProperties", {{"projectName", "Riverside Clinic"}}),
                            Command("noSuchCommand"), std::string("<COMMAND/>")}) {
      const auto command = NewDocument(xml);
      ASSERT_HRESULT_SUCCEEDED(command->setProperty(Bstr("SelectionLanguage").Get(), Borrowed(chosen.Get())));
      EXPECT_EQ(Pull(command.Get()), xml == "<COMMAND/>" ? kObjectNotSet : S_OK);
      EXPECT_EQ(Language(command.Get()), language) << xml;
    }
  }
}

TEST_F(CommandInterface, AReplySelectsAsAFreshDocumentDoes) {
  for (const auto& xml : {Command("getTagList", {{"projectName", "Riverside Clinic"}}), Command("noSuchCommand")}) {
    ASSERT_EQ(Pull(NewDocument(xml).Get()), S_OK);
    EXPECT_EQ(Language(Reply().Get()), Language(NewDocument("<a/>").Get())) << xml;
  }
}

// Of MSXML 3 free-threaded, of MSXML 6 and of MSXML 6 free-threaded; the reply is one of MSXML 3 all the same.
constexpr CLSID kOtherMakes[] = {
    {0xF5078F33, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}},
    {0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}},
    {0x88D96A06, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}},
};

TEST_F(CommandInterface, ADocumentOfAnotherMakeIsServedAsItIs) {
  for (const CLSID& make : kOtherMakes) {
    ComPointer<IXMLDOMDocument2> command;
    ASSERT_HRESULT_SUCCEEDED(
        CoCreateInstance(make, nullptr, CLSCTX_INPROC_SERVER, kXmlDocument2, reinterpret_cast<void**>(command.Out())));
    command->put_async(VARIANT_FALSE);
    VARIANT_BOOL parsed = VARIANT_FALSE;
    const Bstr xml(Command("getProjectProperties", {{"projectName", "Riverside Clinic"}}));
    ASSERT_EQ(command->loadXML(xml.Get(), &parsed), S_OK);
    const std::string language = Language(command.Get());
    ASSERT_EQ(Pull(command.Get()), S_OK) << TakeErrorInfo().description;
    EXPECT_EQ(TextAt(Reply().Get(), "//NAME"), "Riverside Clinic");
    EXPECT_EQ(TextAt(command.Get(), "//COMMAND/PARAMETER[NAME='pdsg']/VALUE"), "KDQ47");
    EXPECT_EQ(Language(command.Get()), language);
    EXPECT_EQ(Language(Reply().Get()), Language(NewDocument("<a/>").Get()));
  }
}

TEST_F(CommandInterface, TheReplyBelongsToTheCallerAlone) {
  ASSERT_EQ(Pull(NewDocument(Command("getOptions")).Get()), S_OK);
  EXPECT_EQ(ReferenceCount(reply), 1u);
}

TEST_F(CommandInterface, AnyInterfaceOfADocumentWillDo) {
  const auto command = NewDocument(Command("getOptions"));
  for (const IID& id : {IID_IUnknown, IID_IDispatch, kXmlNode, kXmlDocument}) {
    ASSERT_EQ(Pull(command.As<IUnknown>(id).Get()), S_OK);
    EXPECT_TRUE(Reply());
  }
}

TEST_F(CommandInterface, ACommandMayHaveNoReplyAtAll) {
  ASSERT_EQ(Pull(NewDocument(Command("getAvailableReports", {{"PDSG", ""}})).Get()), S_OK);
  EXPECT_FALSE(reply);
}

TEST_F(CommandInterface, AnObjectOfAnotherKindAndNoObjectAreRefused) {
  const auto tag = Make<TagCls, ITagCls>();
  EXPECT_EQ(Pull(tag.Get()), kTypeMismatch);
  EXPECT_FALSE(reply);
  const RaisedError raised = TakeErrorInfo();
  EXPECT_EQ(raised.source, "Parvex");
  EXPECT_THAT(raised.description, HasSubstr("DOMDocument of MSXML 3"));
  EXPECT_EQ(ReferenceCount(tag), 1u);
  EXPECT_EQ(Pull(nullptr), kObjectNotSet);
  EXPECT_NE(TakeErrorInfo().description, "");
}

TEST_F(CommandInterface, NullPointersAreErrorsThatNameThem) {
  domDocument* document = nullptr;
  Bstr command(Command("getOptions"));
  BSTR text = command.Get();
  EXPECT_EQ(pull->Pull(nullptr, &document), kInvalidCall);
  EXPECT_THAT(TakeErrorInfo().description, HasSubstr("command"));
  EXPECT_EQ(pull->Pull(&document, nullptr), kInvalidCall);
  EXPECT_THAT(TakeErrorInfo().description, HasSubstr("reply"));
  EXPECT_EQ(pull->PullNGORLA(nullptr, &text), kInvalidCall);
  EXPECT_THAT(TakeErrorInfo().description, HasSubstr("commandXml"));
  EXPECT_EQ(pull->PullNGORLA(&text, nullptr), kInvalidCall);
  EXPECT_THAT(TakeErrorInfo().description, HasSubstr("replyXml"));
  EXPECT_EQ(TakeErrorInfo().description, "") << "each error is told once";
}

TEST_F(CommandInterface, ACommandWithoutANameFailsTheCall) {
  for (const char* xml : {"", "no xml <", "<COMMAND/>"}) {
    Bstr command(xml);
    BSTR argument = command.Get();
    Bstr text;
    EXPECT_EQ(pull->PullNGORLA(&argument, text.Out()), kObjectNotSet) << xml;
    EXPECT_EQ(text.Get(), nullptr);
    const RaisedError raised = TakeErrorInfo();
    EXPECT_EQ(raised.source, "Parvex");
    EXPECT_THAT(raised.description, HasSubstr("COMMAND/NAME"));
    EXPECT_EQ(raised.interfaceId, __uuidof(ILegacyORLAPull));
  }
  BSTR none = nullptr;
  Bstr text;
  EXPECT_EQ(pull->PullNGORLA(&none, text.Out()), kObjectNotSet);
  EXPECT_EQ(Pull(NewDocument("<COMMAND/>").Get()), kObjectNotSet);
}

TEST_F(CommandInterface, AFailedCallLeavesNoReferenceBehind) {
  const auto command = NewDocument("<COMMAND/>");
  ASSERT_HRESULT_FAILED(Pull(command.Get()));
  EXPECT_EQ(ReferenceCount(pull), 1u);
  EXPECT_EQ(ReferenceCount(command), 1u);
}

TEST_F(CommandInterface, TheInstanceGoesWithItsLastReference) {
  auto own = Make<LegacyORLAPull, ILegacyORLAPull>();
  const auto command = NewDocument(Command("getTagList", {{"projectName", "Riverside Clinic"}}));
  domDocument* argument = AsArgument(command.Get());
  domDocument* answered = nullptr;
  ASSERT_EQ(own->Pull(&argument, &answered), S_OK);
  reinterpret_cast<IUnknown*>(answered)->Release();
  EXPECT_EQ(own.Detach()->Release(), 0u);
}

TEST(CommandInterfaceWithoutRouter, CannotBeCreatedAndSaysWhichClassIsMissing) {
  const Unregistered router(L"KorvaneSubstitute.dll");
  ComPointer<IUnknown> pull;
  EXPECT_EQ(CoCreateInstance(__uuidof(LegacyORLAPull), nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(pull.Out())),
            static_cast<HRESULT>(0x800A01AD));
  EXPECT_FALSE(pull);
  const RaisedError raised = TakeErrorInfo();
  EXPECT_EQ(raised.source, "Parvex");
  EXPECT_THAT(raised.description, HasSubstr(PARVEX_ROUTER_CLSID));
  EXPECT_TRUE((Make<TagCls, ITagCls>())) << "the other classes need no router";
}

TEST(CommandInterfaceWithoutDatabaseEngine, NamesBothEnginesThatWereTried) {
  const Unregistered engine(L"SubstituteEngine.dll");
  const auto pull = Make<LegacyORLAPull, ILegacyORLAPull>();
  const auto command = NewDocument(Command("getProjectProperties", {{"projectName", "Riverside Clinic"}}));
  domDocument* argument = AsArgument(command.Get());
  domDocument* reply = nullptr;
  EXPECT_HRESULT_FAILED(pull->Pull(&argument, &reply));
  EXPECT_EQ(reply, nullptr);
  EXPECT_THAT(TakeErrorInfo().description, AllOf(HasSubstr("DAO.DBEngine.36"), HasSubstr("DAO.DBEngine.120")));
}

}  // namespace
}  // namespace parvex::test
