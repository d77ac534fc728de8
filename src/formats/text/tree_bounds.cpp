#include "formats/text/tree_bounds.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "formats/text/markup_bounds.h"
#include "formats/text/markup_tags.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {
namespace {

// What nodes take in a tree, about: those of the native adapter.
constexpr std::size_t kElementSize = 120;
constexpr std::size_t kAttributeSize = 192;  // with its value
constexpr std::size_t kTextSize = 96;

bool IsDeclaration(std::string_view attribute) { return attribute == "xmlns" || attribute.starts_with("xmlns:"); }

class TreeCount {
 public:
  explicit TreeCount(std::string_view text)
      : text_(text),
        most_(std::max(kTreeAnyway, kTreeOfText * text.size())),
        countsNames_(text.size() > kMostDifferentNames) {}

  // Why the tree passes a bound with this tag; null when it does not.
  std::string (*Add(const MarkupTag& tag))() {
    AddContent(text_.substr(end_, tag.begin - end_));
    end_ = std::min(tag.end + 1, text_.size());
    if (tag.kind == MarkupTag::Kind::End) {
      if (declarations_.size() > 1) {
        declarations_.pop_back();
      }
      return size_ > most_ ? TooLargeTree : nullptr;
    }
    if (declarations_.size() > kDeepestElement) {
      return NestedTooDeeply;
    }
    AddElement(tag);
    return isOverDeclared_                       ? TooManyDeclarations
           : names_.size() > kMostDifferentNames ? TooManyNames
           : size_ > most_                       ? TooLargeTree
                                                 : nullptr;
  }

 private:
  void AddContent(std::string_view content) {
    size_ += kElementSize * static_cast<std::size_t>(std::count(content.begin(), content.end(), '<'));
    size_ += IsBlank(content) ? 0 : kTextSize + content.size();
  }

  void AddElement(const MarkupTag& tag) {
    size_ += kElementSize;
    AddName(NameIn(text_, tag));
    std::size_t declared = declarations_.back();
    ForEachAttribute(text_, tag, [&](std::string_view name) {
      size_ += kAttributeSize;
      declared += IsDeclaration(name) ? 1 : 0;
      AddName(name);
    });
    isOverDeclared_ = declared > kMostDeclarations;
    if (tag.kind == MarkupTag::Kind::Start) {
      declarations_.push_back(declared);
    }
  }

  void AddName(std::string_view name) {
    if (countsNames_) {
      names_.insert(name);
    }
  }

  std::string_view text_;
  std::size_t most_;
  bool countsNames_;
  std::size_t end_ = 0;                       // of what was counted
  std::size_t size_ = 0;                      // of the tree so far
  std::vector<std::size_t> declarations_{0};  // that hold outside of all elements, and in those that are open
  bool isOverDeclared_ = false;
  std::unordered_set<std::string_view> names_;
};

}  // namespace

std::string BeyondTreeBounds(std::string_view text) {
  TreeCount tree(text);
  MarkupTags tags(text);
  for (MarkupTag tag{}; tags.Next(tag);) {
    if (const auto reason = tree.Add(tag)) {
      const bool isEmpty = tag.kind == MarkupTag::Kind::Empty;
      return PlaceOf(text, isEmpty ? tag.end - 1 : tag.end) + ": " + reason();
    }
  }
  return "";
}

}  // namespace parvex::xml
