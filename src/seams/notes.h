#pragma once

#include <string_view>

namespace parvex {

/// What somebody who looks into a failure later wants to know, though the work went on.
class Notes {
 public:
  virtual ~Notes() = default;
  /// `about` is the file, element or member; `text` says what was found.
  virtual void Take(std::string_view about, std::string_view text) = 0;
  /// What came back from the legacy application is not what it was asked for, though the protocol answers as if it
  /// were.
  virtual void Find(std::string_view text) = 0;
};

}  // namespace parvex
