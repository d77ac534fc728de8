#include "masking/markup_parts.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/text/text.h"

namespace parvex::masking {
namespace {

constexpr std::size_t kMostOpen = 4'000;

bool IsNameStart(char32_t c) {
  return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || c == U'_' || (c >= 0xC0 && c < 0x2000);
}
bool IsNameCharacter(char32_t c) {
  return IsNameStart(c) || (c >= U'0' && c <= U'9') || c == U'-' || c == U'.' || c == U':';
}
bool IsBlank(char32_t c) { return c == U' ' || c == U'\t' || c == U'\r' || c == U'\n'; }

class Reader {
 public:
  Reader(Part markup, const std::function<void(const MarkupPart&)>& take,
         const std::function<void(std::string)>& takeName)
      : all_(markup), take_(take), takeName_(takeName) {}

  void Read() {
    while (at_ < all_.size()) {
      if (Is(U"<![CDATA[")) {
        Literal(9, U"]]>");
      } else if (Is(U"<!--")) {
        Literal(4, U"-->");
      } else if (Is(U"<?") || Is(U"<!")) {
        Literal(2, U">");
      } else if (Is(U"</")) {
        Close();
      } else if (all_[at_].code == U'<' && at_ + 1 < all_.size() && IsNameStart(all_[at_ + 1].code)) {
        Open();
      } else {
        Text();
      }
    }
  }

 private:
  struct Element {
    std::string name;
    std::string nameAttribute;
    std::string childName;  // the text of its child NAME
  };

  bool Is(std::u32string_view what) const {
    if (all_.size() - at_ < what.size()) {
      return false;
    }
    return std::equal(what.begin(), what.end(), all_.begin() + static_cast<std::ptrdiff_t>(at_),
                      [](char32_t c, const Character& one) { return one.code == c; });
  }

  void Give(Part text, bool isLiteral, const std::string& attribute = {}) {
    MarkupPart part{
        .text = text, .isLiteral = isLiteral, .element = {}, .attribute = attribute, .parent = {}, .named = {}};
    if (!open_.empty()) {
      part.element = open_.back().name;
    }
    if (open_.size() > 1) {
      const Element& parent = open_[open_.size() - 2];
      part.parent = parent.name;
      part.named = parent.childName.empty() ? parent.nameAttribute : parent.childName;
    }
    take_(part);
  }

  void Literal(std::size_t start, std::u32string_view end) {
    at_ += start;
    const std::size_t from = at_;
    while (at_ < all_.size() && !Is(end)) {
      ++at_;
    }
    Give(all_.subspan(from, at_ - from), true);
    at_ = std::min(at_ + end.size(), all_.size());
  }

  void Close() {
    at_ += 2;
    const std::string name = Name();
    while (at_ < all_.size() && all_[at_].code != U'>') {
      ++at_;
    }
    at_ = std::min(at_ + 1, all_.size());
    const auto found = std::find_if(open_.rbegin(), open_.rend(), [&](const Element& one) { return one.name == name; });
    if (found != open_.rend()) {
      open_.erase(found.base() - 1, open_.end());
    }
  }

  void Open() {
    ++at_;
    Element element{.name = Name(), .nameAttribute = {}, .childName = {}};
    if (open_.size() < kMostOpen) {
      open_.push_back(std::move(element));
    }
    while (at_ < all_.size() && all_[at_].code != U'>') {
      if (Is(U"/>")) {
        open_.pop_back();
        at_ += 2;
        return;
      }
      if (IsNameStart(all_[at_].code)) {
        Attribute();
      } else {
        ++at_;
      }
    }
    at_ = std::min(at_ + 1, all_.size());
  }

  void Attribute() {
    const std::string name = Name();
    const auto skipBlanks = [&] {
      while (at_ < all_.size() && IsBlank(all_[at_].code)) {
        ++at_;
      }
    };
    skipBlanks();
    if (at_ == all_.size() || all_[at_].code != U'=') {
      return;
    }
    ++at_;
    skipBlanks();
    if (at_ == all_.size() || (all_[at_].code != U'"' && all_[at_].code != U'\'')) {
      return;
    }
    const char32_t quote = all_[at_++].code;
    const std::size_t from = at_;
    while (at_ < all_.size() && all_[at_].code != quote) {
      ++at_;
    }
    const Part value = all_.subspan(from, at_ - from);
    at_ = std::min(at_ + 1, all_.size());
    if (name == "NAME" && !open_.empty()) {
      open_.back().nameAttribute = Utf8(value);
    }
    Give(value, false, name);
  }

  void Text() {
    const std::size_t from = at_++;
    while (at_ < all_.size() && all_[at_].code != U'<') {
      ++at_;
    }
    const Part text = all_.subspan(from, at_ - from);
    if (open_.size() > 1 && open_.back().name == "NAME") {
      open_[open_.size() - 2].childName = Utf8(Trimmed(text));
    }
    Give(text, false);
  }

  // Without its prefix; the end behind it.
  std::string Name() {
    const std::size_t from = at_;
    while (at_ < all_.size() && IsNameCharacter(all_[at_].code)) {
      ++at_;
    }
    std::string name = Utf8(all_.subspan(from, at_ - from));
    name = ToUpper(name.substr(name.rfind(':') + 1));
    takeName_(name);
    return name;
  }

  Part all_;
  std::size_t at_ = 0;
  const std::function<void(const MarkupPart&)>& take_;
  const std::function<void(std::string)>& takeName_;
  std::vector<Element> open_;
};

}  // namespace

bool LooksLikeMarkup(Part text) {
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i].code == U'<' && (IsNameStart(text[i + 1].code) || text[i + 1].code == U'/' ||
                                 text[i + 1].code == U'!' || text[i + 1].code == U'?')) {
      return true;
    }
  }
  return false;
}

void ForEachPart(Part markup, const std::function<void(const MarkupPart&)>& take,
                 const std::function<void(std::string)>& takeName) {
  Reader(markup, take, takeName).Read();
}

}  // namespace parvex::masking
