#include "adapters/libxml2/markup.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "adapters/libxml2/large_pages.h"
#include "formats/text/unicode.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {
namespace {

// A set of ASCII characters that a run of text is searched for.
struct Stops {
  std::string_view characters;
  std::array<bool, 256> isStop{};

  constexpr explicit Stops(std::string_view set) : characters(set) {
    for (const char c : set) {
      isStop[static_cast<unsigned char>(c)] = true;
    }
  }
};

constexpr Stops kTextStops("&<>\r");
constexpr Stops kValueStops("&<>\"\t\n\r");

// Length of the run without any of the stops at the head of a text.
template <const Stops& stops>
std::size_t RunLength(const char* text, std::size_t size) {
  std::size_t pos = 0;
#ifdef __SSE2__
  for (; pos + 16 <= size; pos += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + pos));
    __m128i hits = _mm_setzero_si128();
    for (const char c : stops.characters) {
      hits = _mm_or_si128(hits, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)));
    }
    if (const int mask = _mm_movemask_epi8(hits); mask != 0) {
      return pos + static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(mask)));
    }
  }
#endif
  while (pos < size && !stops.isStop[static_cast<unsigned char>(text[pos])]) {
    ++pos;
  }
  return pos;
}

// Collects small pieces before they go into the string, which saves it most of its bookkeeping.
class Sink {
 public:
  // A little more room than expected, since a string that has to grow at the end is copied as a whole.
  void Expect(std::size_t size) {
    text_.reserve(size + size / 16);
    posix::PreferLargePages(text_.data(), text_.capacity());
  }

  void Add(std::string_view piece) {
    if (piece.size() > kRoom - used_) {
      Flush();
      if (piece.size() > kRoom) {
        text_.append(piece);
        return;
      }
    }
    Copy(piece.data(), piece.size(), buffer_.data() + used_);
    used_ += piece.size();
  }

  void Add(char c) { Add(std::string_view(&c, 1)); }

  std::string Take() {
    Flush();
    if (text_.size() < text_.capacity() / 2) {
      text_.shrink_to_fit();  // much was expected that is no longer there
    }
    return std::move(text_);
  }

 private:
  static constexpr std::size_t kRoom = 16384;

  // Most pieces are short: two moves of eight bytes that may overlap, or of four, beat a call.
  static void Copy(const char* from, std::size_t size, char* to) {
    if (size > 16) {
      std::memcpy(to, from, size);
    } else if (size >= 8) {
      std::memcpy(to, from, 8);
      std::memcpy(to + size - 8, from + size - 8, 8);
    } else if (size >= 4) {
      std::memcpy(to, from, 4);
      std::memcpy(to + size - 4, from + size - 4, 4);
    } else {
      for (std::size_t i = 0; i < size; ++i) {
        to[i] = from[i];
      }
    }
  }

  void Flush() {
    text_.append(buffer_.data(), used_);
    used_ = 0;
  }

  std::string text_;
  std::array<char, kRoom> buffer_;
  std::size_t used_ = 0;
};

std::string CharacterReference(char32_t character) {
  return "&#" + std::to_string(static_cast<std::uint32_t>(character)) + ";";
}

class Writer {
 public:
  // Without an encoding every character is written as it is.
  explicit Writer(Encoding* encoding) : encoding_(encoding) {}

  void Expect(std::size_t size) { sink_.Expect(size); }

