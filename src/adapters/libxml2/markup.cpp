#include "adapters/libxml2/markup.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "adapters/libxml2/folding.h"
#include "adapters/libxml2/large_pages.h"
#include "adapters/libxml2/library_memory.h"
#include "formats/text/unicode.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {
namespace {

// ASCII characters that a run of text ends at.
constexpr const char* kTextStops = "&<>\r";
constexpr const char* kValueStops = "&<>\"\t\n\r";

constexpr std::size_t kPiece = 128 * 1024;

std::string CharacterReference(char32_t character) {
  return "&#" + std::to_string(static_cast<std::uint32_t>(character)) + ";";
}

class Writer {
 public:
  // Without an encoding every character is written as it is.
  explicit Writer(Encoding* encoding, const TakeMarkup* take = nullptr) : encoding_(encoding), take_(take) {}

  // A little more room than expected, since a text that has to grow at the end is copied as a whole.
  void Expect(std::size_t size) {
    text_.reserve(size + size / 16);
    PreferLargePages(text_.data(), text_.capacity());
  }

  // Adds the markup of everything from `top` down, without recursion: documents may be deep.
  void AddTree(xmlNode* top) {
    for (xmlNode* node = top;;) {
      if (take_ != nullptr && text_.size() >= kPiece) {
        HandOver();
      }
      PrepareBehind(node);
      if (IsElement(node)) {
        AddStartTag(node);
        if (node->children != nullptr) {
          node = node->children;
          continue;
        }
        if (IsFolded(node)) {
          text_ += View(node->content);
          AddEndTag(node);
        }
      } else {
        AddLeaf(node);
      }
      while (node != top && node->next == nullptr) {
        node = node->parent;
        AddEndTag(node);
      }
      if (node == top) {
        return;
      }
      node = node->next;
    }
  }

  void AddDeclaration(const xmlDoc* document, const std::string& encodingName) {
    text_ += "<?xml version=\"";
    text_ += View(document->version);
    if (!encodingName.empty()) {
      text_ += "\" encoding=\"";
      text_ += encodingName;
    }
    if (document->standalone >= 0) {
      text_ += document->standalone == 1 ? "\" standalone=\"yes" : "\" standalone=\"no";
    }
    text_ += "\"?>";
  }

  void AddDocument(const xmlDoc* document, const std::string& encodingName) {
    constexpr int kNoDeclaration = -1;
    if (document->children == nullptr) {
      return;
    }
    Expect(take_ == nullptr ? StateOf(document).markupGuess : std::min(StateOf(document).markupGuess, 2 * kPiece));
    if (document->standalone != kNoDeclaration) {
      AddDeclaration(document, encodingName);
    }
    for (xmlNode* node = document->children; node != nullptr; node = node->next) {
      AddTree(node);
    }
    text_ += "\r\n";
  }

  void AddAttribute(const xmlAttr* attribute) {
    AddName(attribute->ns, attribute->name);
    text_ += "=\"";
    for (const xmlNode* text = attribute->children; text != nullptr; text = text->next) {
      AddEscaped(View(text->content), kValueStops);
    }
    text_ += '"';
  }

  // What there is so far goes to the taker.
  void HandOver() {
    if (!text_.empty()) {
      (*take_)(text_);
      text_.clear();
    }
  }

  std::string Take() {
    if (text_.size() < text_.capacity() / 2) {
      text_.shrink_to_fit();  // much was expected that is no longer there
    }
    return std::move(text_);
  }

 private:
  // A namespace declaration that holds inside an element that is open.
  struct Scope {
    const xmlNode* element;
    std::string_view prefix;
    std::string_view uri;
  };

  // Nodes mostly lie in the order in which they are written, so what comes soon is some way behind in memory; waiting
  // for it took half of the time.
  static void PrepareBehind(const void* node) {
    constexpr std::size_t kAhead = 768;
    __builtin_prefetch(static_cast<const char*>(node) + kAhead);
    __builtin_prefetch(static_cast<const char*>(node) + kAhead + 64);
  }

  void AddName(const xmlNs* space, const xmlChar* name) {
    if (space != nullptr && space->prefix != nullptr) {
      text_ += View(space->prefix);
      text_ += ':';
    }
    text_ += View(name);
  }

  void AddStartTag(const xmlNode* element) {
    text_ += '<';
    AddName(element->ns, element->name);
    AddDeclarations(element);
    for (const xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
      text_ += ' ';
      AddAttribute(attribute);
    }
    if (element->children != nullptr || IsFolded(element)) {
      text_ += '>';
    } else {
      text_ += "/>";
      CloseScopes(element);
    }
  }

  void AddEndTag(const xmlNode* element) {
    text_ += "</";
    AddName(element->ns, element->name);
    text_ += '>';
    CloseScopes(element);
  }

  // The declarations that the element carries, and those that its names need where it stands now.
  void AddDeclarations(const xmlNode* element) {
    for (const xmlNs* space = element->nsDef; space != nullptr; space = space->next) {
      Declare(element, View(space->prefix), View(space->href));
    }
    if (element->ns != nullptr) {
      Need(element, View(element->ns->prefix), View(element->ns->href));
    } else if (!scopes_.empty()) {
      Need(element, {}, {});
    }
    for (const xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
      PrepareBehind(attribute);
      if (attribute->ns != nullptr) {
        Need(element, View(attribute->ns->prefix), View(attribute->ns->href));
      }
    }
  }

