#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "hybris/selection_section.h"
#include "seams/platform.h"

namespace parvex {

class NamedBlobs;

/// One tag of what the quote builder selected, and the way to everything that its output file says of it.
class SelectedTag {
 public:
  /// The tag of that number (from 1) in the output file, a path of the machine. Platform and path must outlive the tag.
  SelectedTag(const Platform& platform, std::string_view qbOutputFile, std::int32_t number)
      : platform_(&platform), qbOutputFile_(qbOutputFile), number_(number) {}

  const Platform& Machine() const { return *platform_; }

  /// The tag's section of that word.
  SelectionSection Section(std::string_view word) const;

  /// The family that the PDSG begins with; "XXX", deliberately, for one too short to tell.
  std::string_view FamilyCode() const;

  std::string partNumber;
  std::string pdsg;
  std::string markFor;
  std::string blobFileName;  ///< the file with the tag's stored data
  /// All blobs of the selection that the tag belongs to; null for a tag of its own.
  std::shared_ptr<NamedBlobs> namedBlobs;

 private:
  const Platform* platform_;
  std::string_view qbOutputFile_;
  std::int32_t number_;
};

}  // namespace parvex
