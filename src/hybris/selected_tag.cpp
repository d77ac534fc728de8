#include "hybris/selected_tag.h"

#include "formats/text/text.h"

namespace parvex {

SelectionSection SelectedTag::Section(std::string_view word) const {
  return SelectionSection(*platform_, qbOutputFile_, word, number_);
}

std::string_view SelectedTag::FamilyCode() const { return LengthInUnits(pdsg) >= 3 ? FirstUnits(pdsg, 3) : "XXX"; }

}  // namespace parvex
