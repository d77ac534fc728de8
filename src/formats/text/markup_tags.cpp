#include "formats/text/markup_tags.h"

#include "formats/text/xml_characters.h"

namespace parvex::xml {
namespace {

constexpr std::size_t kNoTag = std::string_view::npos;

// Behind the next such mark; the end of the text when there is none.
std::size_t EndAtMark(std::string_view text, std::size_t from, std::string_view mark) {
  const std::size_t at = text.find(mark, from);
  return at == kNoTag ? text.size() : at + mark.size();
}

// Behind a comment or an instruction that begins at `from`; `from` itself when none does.
std::size_t BehindAside(std::string_view text, std::size_t from) {
  const std::string_view rest = text.substr(from, 4);
  return rest == "<!--"           ? EndAtMark(text, from + 4, "-->")
         : rest.starts_with("<?") ? EndAtMark(text, from, "?>")
                                  : from;
}

}  // namespace

MarkupTags::MarkupTags(std::string_view text) : text_(text), at_(0) {
  if (const std::size_t doctype = DoctypeIn(text); doctype != kNoTag) {
    const std::size_t end = EndOfDoctype(text, doctype);
    at_ = end == kNoTag ? text.size() : end;
  }
}

bool MarkupTags::Next(MarkupTag& tag) {
  for (at_ = text_.find('<', at_); at_ < text_.size(); at_ = text_.find('<', at_)) {
    const std::string_view rest = text_.substr(at_, 9);
    if (const std::size_t behind = BehindAside(text_, at_); behind != at_) {
      at_ = behind;
    } else if (rest == "<![CDATA[") {
      at_ = EndAtMark(text_, at_, "]]>");
    } else if (rest.starts_with("<!")) {
      at_ += 2;
    } else {
      tag.begin = at_;
      tag.end = at_ = EndOfTag(text_, at_);
      tag.kind = rest.starts_with("</")                                ? MarkupTag::Kind::End
                 : tag.end < text_.size() && text_[tag.end - 1] == '/' ? MarkupTag::Kind::Empty
                                                                       : MarkupTag::Kind::Start;
      return true;
    }
  }
  return false;
}

std::size_t EndOfTag(std::string_view text, std::size_t from) {
  char quote = '\0';
  for (std::size_t at = from; at < text.size(); ++at) {
    const char c = text[at];
    if (quote != '\0') {
      quote = c == quote ? '\0' : quote;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      return at;
    }
  }
  return text.size();
}

std::size_t DoctypeIn(std::string_view text) {
  for (std::size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; at < text.size();) {
    const std::size_t behind = IsBlank(text[at]) ? at + 1 : BehindAside(text, at);
    if (behind == at) {
      return text.substr(at).starts_with("<!DOCTYPE") ? at : kNoTag;
    }
    at = behind;
  }
  return kNoTag;
}

std::size_t EndOfDoctype(std::string_view text, std::size_t from) {
  bool inSubset = false;
  for (std::size_t at = from; at < text.size();) {
    if (const std::size_t behind = BehindAside(text, at); behind != at) {
      at = behind;
      continue;
    }
    const char c = text[at++];
    if (c == '"' || c == '\'') {
      const std::size_t close = text.find(c, at);
      at = close == kNoTag ? text.size() : close + 1;
    } else if (c == '[' || c == ']') {
      inSubset = c == '[';
    } else if (c == '>' && !inSubset) {
      return at;
    }
  }
  return kNoTag;
}

std::string_view NameIn(std::string_view text, const MarkupTag& tag) {
  const std::string_view inside = text.substr(tag.begin + 1, tag.end - tag.begin - 1);
  return inside.substr(0, inside.find_first_of(" \t\r\n/"));
}

}  // namespace parvex::xml