  // Adds the markup of everything from `top` down, without recursion: documents may be deep.
  void AddTree(xmlNode* top) {
    for (xmlNode* node = top;;) {
      PrepareBehind(node);
      if (IsElement(node)) {
        AddStartTag(node);
        if (node->children != nullptr) {
          node = node->children;
          continue;
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
    sink_.Add("<?xml version=\"");
    sink_.Add(View(document->version));
    if (!encodingName.empty()) {
      sink_.Add("\" encoding=\"");
      sink_.Add(encodingName);
    }
    if (document->standalone >= 0) {
      sink_.Add(document->standalone == 1 ? "\" standalone=\"yes" : "\" standalone=\"no");
    }
    sink_.Add("\"?>");
  }

  void AddDocument(const xmlDoc* document, const std::string& encodingName) {
    constexpr int kNoDeclaration = -1;
    if (document->children == nullptr) {
      return;
    }
    Expect(StateOf(document).markupGuess);
    if (document->standalone != kNoDeclaration) {
      AddDeclaration(document, encodingName);
    }
    for (xmlNode* node = document->children; node != nullptr; node = node->next) {
      AddTree(node);
    }
    sink_.Add("\r\n");
  }

  void AddAttribute(const xmlAttr* attribute) {
    AddName(attribute->ns, attribute->name);
    sink_.Add("=\"");
    for (const xmlNode* text = attribute->children; text != nullptr; text = text->next) {
      AddEscaped<kValueStops>(View(text->content));
    }
    sink_.Add('"');
  }

  std::string Take() { return sink_.Take(); }

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
      sink_.Add(View(space->prefix));
      sink_.Add(':');
    }
    // Names are interned: the same few pointers come again and again, so their lengths are kept by address.
    std::string_view& known = names_[(reinterpret_cast<std::uintptr_t>(name) >> 2) % names_.size()];
    if (known.data() != reinterpret_cast<const char*>(name)) {
      known = View(name);
    }
    sink_.Add(known);
  }

  void AddStartTag(const xmlNode* element) {
    sink_.Add('<');
    AddName(element->ns, element->name);
    AddDeclarations(element);
    for (const xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
      sink_.Add(' ');
      AddAttribute(attribute);
    }
    if (element->children != nullptr) {
      sink_.Add('>');
    } else {
      sink_.Add("/>");
      CloseScopes(element);
    }
  }

  void AddEndTag(const xmlNode* element) {
    sink_.Add("</");
    AddName(element->ns, element->name);
    sink_.Add('>');
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
    sink_.Add(prefix.empty() ? " xmlns" : " xmlns:");
    sink_.Add(prefix);
    sink_.Add("=\"");
    AddEscaped<kValueStops>(uri);
    sink_.Add('"');
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
        AddEscaped<kTextStops>(View(node->content));
        break;
      case XML_CDATA_SECTION_NODE:
        AddCData(View(node->content));
        break;
      case XML_COMMENT_NODE:
        sink_.Add("<!--");
        sink_.Add(View(node->content));
        sink_.Add("-->");
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
    sink_.Add("<?");
    sink_.Add(View(node->name));
    if (!View(node->content).empty()) {
      sink_.Add(' ');
      sink_.Add(View(node->content));
    }
    sink_.Add("?>");
  }

  void AddDoctype(xmlNode* node) {
    xmlBuffer* dump = xmlBufferCreate();
    if (dump != nullptr) {
      xmlNodeDump(dump, node->doc, node, 0, 0);
      sink_.Add(View(xmlBufferContent(dump)));
      xmlBufferFree(dump);
    }
  }

  // Escapes what must be, so that the text reads the same when it is parsed again. A CR LF stays: as text it reads as
  // LF here as well as there.
  template <const Stops& stops>
  void AddEscaped(std::string_view text) {
    while (!text.empty()) {
      const std::size_t run = RunLength<stops>(text.data(), text.size());
      AddRun(text.substr(0, run));
      if (run == text.size()) {
        return;
      }
      text.remove_prefix(run);
      const bool lineEnd = &stops == &kTextStops && text.starts_with("\r\n");
      sink_.Add(lineEnd ? "\r" : Escape(text.front()));
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
      sink_.Add(run);
      return;
    }
    for (std::size_t pos = 0; pos < run.size();) {
      const std::size_t start = pos;
      const char32_t character = NextCodePoint(run, pos);
      if (encoding_->Has(character)) {
        sink_.Add(run.substr(start, pos - start));
      } else {
        sink_.Add(before);
        sink_.Add(CharacterReference(character));
        sink_.Add(behind);
      }
    }
  }

  // A section cannot hold its own end mark, nor a reference: it is closed and opened again around them.
  void AddCData(std::string_view text) {
    constexpr std::string_view kOpen = "<![CDATA[";
    constexpr std::string_view kClose = "]]>";
    sink_.Add(kOpen);
    for (std::size_t end = text.find(kClose); end != std::string_view::npos; end = text.find(kClose)) {
      AddRun(text.substr(0, end + 2), kClose, kOpen);
      sink_.Add(kClose);
      sink_.Add(kOpen);
      text.remove_prefix(end + 2);
    }
    AddRun(text, kClose, kOpen);
    sink_.Add(kClose);
  }

  Encoding* encoding_;
  Sink sink_;
  std::array<std::string_view, 256> names_{};
  std::vector<Scope> scopes_;
};

// Texts of a tree joined, with where the first section with content begins and the last one ends: outer blanks are
// trimmed up to there.
struct JoinedText {
  std::string text;
  std::size_t firstKept = std::string::npos;
  std::size_t lastKept = 0;

