#include "platform/posix/xml_parse.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/valid.h>

#include <climits>
#include <memory>
#include <new>
#include <vector>

#include "platform/xml_characters.h"
#include "platform/posix/xml_encoding.h"

namespace parvex::xml {
namespace {

constexpr int kDeepestElement = 10'000;

// Bytes that expanded entities and attributes defaulted by a DOCTYPE may add to a document, all together. The library's
// own guard is off for large documents.
constexpr std::size_t kMostExpansion = 1'000'000;

// What the parser's callbacks know beyond the library's context.
struct Parsing {
  std::size_t expanded = 0;
  std::string error;         // the first one
  bool outOfMemory = false;  // an exception must not pass through the library
};

Parsing& ParsingOf(void* context) { return *static_cast<Parsing*>(static_cast<xmlParserCtxt*>(context)->_private); }

std::string At(long line, long column) {
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
}

// Records why the text is refused, the first time.
template <typename MakeReason>
void Record(Parsing& parsing, MakeReason makeReason) noexcept {
  try {
    if (parsing.error.empty()) {
      parsing.error = makeReason();
    }
  } catch (const std::bad_alloc&) {
    parsing.outOfMemory = true;
  }
}

// Records the reason, told in pieces, and ends the parse.
template <typename... Pieces>
void Refuse(void* context, const Pieces&... pieces) noexcept {
  auto* parser = static_cast<xmlParserCtxt*>(context);
  Record(ParsingOf(context),
         [&] { return (At(parser->input->line, parser->input->col) + ... + std::string(pieces)); });
  xmlStopParser(parser);
}

// False when the bound is passed; the parse is over then.
bool CountExpansion(void* context, std::size_t bytes) {
  Parsing& parsing = ParsingOf(context);
  parsing.expanded += bytes;
  if (parsing.expanded > kMostExpansion) {
    Refuse(context, "entities and defaulted attributes expand to more than ", std::to_string(kMostExpansion), " bytes");
    return false;
  }
  return true;
}

void OnProblem(void* context, xmlErrorPtr problem) {
  Parsing& parsing = ParsingOf(context);
  const bool counts =
      problem->level == XML_ERR_FATAL || (problem->level == XML_ERR_ERROR && problem->domain == XML_FROM_NAMESPACE);
  if (!counts) {
    return;
  }
  Record(parsing, [&] {
    std::string reason = problem->message == nullptr ? "the text does not parse" : problem->message;
    while (!reason.empty() && IsBlank(reason.back())) {
      reason.pop_back();
    }
    return At(problem->line, problem->int2) + reason;
  });
}

bool IsPlainText(std::string_view replacement) { return replacement.find_first_of("&<") == std::string_view::npos; }

// Only entities that are plain text become known; a reference to any other meets none of its name.
void OnEntityDeclaration(void* context, const xmlChar* name, int type, const xmlChar* publicId, const xmlChar* systemId,
                         xmlChar* content) {
  if (type == XML_INTERNAL_GENERAL_ENTITY && IsPlainText(View(content))) {
    xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
  }
}

// An entity that is no text at all: its reference is to meet none of its name either.
void OnUnparsedEntity(void*, const xmlChar*, const xmlChar*, const xmlChar*, const xmlChar*) {}

xmlEntity* OnEntity(void* context, const xmlChar* name) {
  const auto* parser = static_cast<xmlParserCtxt*>(context);
  const bool inAttribute = parser->instate == XML_PARSER_ATTRIBUTE_VALUE;
  xmlEntity* entity = xmlSAX2GetEntity(context, name);
  if (parser->inSubset != 0 && !inAttribute) {
    return entity;  // no reference: the parser looks at the declaration it has just read
  }
  if (entity == nullptr) {
    Refuse(context, "the entity '", View(name), "' is not declared as plain text");
    return nullptr;
  }
  if (!CountExpansion(context, View(entity->content).size())) {
    return nullptr;
  }
  // In content the parser copies an ordinary entity as a node and merges that with its neighbours, which costs the
  // length of the text each time; the text of a predefined one it just reads on.
  entity->etype = inAttribute ? XML_INTERNAL_GENERAL_ENTITY : XML_INTERNAL_PREDEFINED_ENTITY;
  return entity;
}

xmlEntity* OnParameterEntity(void* context, const xmlChar* name) {
  Refuse(context, "the parameter entity '", View(name), "' is not expanded");
  return nullptr;
}

xmlParserInputPtr OnResolve(void*, const xmlChar*, const xmlChar*) { return nullptr; }

void OnExternalSubset(void*, const xmlChar*, const xmlChar*, const xmlChar*) {}

void OnStartElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri, int namespaceCount,
                    const xmlChar** namespaces, int attributeCount, int defaultedCount, const xmlChar** attributes) {
  constexpr int kFields = 5;  // name, prefix, namespace, value, end of value
  if (static_cast<xmlParserCtxt*>(context)->nodeNr >= kDeepestElement) {
    Refuse(context, "elements are nested more deeply than ", std::to_string(kDeepestElement));
    return;
  }
  for (int i = attributeCount - defaultedCount; i < attributeCount; ++i) {
    const xmlChar** attribute = attributes + static_cast<std::ptrdiff_t>(i) * kFields;
    if (!CountExpansion(context, static_cast<std::size_t>(attribute[4] - attribute[3]))) {
      return;
    }
  }
  xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount, defaultedCount,
                        attributes);
}

