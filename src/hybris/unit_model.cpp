#include "hybris/unit_model.h"

namespace parvex {

PreOrderFlag& PreOrderFlag::operator=(std::string_view value) {
  text_ = value == "Y" ? "1" : value == "N" ? "0" : value;
  return *this;
}

}  // namespace parvex
