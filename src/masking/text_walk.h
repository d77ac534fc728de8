#pragma once

#include <string>
#include <string_view>

#include "masking/markup_parts.h"
#include "masking/masker.h"
#include "masking/text_view.h"

namespace parvex::masking {

/// Whether a text is an ini file or a registry file: it has a section and something behind it, or sets a key in its
/// first line that says anything.
bool LooksLikeLines(Part text);

/// One text, with the texts in it.
class TextWalk {
 public:
  TextWalk(Masker& masker, std::string_view written)
      : masker_(masker), names_(masker.names_), written_(written), changes_(written) {}

  std::string Walked(Place place);

 private:
  void Walk(Part text, Place place);
  void WalkRichText(Part text, Place place);
  void WalkMarkup(Part text);
  void WalkLines(Part text);
  void WalkLine(Part line);
  void WalkConditions(Part text);
  void WalkRegistryLine(Part line);
  void WalkPath(Part path);
  void WalkPathsIn(Part text);
  bool WalkPacked(Part text, bool isSure);
  View WithoutPacked();
  void TakeProtocolWord(const MarkupPart& part, Part text);
  void TakeAddresses(Part text);
  void Look(Part text);
  void Take(Part text, Place place);
  void Blacken(Part text);
  void Mask(Part text, bool isPrice);
  bool IsPriceKept(Place place) const { return place == Place::Price && masker_.options_.keepPrices; }

  Masker& masker_;
  KnownNames& names_;
  std::string_view written_;
  Changes changes_;
  int depth_ = 0;
};

}  // namespace parvex::masking
