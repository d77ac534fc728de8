#include "masking/text_walk.h"

#include <algorithm>
#include <array>
#include <string>

#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "masking/letters.h"
#include "masking/markup_parts.h"
#include "masking/path_names.h"
#include "seams/automation_error.h"

namespace parvex::masking {
namespace {

using Work = Masker::Work;

constexpr int kDeepest = 24;
constexpr std::size_t kShortestPacked = 64;  // of Base64 inside other text
constexpr std::size_t kSurelyPacked = 200;   // no word and no path is that long
constexpr std::size_t kLongestCode = 8;      // of a family of products

bool IsBase64(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/' || c == '=';
}

// Elements in which a NAME is a word of the protocol.
bool NamesProtocol(const std::string& element) {
  constexpr std::array<std::string_view, 9> kElements = {"PARAMETER", "COMMAND", "OPTION", "CHARACTERISTIC", "PROPERTY",
                                                         "REPORT",    "TABLE",   "TOOL",   "BUILDER"};
  return std::find(kElements.begin(), kElements.end(), element) != kElements.end();
}

}  // namespace

std::string TextWalk::Walked(Place place) {
  const View view = WithoutPacked();
  Walk(view, place);
  return changes_.Made();
}

// Long Base64 is taken out first: it is most of what a case holds, and a text that holds it is looked at without it.
View TextWalk::WithoutPacked() {
  View view;
  std::size_t from = 0;
  const auto take = [&](std::size_t end) {
    View piece = Characters(written_.substr(from, end - from));
    for (Character& one : piece) {
      one.at += static_cast<std::uint32_t>(from);
    }
    view.insert(view.end(), piece.begin(), piece.end());
  };
  for (std::size_t at = 0; at < written_.size();) {
    if (!IsBase64(written_[at])) {
      ++at;
      continue;
    }
    std::size_t end = at;
    while (end < written_.size() && IsBase64(written_[end])) {
      ++end;
      // Base64 in lines: a line end goes on when both lines are of it.
      if (end - at >= 60 && end + 3 < written_.size() && (written_[end] == '\r' || written_[end] == '\n')) {
        const std::size_t next = end + (written_[end] == '\r' && written_[end + 1] == '\n' ? 2 : 1);
        end = IsBase64(written_[next]) && IsBase64(written_[next + 1]) ? next : end;
      }
    }
    if (end - at >= kShortestPacked) {
      const std::string_view packed = written_.substr(at, end - at);
      std::string masked = masker_.Packed(packed, packed.size() >= kSurelyPacked);
      if (!masked.empty() || packed.size() >= kSurelyPacked) {
        take(at);
        view.push_back({kReplacementCharacter, static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(end - at),
                        Character::Form::Opaque});
        from = end;
        if (!masked.empty()) {
          changes_.Put(static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(end - at), std::move(masked));
        }
      }
    }
    at = end;
  }
  take(written_.size());
  return view;
}

void TextWalk::Walk(Part text, Place place) {
  if (++depth_ > kDeepest) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "texts in the case are nested too deeply to be masked");
  }
  switch (place) {
    case Place::Name:
    case Place::Description:
    case Place::Price:
      Take(Unquoted(text), place);
      break;
    case Place::Path:
      WalkPath(Unquoted(text));
      break;
    case Place::Packed:
      WalkPacked(Trimmed(text), true);
      break;
    case Place::Free:
    case Place::Other:
      if (StartsWith(Trimmed(text), U"{\\rtf")) {
        WalkRichText(text, place);
      } else if (WalkPacked(Trimmed(text), false)) {
        // One word, in which there are no lines.
      } else if (StartsWith(Trimmed(text), U"<") && LooksLikeMarkup(text)) {
        WalkMarkup(text);
      } else if (LooksLikeLines(text)) {
        WalkLines(text);
      } else if (LooksLikeMarkup(text)) {
        WalkMarkup(text);
      } else if (place == Place::Free) {
        TakeAddresses(text);
        Blacken(text);
      } else {
        WalkConditions(text);
      }
      WalkPathsIn(text);
      break;
  }
  TakeAddresses(text);
  Look(text);
  --depth_;
}

void TextWalk::WalkRichText(Part text, Place place) {
  const View rich = RichText(text);
  TakeAddresses(rich);
  if (place == Place::Free) {
    Blacken(rich);
  } else {
    Look(rich);
  }
}

void TextWalk::WalkMarkup(Part text) {
  const auto take = [&](const MarkupPart& part) {
    const View resolved = part.isLiteral ? View(part.text.begin(), part.text.end()) : Resolved(part.text);
    Place place = Place::Other;
    if (part.attribute.empty()) {
      place = PlaceOfElement(part.element, part.parent, part.named);
    } else if (part.attribute == "NAME") {
      place = PlaceOfElement("NAME", part.element, {});
    } else if (part.attribute == "VALUE") {
      place = PlaceNamed(part.named);
    } else {
      place = PlaceNamed(part.attribute);
    }
    if (place == Place::Other) {
      TakeProtocolWord(part, resolved);
    }
    Walk(resolved, place);
  };
  const bool isWhole = StartsWith(Trimmed(text), U"<");
  ForEachPart(text, take, [&](const std::string& name) {
    if (isWhole && masker_.Now() == Work::Collect) {
      names_.AddProtocolText(name);
    }
  });
}