  void AddText(std::string_view part) {
    for (std::size_t end = part.find("\r\n"); end != std::string_view::npos; end = part.find("\r\n")) {
      text.append(part.substr(0, end));
      part.remove_prefix(end + 1);
    }
    text.append(part);
  }

  void AddSection(std::string_view part) {
    if (part.empty()) {
      return;
    }
    firstKept = std::min(firstKept, text.size());
    text.append(part);
    lastKept = text.size();
  }

  void AddBlankFor(const xmlNode* node, unsigned short where) {
    if ((BlanksAt(node) & where) != 0) {
      text += ' ';
    }
  }

  std::string Trimmed() && {
    std::size_t end = text.size();
    while (end > lastKept && IsBlank(text[end - 1])) {
      --end;
    }
    text.resize(end);
    std::size_t begin = 0;
    while (begin < std::min(firstKept, end) && IsBlank(text[begin])) {
      ++begin;
    }
    text.erase(0, begin);
    return std::move(text);
  }
};

JoinedText JoinTexts(xmlNode* top) {
  JoinedText joined;
  for (xmlNode* node = top;;) {
    if (node->type == XML_TEXT_NODE) {
      joined.AddText(View(node->content));
    } else if (node->type == XML_CDATA_SECTION_NODE) {
      joined.AddSection(View(node->content));
    } else if (IsElement(node) || IsDocument(node)) {
      if (IsElement(node)) {
        joined.AddBlankFor(node, kBlankInside);
      }
      if (node->children != nullptr) {
        node = node->children;
        continue;
      }
    }
    while (node != top && node->next == nullptr) {
      joined.AddBlankFor(node, kBlankAfter);
      node = node->parent;
    }
    if (node == top) {
      return joined;
    }
    joined.AddBlankFor(node, kBlankAfter);
    node = node->next;
  }
}

// Whether xml:space="preserve" is in force at a node.
bool PreservesSpace(const xmlNode* node) {
  if (!StateOf(node->doc).usesSpaceAttribute) {
    return false;
  }
  for (; node != nullptr && !IsDocument(node); node = node->parent) {
    if (!IsElement(node)) {
      continue;
    }
    if (const xmlAttr* attribute = FindAttribute(node, "xml", "space")) {
      return ValueOf(attribute) == "preserve";
    }
  }
  return false;
}

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

std::string MarkupFor(xmlDoc* document, Encoding& encoding, const std::string& encodingName) {
  Writer writer(encoding.IsUnicode() ? nullptr : &encoding);
  writer.AddDocument(document, encodingName);
  return writer.Take();
}

std::string TextOf(xmlNode* node) {
  switch (node->type) {
    case XML_ATTRIBUTE_NODE:
      return ValueOf(AsAttribute(node));
    case XML_COMMENT_NODE:
    case XML_PI_NODE:
      return std::string(View(node->content));
    case XML_DTD_NODE:
      return "";
    default:
      break;
  }
  JoinedText joined = JoinTexts(node);
  return PreservesSpace(node) ? std::move(joined.text) : std::move(joined).Trimmed();
}

}  // namespace parvex::xml
