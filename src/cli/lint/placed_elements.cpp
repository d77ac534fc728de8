#include "cli/lint/placed_elements.h"

#include <charconv>
#include <utility>

#include "formats/text/unicode.h"
#include "formats/text/xml_characters.h"

namespace parvex::cli {
namespace {

std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && xml::IsBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && xml::IsBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

// What "&name;" stands for; itself when nobody knows.
std::string Resolved(std::string_view name) {
  constexpr std::pair<std::string_view, const char*> kNames[] = {
      {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}};
  for (const auto& [known, text] : kNames) {
    if (name == known) {
      return text;
    }
  }
  if (name.starts_with('#')) {
    const bool isHex = name.starts_with("#x");
    const char* begin = name.data() + (isHex ? 2 : 1);
    unsigned character = 0;
    const auto [end, error] = std::from_chars(begin, name.data() + name.size(), character, isHex ? 16 : 10);
    if (error == std::errc() && end == name.data() + name.size() && character <= 0x10FFFF) {
      std::string text;
      AppendUtf8(text, character);
      return text;
    }
  }
  return "&" + std::string(name) + ";";
}

std::string WithEntities(std::string_view text) {
  std::string resolved;
  while (!text.empty()) {
    const std::size_t begin = text.find('&');
    resolved += text.substr(0, begin);
    if (begin == std::string_view::npos) {
      break;
    }
    const std::size_t end = text.find(';', begin);
    if (end == std::string_view::npos) {
      return resolved.append(text.substr(begin));
    }
    resolved += Resolved(text.substr(begin + 1, end - begin - 1));
    text.remove_prefix(end + 1);
  }
  return resolved;
}

/// Reads from one "<" to the next.
class Reader {
 public:
  explicit Reader(std::string_view markup) : markup_(markup) { open_.push_back({}); }

  PlacedElement Read() {
    while (at_ < markup_.size()) {
      const std::size_t tag = markup_.find('<', at_);
      open_.back().text += WithEntities(markup_.substr(at_, tag - at_));
      at_ = tag;
      if (at_ == std::string_view::npos) {
        break;
      }
      ReadMarkup();
    }
    while (open_.size() > 1) {
      Close();
    }
    return open_.front().children.empty() ? PlacedElement{} : std::move(open_.front().children.front());
  }

 private:
  void ReadMarkup() {
    const std::string_view rest = markup_.substr(at_);
    if (rest.starts_with("<!--")) {
      Skip("-->");
    } else if (rest.starts_with("<![CDATA[")) {
      const std::size_t begin = at_ + 9;
      Skip("]]>");
      open_.back().text += markup_.substr(begin, at_ - begin >= 3 ? at_ - begin - 3 : 0);
    } else if (rest.starts_with("<?")) {
      Skip("?>");
    } else if (rest.starts_with("<!")) {
      SkipTag(true);
    } else if (rest.starts_with("</")) {
      Skip(">");
      if (open_.size() > 1) {
        Close();
      }
    } else {
      Open();
    }
  }

  void Open() {
    const std::size_t begin = at_;
    std::size_t end = begin + 1;
    while (end < markup_.size() && markup_[end] != '>' && markup_[end] != '/' && !xml::IsBlank(markup_[end])) {
      ++end;
    }
    open_.push_back({std::string(markup_.substr(begin + 1, end - begin - 1)), begin});
    SkipTag(false);
    if (at_ >= 2 && markup_[at_ - 2] == '/') {
      Close();
    }
  }

  void Close() {
    PlacedElement closed = std::move(open_.back());
    closed.text = WithoutBlanks(closed.text);
    open_.pop_back();
    open_.back().children.push_back(std::move(closed));
  }

  void Skip(std::string_view mark) {
    const std::size_t end = markup_.find(mark, at_);
    at_ = end == std::string_view::npos ? markup_.size() : end + mark.size();
  }

  /// Past the ">" that is in no quotes and, in a document type, in no brackets.
  void SkipTag(bool hasBrackets) {
    char quote = '\0';
    int brackets = 0;
    for (; at_ < markup_.size(); ++at_) {
      const char c = markup_[at_];
      if (quote != '\0') {
        quote = c == quote ? '\0' : quote;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (hasBrackets && (c == '[' || c == ']')) {
        brackets += c == '[' ? 1 : -1;
      } else if (c == '>' && brackets <= 0) {
        ++at_;
        return;
      }
    }
  }

  std::string_view markup_;
  std::size_t at_ = 0;
  std::vector<PlacedElement> open_;  // the first stands for the document
};

}  // namespace

const PlacedElement* PlacedElement::Child(std::string_view childName) const {
  for (const PlacedElement& child : children) {
    if (child.name == childName) {
      return &child;
    }
  }
  return nullptr;
}

const PlacedElement* PlacedElement::Descendant(std::string_view descendantName) const {
  for (const PlacedElement& child : children) {
    if (child.name == descendantName) {
      return &child;
    }
    if (const PlacedElement* below = child.Descendant(descendantName)) {
      return below;
    }
  }
  return nullptr;
}

PlacedElement PlacedRoot(std::string_view markup) { return Reader(markup).Read(); }

}  // namespace parvex::cli