// Codes of product families, and the names of commands, parameters and reports, are the protocol's own.
void TextWalk::TakeProtocolWord(const MarkupPart& part, Part text) {
  if (masker_.Now() != Work::Collect) {
    return;
  }
  const std::string& name = part.attribute.empty() ? part.element : part.attribute;
  const std::string& key = name == "VALUE" ? part.named : name;
  const bool isName = name == "NAME" && NamesProtocol(part.attribute.empty() ? part.parent : part.element);
  const bool isReport = EqualIgnoringCase(key, "reportName");
  if (isName || isReport) {
    names_.AddProtocolText(Utf8(Trimmed(text)));
  } else if (EqualIgnoringCase(key, "pdsg") || EqualIgnoringCase(key, "pdsgOfOwner")) {
    names_.AddFamily(Utf8(Trimmed(text)));
  }
}

void TextWalk::WalkPath(Part path) {
  for (const Part name : NamesInPath(path, true)) {
    Take(name, Place::Name);
  }
}

void TextWalk::WalkPathsIn(Part text) {
  for (const Part name : NamesInPath(text, false)) {
    Take(name, Place::Name);
  }
}

// Whether all of the text may be Base64.
bool TextWalk::WalkPacked(Part text, bool isSure) {
  const auto isIt = [](const Character& one) {
    return one.code < 0x80 && one.form == Character::Form::Plain &&
           (IsBase64(static_cast<char>(one.code)) || one.code == U'\r' || one.code == U'\n');
  };
  if (text.size() < 4 || !std::all_of(text.begin(), text.end(), isIt)) {
    return false;
  }
  std::string masked = masker_.Packed(Utf8(text), isSure);
  if (!masked.empty()) {
    for (const Character& one : text) {
      changes_.Put(one.at, one.length, one.at == text.front().at ? masked : std::string());
    }
  }
  return true;
}

// E-mail addresses, and telephone numbers that begin with a plus sign.
void TextWalk::TakeAddresses(Part text) {
  if (masker_.Now() != Work::Collect) {
    return;
  }
  const auto isMail = [](const Character& one) {
    return IsMasked(one.code) || one.code == U'.' || one.code == U'-' || one.code == U'_' || one.code == U'+';
  };
  const auto isPhone = [](const Character& one) {
    return IsDigit(one.code) || one.code == U' ' || one.code == U'-' || one.code == U'/' || one.code == U'(' ||
           one.code == U')' || one.code == U'.';
  };
  for (std::size_t at = 0; at < text.size(); ++at) {
    std::size_t from = at;
    std::size_t end = at + 1;
    if (text[at].code == U'@') {
      while (from > 0 && isMail(text[from - 1])) {
        --from;
      }
      while (end < text.size() && isMail(text[end])) {
        ++end;
      }
      const std::u32string host = CodesOf(text.subspan(at, end - at));
      if (from < at && host.find(U'.') != host.npos) {
        names_.Add(Place::Name, CodesOf(text.subspan(from, end - from)));
      }
    } else if (text[at].code == U'+' && end < text.size() && IsDigit(text[end].code)) {
      while (end < text.size() && isPhone(text[end])) {
        ++end;
      }
      while (!IsDigit(text[end - 1].code)) {
        --end;
      }
      names_.Add(Place::Name, CodesOf(text.subspan(from, end - from)));
      at = end - 1;
    }
  }
}

void TextWalk::Look(Part text) {
  if (masker_.Now() == Work::Collect) {
    return;
  }
  const std::u32string codes = CodesOf(text);
  for (const KnownNames::Found& found : names_.FindIn(codes)) {
    if (masker_.Now() == Work::Check) {
      masker_.left_.insert(codes.substr(found.at, found.length));
      continue;
    }
    Mask(text.subspan(found.at, found.length), found.isPrice);
  }
}

void TextWalk::Take(Part text, Place place) {
  text = Trimmed(text);
  if (text.empty() || IsPriceKept(place)) {
    return;
  }
  if (masker_.Now() != Work::Collect) {
    if (masker_.Now() == Work::Mask) {
      Mask(text, place == Place::Price);
    }
    return;
  }
  if (place == Place::Price) {
    // Only the number: what stands around it may be a currency.
    const auto isNumber = [](const Character& one) {
      return IsDigit(one.code) || one.code == U'.' || one.code == U',' || one.code == U'-' || one.code == U'+';
    };
    if (!std::all_of(text.begin(), text.end(), isNumber)) {
      return;
    }
  } else if (std::any_of(text.begin(), text.end(), [](const Character& one) { return IsUnknownLetter(one.code); })) {
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           "\"" + Utf8(text) + "\" has letters of a script for which the masking knows no others");
  }
  names_.Add(place, CodesOf(text));
}

// Free text, of which no word stays.
void TextWalk::Blacken(Part text) {
  if (masker_.Now() == Work::Mask) {
    Mask(text, false);
  }
}

void TextWalk::Mask(Part text, bool isPrice) {
  const std::u32string masked = masker_.Masked(CodesOf(text), isPrice ? Place::Price : Place::Name);
  for (std::size_t i = 0; i < text.size(); ++i) {
    changes_.Put(text[i], masked[i]);
  }
}

}  // namespace parvex::masking