// The library would merge neighbouring sections, at the cost of their length each time.
void OnCData(void* context, const xmlChar* text, int length) {
  auto* parser = static_cast<xmlParserCtxt*>(context);
  xmlNode* section = xmlNewCDataBlock(parser->myDoc, text, length);
  if (section != nullptr && section->content == nullptr) {
    section->content = xmlStrdup(Chars(""));
  }
  if (section == nullptr || xmlAddChild(parser->node, section) == nullptr) {
    Refuse(context, "out of memory");
  }
}

struct FreeParser {
  void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};
using Parser = std::unique_ptr<xmlParserCtxt, FreeParser>;

Parser NewParser(Parsing& parsing) {
  Parser parser(xmlNewParserCtxt());
  if (parser == nullptr) {
    throw std::bad_alloc();
  }
  parser->_private = &parsing;
  xmlDictFree(parser->dict);
  parser->dict = SharedNames();
  xmlDictReference(parser->dict);
  xmlSAXHandler& handler = *parser->sax;
  handler.serror = OnProblem;
  handler.entityDecl = OnEntityDeclaration;
  handler.unparsedEntityDecl = OnUnparsedEntity;
  handler.getEntity = OnEntity;
  handler.getParameterEntity = OnParameterEntity;
  handler.resolveEntity = OnResolve;
  handler.externalSubset = OnExternalSubset;
  handler.startElementNs = OnStartElement;
  handler.cdataBlock = OnCData;
  return parser;
}

// The tables of identifiers point to attributes and know nothing of their later fate, so nothing may look into them.
void DropIdentifiers(xmlDoc* document) {
  xmlFreeIDTable(static_cast<xmlIDTable*>(document->ids));
  xmlFreeRefTable(static_cast<xmlRefTable*>(document->refs));
  document->ids = nullptr;
  document->refs = nullptr;
}

// Undoes what OnEntity did for the parser's sake.
void RestoreEntities(xmlDoc* document) {
  if (document->intSubset == nullptr) {
    return;
  }
  for (xmlNode* node = document->intSubset->children; node != nullptr; node = node->next) {
    if (node->type == XML_ENTITY_DECL) {
      reinterpret_cast<xmlEntity*>(node)->etype = XML_INTERNAL_GENERAL_ENTITY;
    }
  }
}

// Whether white space counts in an element whose parent says `outside`.
bool KeepsBlanks(const xmlNode* element, bool outside) {
  for (const xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
    if (attribute->ns != nullptr && View(attribute->ns->prefix) == "xml" && View(attribute->name) == "space") {
      StateOf(element->doc).usesSpaceAttribute = true;
      return ValueOf(attribute) == "preserve";
    }
  }
  return outside;
}

