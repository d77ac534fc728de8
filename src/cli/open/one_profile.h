#pragma once

#include <memory>
#include <string>

#include "seams/platform.h"

namespace parvex::cli {

/// A machine with nothing but one ini file, for readers that take a machine. Nothing can be written.
class OneProfile {
 public:
  static constexpr const char* kPath = "C:\\Temp\\QBOutput.ini";

  explicit OneProfile(std::string bytes);
  ~OneProfile();
  OneProfile(const OneProfile&) = delete;
  OneProfile& operator=(const OneProfile&) = delete;

  /// Lives as long as this.
  const Platform& Machine() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace parvex::cli