  void Need(const xmlNode* element, std::string_view prefix, std::string_view uri) {
    if (prefix == "xml") {
      return;
    }
    std::string_view bound;
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
      if (scope->prefix == prefix) {
        bound = scope->uri;
        break;
      }
    }
    if (bound != uri) {
      Declare(element, prefix, uri);
    }
  }

  void Declare(const xmlNode* element, std::string_view prefix, std::string_view uri) {
    text_ += prefix.empty() ? " xmlns" : " xmlns:";
    text_ += prefix;
    text_ += "=\"";
    AddEscaped(uri, kValueStops);
    text_ += '"';
    scopes_.push_back({element, prefix, uri});
  }

  void CloseScopes(const xmlNode* element) {
    while (!scopes_.empty() && scopes_.back().element == element) {
      scopes_.pop_back();
    }
  }

  void AddLeaf(xmlNode* node) {
    switch (node->type) {
      case XML_TEXT_NODE:
        AddEscaped(View(node->content), kTextStops);
        break;
      case XML_CDATA_SECTION_NODE:
        AddCData(View(node->content));
        break;
      case XML_COMMENT_NODE:
        text_ += "<!--";
        text_ += View(node->content);
        text_ += "-->";
        break;
      case XML_PI_NODE:
        AddProcessingInstruction(node);
        break;
      case XML_DTD_NODE:
        AddDoctype(node);
        break;
      default:
        break;
    }
  }

  void AddProcessingInstruction(const xmlNode* node) {
    text_ += "<?";
    text_ += View(node->name);
    if (!View(node->content).empty()) {
      text_ += ' ';
      text_ += View(node->content);
    }
    text_ += "?>";
  }

  void AddDoctype(xmlNode* node) {
    struct FreeBuffer {
      void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
    };
    const LibraryMemory memory;
    const std::unique_ptr<xmlBuffer, FreeBuffer> dump(Made(xmlBufferCreate()));
    xmlNodeDump(dump.get(), node->doc, node, 0, 0);
    memory.Check();
    text_ += View(xmlBufferContent(dump.get()));
  }

  // Escapes what must be, so that the text reads the same when it is parsed again. A CR LF stays: as text it reads as
  // LF here as well as there. A zero stands behind the text.
  void AddEscaped(std::string_view text, const char* stops) {
    while (!text.empty()) {
      const std::size_t run = std::strcspn(text.data(), stops);
      AddRun(text.substr(0, run));
      text.remove_prefix(run);
      if (text.empty()) {
        return;
      }
      const bool lineEnd = stops == kTextStops && text.starts_with("\r\n");
      text_ += lineEnd ? "\r" : Escape(text.front());
      text.remove_prefix(1);
    }
  }

  static std::string_view Escape(char c) {
    switch (c) {
      case '&':
        return "&amp;";
      case '<':
        return "&lt;";
      case '>':
        return "&gt;";
      case '"':
        return "&quot;";
      case '\t':
        return "&#9;";
      case '\n':
        return "&#10;";
      default:
        return "&#13;";
    }
  }

  // Text in which only characters that the encoding lacks have to be escaped; `before` and `behind` stand around each.
  void AddRun(std::string_view run, std::string_view before = {}, std::string_view behind = {}) {
    if (encoding_ == nullptr) {
      text_ += run;
      return;
    }
    for (std::size_t pos = 0; pos < run.size();) {
      const std::size_t start = pos;
      const char32_t character = NextCodePoint(run, pos);
      if (encoding_->Has(character)) {
        text_ += run.substr(start, pos - start);
      } else {
        text_ += before;
        text_ += CharacterReference(character);
        text_ += behind;
      }
    }
  }

  // A section cannot hold its own end mark, nor a reference: it is closed and opened again around them.
  void AddCData(std::string_view text) {
    constexpr std::string_view kOpen = "<![CDATA[";
    constexpr std::string_view kClose = "]]>";
    text_ += kOpen;
    for (std::size_t end = text.find(kClose); end != std::string_view::npos; end = text.find(kClose)) {
      AddRun(text.substr(0, end + 2), kClose, kOpen);
      text_ += kClose;
      text_ += kOpen;
      text.remove_prefix(end + 2);
    }
    AddRun(text, kClose, kOpen);
    text_ += kClose;
  }

  Encoding* encoding_;
  const TakeMarkup* take_;
  std::string text_;
  std::vector<Scope> scopes_;
};

}  // namespace

std::string MarkupOf(xmlNode* node) {
  Writer writer(nullptr);
  if (IsDocument(node)) {
    writer.AddDocument(node->doc, "");
  } else if (IsAttribute(node)) {
    writer.AddAttribute(AsAttribute(node));
  } else {
    if (IsDocument(node->parent)) {
      writer.Expect(StateOf(node->doc).markupGuess);
    }
    writer.AddTree(node);
  }
  return writer.Take();
}

void WriteMarkup(xmlNode* document, const TakeMarkup& take) {
  Writer writer(nullptr, &take);
  writer.AddDocument(document->doc, "");
  writer.HandOver();
}

std::string MarkupBelow(xmlNode* node) {
  Writer writer(nullptr);
  for (xmlNode* child = node->children; child != nullptr; child = child->next) {
    writer.AddTree(child);
  }
  return writer.Take();
}

std::string MarkupFor(xmlDoc* document, Encoding& encoding, const std::string& encodingName) {
  Writer writer(encoding.IsUnicode() ? nullptr : &encoding);
  writer.AddDocument(document, encodingName);
  return writer.Take();
}

}  // namespace parvex::xml