void DropBlank(xmlNode* text) {
  if (text->prev != nullptr) {
    text->prev->extra |= kBlankAfter;
  } else {
    text->parent->extra |= kBlankInside;
  }
  xmlUnlinkNode(text);
  xmlFreeNode(text);
}

void OwnNamespaces(xmlNode* element) {
  if (element->ns != nullptr) {
    element->ns = OwnNamespace(element->doc, element->ns);
  }
  for (xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
    if (attribute->ns != nullptr) {
      attribute->ns = OwnNamespace(element->doc, attribute->ns);
    }
  }
}

// One walk over a document just parsed: drops white space between elements and makes the namespaces the document's own.
void Settle(xmlDoc* document) {
  std::vector<bool> keepsBlanks{false};  // of the elements that are open
  xmlNode* node = document->children;
  while (node != nullptr) {
    if (IsElement(node)) {
      OwnNamespaces(node);
      const bool keeps = KeepsBlanks(node, keepsBlanks.back());
      if (node->children != nullptr) {
        keepsBlanks.push_back(keeps);
        node = node->children;
        continue;
      }
    }
    xmlNode* next = node->next;
    xmlNode* parent = node->parent;
    if (node->type == XML_TEXT_NODE && !keepsBlanks.back() && IsBlank(reinterpret_cast<const char*>(node->content))) {
      DropBlank(node);
    }
    while (next == nullptr && !IsDocument(parent)) {
      keepsBlanks.pop_back();
      next = parent->next;
      parent = parent->parent;
    }
    node = next;
  }
}

// Why a text cannot be given to the parser; empty when it can.
std::string Objection(std::string_view text) {
  if (text.size() >= INT_MAX) {
    return "the text is longer than 2 GB";
  }
  if (const std::size_t bad = FindForbidden(text); bad != std::string_view::npos) {
    return PlaceOf(text, bad) + ": not a character of XML, or not in the encoding";
  }
  // The parser guesses at encodings from the first bytes. A text that begins like this leaves it nothing to guess.
  if (!text.empty() && text[0] != '<' && !IsBlank(text[0])) {
    return At(1, 1) + "the document does not begin with '<'";
  }
  return "";
}

}  // namespace

UnheldDocument ParseText(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) {
    text.remove_prefix(3);
  }
  if (const std::string objection = Objection(text); !objection.empty()) {
    return FailedDocument(objection);
  }
  const Quiet quiet;
  Parsing parsing;
  const Parser parser = NewParser(parsing);
  constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC;
  xmlDoc* parsed = xmlCtxtReadMemory(parser.get(), text.empty() ? "" : text.data(), static_cast<int>(text.size()),
                                     nullptr, nullptr, kOptions);
  if (parsed != nullptr) {
    parsed->_private = nullptr;
  }
  UnheldDocument document(parsed);
  if (parsing.outOfMemory) {
    throw std::bad_alloc();
  }
  if (document == nullptr) {
    return FailedDocument(parsing.error.empty() ? At(1, 1) + "the document is empty" : parsing.error);
  }
  if (parsing.error.empty() && View(document->version) != "1.0") {
    parsing.error = At(1, 1) + "the version '" + std::string(View(document->version)) + "' is not 1.0";
  }
  if (!parsing.error.empty() || parser->wellFormed == 0 || parser->nsWellFormed == 0) {
    return FailedDocument(parsing.error.empty() ? At(1, 1) + "the text does not parse" : parsing.error);
  }
  TakeIn(parsed);
  StateOf(parsed).markupGuess = text.size();
  StateOf(parsed).encoding = DeclaredEncoding(text);
  DropIdentifiers(parsed);
  RestoreEntities(parsed);
  Settle(parsed);
  return document;
}

UnheldDocument FailedDocument(const std::string& error) {
  UnheldDocument document = NewDocument();
  StateOf(document.get()).parseError = error;
  return document;
}

}  // namespace parvex::xml
