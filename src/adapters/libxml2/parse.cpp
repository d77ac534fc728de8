#include "adapters/libxml2/parse.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "adapters/libxml2/adoption.h"
#include "adapters/libxml2/encoding.h"
#include "adapters/libxml2/library_memory.h"
#include "adapters/libxml2/names.h"
#include "adapters/libxml2/nodes.h"
#include "adapters/libxml2/objection.h"
#include "formats/text/markup_bounds.h"
#include "formats/text/xml_characters.h"
#include "seams/automation_error.h"

namespace parvex::xml {
namespace {

struct OpenElement {
  bool keepsBlanks = false;
  std::size_t declarations = 0;  // of namespaces that hold in it
};

// What the parser's callbacks know beyond the library's context. They build the tree themselves: white space between
// elements never becomes a node, and neighbouring pieces of a text are joined once.
struct Parsing {
  std::size_t expanded = 0;
  std::size_t knownNames = 0;  // that the dictionary had before
  bool countsNames = false;    // whether the text has room for too many
  NodeArena* memory = nullptr;
  std::size_t mostMemory = 0;           // that the arena may hold
  std::string error;                    // the first one
  bool outOfMemory = false;             // an exception must not pass through the library
  xmlNode* open = nullptr;              // the innermost element that is open, or the document
  std::vector<OpenElement> levels{{}};  // outside of all elements, and those that are open
  std::map<std::pair<const xmlChar*, const xmlChar*>, xmlNs*> namespaces;  // by prefix and name, as the parser has them
  std::string text;  // since the last tag, section, comment or instruction
};

Parsing& ParsingOf(void* context) { return *static_cast<Parsing*>(static_cast<xmlParserCtxt*>(context)->_private); }

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
void EndParse(void* context, const Pieces&... pieces) noexcept {
  auto* parser = static_cast<xmlParserCtxt*>(context);
  Record(ParsingOf(context), [&] { return (At(parser->input->line, parser->input->col) + ... + std::string(pieces)); });
  xmlStopParser(parser);
}

// False when the bound is passed; the parse is over then. The library's own guard is off for large documents.
bool CountExpansion(void* context, std::size_t bytes) {
  Parsing& parsing = ParsingOf(context);
  parsing.expanded += bytes;
  if (parsing.expanded > kMostExpansion) {
    EndParse(context, "entities and defaulted attributes expand to more than ", std::to_string(kMostExpansion),
             " bytes");
    return false;
  }
  return true;
}

// Newer libraries tell the error as const.
template <class Error>
void OnProblem(void* context, Error* problem) {
  Parsing& parsing = ParsingOf(context);
  const bool counts =
      problem->level == XML_ERR_FATAL || (problem->level == XML_ERR_ERROR && problem->domain == XML_FROM_NAMESPACE);
  if (!counts) {
    return;
  }
  // The library would read on, and call back no more. So it calls back, and is stopped then: not here, where it may be
  // amid its buffers.
  static_cast<xmlParserCtxt*>(context)->recovery = 1;
  Record(parsing, [&] {
    std::string reason = problem->message == nullptr ? "the text does not parse" : problem->message;
    while (!reason.empty() && IsBlank(reason.back())) {
      reason.pop_back();
    }
    return At(problem->line, problem->int2) + reason;
  });
}

// Only entities that are plain text become known; a reference to any other meets none of its name.
void OnEntityDeclaration(void* context, const xmlChar* name, int type, const xmlChar* publicId, const xmlChar* systemId,
                         xmlChar* content) {
  if (type == XML_INTERNAL_GENERAL_ENTITY && View(content).find_first_of("&<") == std::string_view::npos) {
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
    EndParse(context, "the entity '", View(name), "' is not declared as plain text");
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
  EndParse(context, "the parameter entity '", View(name), "' is not expanded");
  return nullptr;
}

xmlParserInputPtr OnResolve(void*, const xmlChar*, const xmlChar*) { return nullptr; }
void OnExternalSubset(void*, const xmlChar*, const xmlChar*, const xmlChar*) {}

// Ends the parse when the document has become too large. False then.
bool StaysInBounds(void* context, const Parsing& parsing) {
  const auto* parser = static_cast<xmlParserCtxt*>(context);
  if (parsing.memory != nullptr && parsing.memory->Held() > parsing.mostMemory) {
    EndParse(context, TooLargeTree());
    return false;
  }
  if (parsing.countsNames &&
      static_cast<std::size_t>(xmlDictSize(parser->dict)) > parsing.knownNames + kMostDifferentNames) {
    EndParse(context, TooManyNames());
    return false;
  }
  return true;
}

// Does what a callback has to do, unless something is wrong already; no exception may pass through the library.
template <typename Work>
void Carefully(void* context, Work work) noexcept {
  Parsing& parsing = ParsingOf(context);
  try {
    if (!parsing.error.empty()) {
      xmlStopParser(static_cast<xmlParserCtxt*>(context));
    } else {
      work(parsing);
    }
  } catch (const std::bad_alloc&) {
    parsing.outOfMemory = true;
    xmlStopParser(static_cast<xmlParserCtxt*>(context));
  }
}

// The same for what begins a node, with a look at the bounds. Texts and ends of elements never come alone.
template <typename Work>
void AddCarefully(void* context, Work work) noexcept {
  Carefully(context, [&](Parsing& parsing) {
    if (StaysInBounds(context, parsing)) {
      work(parsing);
    }
  });
}

// What was read as text since the last node becomes one, or is remembered as dropped white space.
void EndText(Parsing& parsing) {
  if (parsing.text.empty()) {
    return;
  }
  xmlNode* parent = parsing.open;
  if (parsing.levels.back().keepsBlanks || !IsBlank(parsing.text)) {
    AppendText(parent, parsing.text);
  } else if (parent->last != nullptr) {
    parent->last->extra |= kBlankAfter;
  } else {
    parent->extra |= kBlankInside;
  }
  parsing.text.clear();
}

void OnStartDocument(void* context) {
  Carefully(context, [&](Parsing& parsing) {
    xmlSAX2StartDocument(context);
    xmlDoc* document = static_cast<xmlParserCtxt*>(context)->myDoc;
    // Both use one dictionary, so names that the parser tells are the document's.
    if (document == nullptr || document->dict != static_cast<xmlParserCtxt*>(context)->dict) {
      throw std::bad_alloc();
    }
    TakeIn(document);
    parsing.open = AsNode(document);
    parsing.memory = &ArenaOf(document);
    parsing.mostMemory += parsing.memory->Held();
  });
}

std::string_view Between(const xmlChar* begin, const xmlChar* end) {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

// The document's namespace of that prefix and name; null for no name.
xmlNs* NamespaceFor(Parsing& parsing, const xmlChar* prefix, const xmlChar* uri) {
  if (uri == nullptr) {
    return nullptr;
  }
  xmlNs*& known = parsing.namespaces[{prefix, uri}];
  if (known == nullptr) {
    xmlNs wanted{};
    wanted.prefix = prefix;
    wanted.href = uri;
    known = OwnNamespace(parsing.open->doc, &wanted);
  }
  return known;
}

// An attribute as the parser tells it.
struct ReadAttribute {
  const xmlChar* name;
  const xmlChar* prefix;
  const xmlChar* uri;
  const xmlChar* begin;
  const xmlChar* end;
};

static_assert(sizeof(ReadAttribute) == 5 * sizeof(const xmlChar*), "the parser tells five pointers for each attribute");

// Whether white space counts in an element that has this attribute; `outside` when the attribute does not say it.
bool KeepsBlanks(const ReadAttribute& attribute, bool outside) {
  if (View(attribute.prefix) != "xml" || View(attribute.name) != "space") {
    return outside;
  }
  return Between(attribute.begin, attribute.end) == "preserve";
}

// Why a start tag is refused; empty when it is not.
std::string Refusal(Parsing& parsing, const xmlChar** namespaces, std::size_t count) {
  if (parsing.levels.size() > kDeepestElement) {
    return NestedTooDeeply();
  }
  if (parsing.levels.back().declarations + count > kMostDeclarations) {
    return TooManyDeclarations();
  }
  if (parsing.namespaces.size() > kMostDifferentNamespaces) {
    return "more than " + std::to_string(kMostDifferentNamespaces) + " different namespaces";
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (View(namespaces[2 * i + 1]).size() > kLongestNamespace) {
      return "a namespace's name is longer than " + std::to_string(kLongestNamespace) + " bytes";
    }
  }
  return "";
}

// False when attributes that only a DOCTYPE gives pass the bound.
bool CountDefaulted(void* context, const ReadAttribute* first, const ReadAttribute* end) {
  return std::all_of(first, end, [&](const ReadAttribute& attribute) {
    return CountExpansion(
        context, View(attribute.name).size() + kSignsOfAttribute + Between(attribute.begin, attribute.end).size());
  });
}

void OnStartElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri, int namespaceCount,
                    const xmlChar** namespaces, int attributeCount, int defaultedCount, const xmlChar** attributes) {
  const auto* read = reinterpret_cast<const ReadAttribute*>(attributes);
  const int written = attributeCount - defaultedCount;
  const auto declared = static_cast<std::size_t>(namespaceCount);
  AddCarefully(context, [&](Parsing& parsing) {
    if (const std::string refusal = Refusal(parsing, namespaces, declared); !refusal.empty()) {
      EndParse(context, refusal);
      return;
    }
    if (!CountDefaulted(context, read + written, read + attributeCount)) {
      return;
    }
    EndText(parsing);
    xmlNode* element = AppendElement(parsing.open, name);
    for (std::size_t i = 0; i < declared; ++i) {
      AppendDeclaration(element, View(namespaces[2 * i]), View(namespaces[2 * i + 1]));
    }
    element->ns = NamespaceFor(parsing, prefix, uri);
    OpenElement level{parsing.levels.back().keepsBlanks, parsing.levels.back().declarations + declared};
    xmlAttr* last = nullptr;
    // Attributes that only a DOCTYPE gives are left out.
    for (int i = 0; i < written; ++i) {
      last = AppendAttribute(element, last, NamespaceFor(parsing, read[i].prefix, read[i].uri), read[i].name);
      if (read[i].begin != read[i].end) {
        AppendText(AsNode(last), Between(read[i].begin, read[i].end));
      }
      level.keepsBlanks = KeepsBlanks(read[i], level.keepsBlanks);
    }
    parsing.levels.push_back(level);
    parsing.open = element;
  });
}

void OnEndElement(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  Carefully(context, [](Parsing& parsing) {
    EndText(parsing);
    parsing.open = parsing.open->parent;
    parsing.levels.pop_back();
  });
}

void OnCharacters(void* context, const xmlChar* text, int length) {
  Carefully(context, [&](Parsing& parsing) { parsing.text.append(Between(text, text + length)); });
}

void OnCData(void* context, const xmlChar* text, int length) {
  AddCarefully(context, [&](Parsing& parsing) {
    EndText(parsing);
    AppendLeaf(parsing.open, XML_CDATA_SECTION_NODE, Between(text, text + length));
  });
}

// Comments and instructions in a DOCTYPE belong to it, and so to the library.

void OnComment(void* context, const xmlChar* text) {
  if (static_cast<xmlParserCtxt*>(context)->inSubset != 0) {
    xmlSAX2Comment(context, text);
    return;
  }
  AddCarefully(context, [&](Parsing& parsing) {
    EndText(parsing);
    AppendLeaf(parsing.open, XML_COMMENT_NODE, View(text));
  });
}

void OnProcessingInstruction(void* context, const xmlChar* target, const xmlChar* text) {
  if (static_cast<xmlParserCtxt*>(context)->inSubset != 0) {
    xmlSAX2ProcessingInstruction(context, target, text);
    return;
  }
  AddCarefully(context, [&](Parsing& parsing) {
    EndText(parsing);
    AppendLeaf(parsing.open, XML_PI_NODE, View(text), target);
  });
}

struct FreeParser {
  void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};
using Parser = std::unique_ptr<xmlParserCtxt, FreeParser>;

// A parser of a text that is not empty. The library's functions that read a text at once free the tree of one that does
// not parse, which is not theirs to free.
Parser NewParser(std::string_view text, Parsing& parsing) {
  constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC;
  Parser parser(xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())));
  if (parser == nullptr) {
    throw std::bad_alloc();
  }
  xmlCtxtUseOptions(parser.get(), kOptions);
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
  handler.startDocument = OnStartDocument;
  // In place of the library's own, which would enter identifiers into tables that know nothing of an attribute's fate.
  handler.startElementNs = OnStartElement;
  handler.endElementNs = OnEndElement;
  handler.characters = OnCharacters;
  handler.ignorableWhitespace = OnCharacters;  // the same one, or the parser would tell them apart
  handler.cdataBlock = OnCData;
  handler.comment = OnComment;
  handler.processingInstruction = OnProcessingInstruction;
  return parser;
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

}  // namespace

UnheldDocument ParseText(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) {
    text.remove_prefix(3);
  }
  if (const std::string objection = Objection(text); !objection.empty()) {
    return FailedDocument(objection);
  }
  const LibraryMemory memory;
  const Quiet quiet;
  Parsing parsing;
  parsing.mostMemory = std::max(kTreeAnyway, kTreeOfText * text.size());
  const Parser parser = NewParser(text, parsing);
  parsing.knownNames = static_cast<std::size_t>(xmlDictSize(parser->dict));
  parsing.countsNames = text.size() > kMostDifferentNames;
  xmlParseDocument(parser.get());
  xmlDoc* parsed = std::exchange(parser->myDoc, nullptr);
  UnheldDocument document(parsed);
  memory.Check();
  if (parsing.outOfMemory) {
    throw std::bad_alloc();
  }
  if (document == nullptr) {
    return FailedDocument(parsing.error.empty() ? At(1, 1) + "the document is empty" : parsing.error);
  }
  if (parsing.error.empty() && View(document->version) != "1.0") {
    parsing.error = At(1, 1) + "the version " + Quoted(View(document->version)) + " is not 1.0";
  }
  if (!parsing.error.empty() || parser->wellFormed == 0 || parser->nsWellFormed == 0) {
    return FailedDocument(parsing.error.empty() ? At(1, 1) + "the text does not parse" : parsing.error);
  }
  StateOf(parsed).markupGuess = text.size();
  StateOf(parsed).encoding = DeclaredEncoding(text);
  RestoreEntities(parsed);
  return document;
}

UnheldDocument FailedDocument(const std::string& error) {
  UnheldDocument document = NewDocument();
  StateOf(document.get()).parseError = error;
  return document;
}

}  // namespace parvex::xml
