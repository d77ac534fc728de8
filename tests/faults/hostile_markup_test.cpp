#include "tests/support/hostile_markup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "formats/text/unicode.h"
#include "seams/xml.h"
#include "tests/faults/limited_child.h"
#include "tests/support/fake_platform.h"

// Documents that were made to do harm: each is refused with line, column and reason, quickly and in little memory.

namespace parvex::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

constexpr const char* kSecret = "the-secret-of-this-machine";

struct Document {
  std::string name;
  std::function<std::string(const std::string& file)> make;  ///< given the path of a file that must not be read
};

void PrintTo(const Document& document, std::ostream* out) { *out << document.name; }

std::string NameOf(const testing::TestParamInfo<Document>& info) { return info.param.name; }

void ExpectRefused(const Document& document) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder.Path() / "secret";
  // Of use both as a text and as declarations.
  WriteHostFile(file, "<!ENTITY stolen \"" + std::string(kSecret) + "\">" + kSecret);
  const std::string bytes = document.make(file.string());
  const ChildOutcome outcome = InLimitedChild([&] {
    const xml::Document loaded = xml::Document::Load(bytes);
    return loaded.IsEmpty() ? loaded.ParseError() : "accepted: " + loaded.Xml();
  });
  ExpectQuick(outcome);
  EXPECT_THAT(outcome.answer, MatchesRegex("line [0-9]+, column [0-9]+: .+"));
  EXPECT_THAT(outcome.answer, Not(HasSubstr(kSecret)));
}

std::string Utf16(const std::string& text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : ToUtf16(text)) {
    bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
  }
  return bytes;
}

class ExternalEntity : public testing::TestWithParam<Document> {};

TEST_P(ExternalEntity, IsRefusedAndNotRead) { ExpectRefused(GetParam()); }

const auto kReferredTo = [](const std::string& declaration, const std::string& content) {
  return "<!DOCTYPE a [" + declaration + "]><a>" + content + "</a>";
};

INSTANTIATE_TEST_SUITE_P(
    InADocument, ExternalEntity,
    testing::Values(
        Document{"ByPath", [](const auto& f) { return kReferredTo("<!ENTITY e SYSTEM \"" + f + "\">", "&e;"); }},
        Document{"ByFileUrl",
                 [](const auto& f) { return kReferredTo("<!ENTITY e SYSTEM \"file://" + f + "\">", "&e;"); }},
        Document{"ByPublicName",
                 [](const auto& f) { return kReferredTo("<!ENTITY e PUBLIC \"-//x\" \"" + f + "\">", "&e;"); }},
        Document{"FromTheNet",
                 [](const auto&) { return kReferredTo("<!ENTITY e SYSTEM \"http://127.0.0.1:1/x\">", "&e;"); }},
        Document{"FromAnFtpServer",
                 [](const auto&) { return kReferredTo("<!ENTITY e SYSTEM \"ftp://127.0.0.1:1/x\">", "&e;"); }},
        Document{"FromAShare",
                 [](const auto&) { return kReferredTo("<!ENTITY e SYSTEM \"\\\\127.0.0.1\\share\\x\">", "&e;"); }},
        Document{"OfADevice", [](const auto&) { return kReferredTo("<!ENTITY e SYSTEM \"/dev/zero\">", "&e;"); }},
        Document{"OfAnotherScheme",
                 [](const auto&) { return kReferredTo("<!ENTITY e SYSTEM \"data:text/plain,x\">", "&e;"); }},
        Document{"InAnAttribute",
                 [](const auto& f) { return "<!DOCTYPE a [<!ENTITY e SYSTEM \"" + f + "\">]><a b=\"&e;\"/>"; }},
        Document{"InADefaultedAttribute",
                 [](const auto& f) {
                   return kReferredTo("<!ENTITY e SYSTEM \"" + f + "\"><!ATTLIST a b CDATA \"&e;\">", "x");
                 }},
        Document{
            "ThroughAnotherEntity",
            [](const auto& f) { return kReferredTo("<!ENTITY e SYSTEM \"" + f + "\"><!ENTITY o \"&e;\">", "&o;"); }},
        Document{"AsDeclarations",
                 [](const auto& f) { return kReferredTo("<!ENTITY % p SYSTEM \"" + f + "\">%p;", "&stolen;"); }},
        Document{"AsDeclarationsByPublicName",
                 [](const auto& f) { return kReferredTo("<!ENTITY % p PUBLIC \"-//x\" \"" + f + "\">%p;", "x"); }},
        Document{"AsExternalSubset", [](const auto& f) { return "<!DOCTYPE a SYSTEM \"" + f + "\"><a>&stolen;</a>"; }},
        Document{"AsPublicExternalSubset",
                 [](const auto& f) { return "<!DOCTYPE a PUBLIC \"-//x\" \"" + f + "\"><a>&stolen;</a>"; }},
        Document{"SentAway",
                 [](const auto& f) {
                   return kReferredTo("<!ENTITY % f SYSTEM \"" + f +
                                          "\"><!ENTITY % s \"<!ENTITY t SYSTEM "
                                          "'http://127.0.0.1:1/?%f;'>\">%s;",
                                      "&t;");
                 }},
        Document{"ThatIsNoText",
                 [](const auto& f) {
                   return kReferredTo("<!NOTATION n SYSTEM \"n\"><!ENTITY e SYSTEM \"" + f + "\" NDATA n>", "&e;");
                 }},
        Document{"InUtf16",
                 [](const auto& f) { return Utf16(kReferredTo("<!ENTITY e SYSTEM \"" + f + "\">", "&e;")); }}),
    NameOf);

