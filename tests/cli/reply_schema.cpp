#include "tests/cli/reply_schema.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlschemas.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "interface/command_table.h"
#include "seams/xml.h"
#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using XmlDocument = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

XmlDocument ParseXml(std::string_view text) {
  return {xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
                        XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE),
          xmlFreeDoc};
}

#if LIBXML_VERSION >= 21200
using XmlError = const xmlError*;
#else
using XmlError = xmlErrorPtr;
#endif

void TakeProblem(void* problems, XmlError error) { *static_cast<std::string*>(problems) += error->message; }

/// Whether a command answers with what the legacy application itself answered.
bool HandsOn(std::string_view name) {
  return name == "getProjectList" || name == "getProjectProperties" || name == "setProjectProperties" ||
         name == "getTagList";
}

bool HandsOnAny(const std::vector<std::string>& arguments) {
  return std::ranges::any_of(arguments, [](const std::string& argument) {
    if (!std::filesystem::is_regular_file(argument)) {
      return false;
    }
    const xml::Node name = xml::Document::Load(ReadHostFile(argument)).First(".//COMMAND/NAME");
    return name && HandsOn(name.Text());
  });
}

bool IsEnvelopeOrQuote(const std::string& reply) {
  return reply.find("<LegacyORLA") != std::string::npos || reply.find("<ATTRIBUTES_LIST>") != std::string::npos;
}

}  // namespace

std::string SchemaProblem(const std::string& schema, const std::string& document) {
  std::string problems;
  const std::unique_ptr<xmlSchemaParserCtxt, decltype(&xmlSchemaFreeParserCtxt)> parser(
      xmlSchemaNewMemParserCtxt(schema.data(), static_cast<int>(schema.size())), xmlSchemaFreeParserCtxt);
  xmlSchemaSetParserStructuredErrors(parser.get(), TakeProblem, &problems);
  const std::unique_ptr<xmlSchema, decltype(&xmlSchemaFree)> parsed(xmlSchemaParse(parser.get()), xmlSchemaFree);
  if (parsed == nullptr) {
    return "no schema: " + problems;
  }
  const XmlDocument read = ParseXml(document);
  if (read == nullptr) {
    return "no XML document";
  }
  const std::unique_ptr<xmlSchemaValidCtxt, decltype(&xmlSchemaFreeValidCtxt)> validation(
      xmlSchemaNewValidCtxt(parsed.get()), xmlSchemaFreeValidCtxt);
  xmlSchemaSetValidStructuredErrors(validation.get(), TakeProblem, &problems);
  const int result = xmlSchemaValidateDoc(validation.get(), read.get());
  return result == 0 ? "" : "not valid: " + problems;
}

std::vector<std::string> RepliesIn(std::string_view printed) {
  std::vector<std::string> replies;
  for (std::size_t end = 0; end < printed.size();) {
    end = printed.find("\r\n", end);
    end = end == std::string_view::npos ? printed.size() : end + 2;
    // A line break may stand within a document, too.
    if (ParseXml(printed.substr(0, end)) != nullptr || end == printed.size()) {
      replies.emplace_back(printed.substr(0, end));
      printed.remove_prefix(end);
      end = 0;
    }
  }
  return replies;
}

void CheckReplies(const std::vector<std::string>& arguments, const std::string& printed) {
  static const std::string schema = RunParvex({"commands", "--schema", "replies"}).out;
  for (const std::string& reply : RepliesIn(printed)) {
    const std::string problem = SchemaProblem(schema, reply);
    if (!problem.empty() && (IsEnvelopeOrQuote(reply) || !HandsOnAny(arguments))) {
      ADD_FAILURE() << "a reply does not follow the schema: " << problem << "\n" << reply;
    }
  }
}

}  // namespace parvex::test