class Expansion : public testing::TestWithParam<Document> {};

TEST_P(Expansion, IsRefused) { ExpectRefused(GetParam()); }

// Entities of which each stands for ten of the one before.
std::string Laughs(const std::string& sign) {
  std::string declarations = "<!ENTITY " + sign + "l0 \"lol\">";
  for (int i = 1; i < 10; ++i) {
    declarations += "<!ENTITY " + sign + "l" + std::to_string(i) + " \"" +
                    Repeated((sign.empty() ? "&l" : "%l") + std::to_string(i - 1) + ";", 10) + "\">";
  }
  return declarations;
}

const std::string& LongText() {
  static const std::string text(50'000, 'x');
  return text;
}

INSTANTIATE_TEST_SUITE_P(
    OfADocument, Expansion,
    testing::Values(
        Document{"OfNestedEntities", [](const auto&) { return kReferredTo(Laughs(""), "&l9;"); }},
        Document{"OfNestedEntitiesInAnAttribute",
                 [](const auto&) { return "<!DOCTYPE a [" + Laughs("") + "]><a b=\"&l9;\"/>"; }},
        Document{"OfNestedParameterEntities", [](const auto&) { return kReferredTo(Laughs("% ") + "%l9;", "x"); }},
        Document{"OfAnEntityInItself", [](const auto&) { return kReferredTo("<!ENTITY e \"&e;&e;\">", "&e;"); }},
        Document{"OfTwoEntitiesInEachOther",
                 [](const auto&) { return kReferredTo("<!ENTITY e \"&f;\"><!ENTITY f \"&e;&e;\">", "&e;"); }},
        Document{
            "OfALongEntityManyTimes",
            [](const auto&) { return kReferredTo("<!ENTITY e \"" + LongText() + "\">", Repeated("&e;", 50'000)); }},
        Document{"OfALongEntityInManyAttributes",
                 [](const auto&) {
                   return kReferredTo("<!ENTITY e \"" + LongText() + "\">", Repeated("<b c=\"&e;\"/>", 10'000));
                 }},
        Document{"OfDefaultedAttributes",
                 [](const auto&) {
                   return kReferredTo("<!ATTLIST b c CDATA \"" + LongText() + "\">", Repeated("<b/>", 100'000));
                 }},
        Document{"OfEntitiesWithMarkup",
                 [](const auto&) {
                   return kReferredTo("<!ENTITY e \"" + Repeated("<b/>", 1'000) + "\">", Repeated("&e;", 10'000));
                 }},
        Document{"OfElementsWithoutEnd", [](const auto&) { return Repeated("<a>", 1'000'000); }},
        Document{"OfAReferenceToAnEntityWrittenInReferences",
                 [](const auto&) { return kReferredTo("<!ENTITY e \"&#38;e;&#38;e;\">", "&e;"); }}),
    NameOf);

}  // namespace
}  // namespace parvex::test
