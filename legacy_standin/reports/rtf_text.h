#pragma once

#include <string>
#include <string_view>

namespace parvex::standin {

/// A report as a rich text file: a heading and lines below it. Texts are UTF-8; the file is ASCII.
class RtfText {
 public:
  void Heading(std::string_view text);
  void Line(std::string_view text);
  /// The content of the file.
  std::string Bytes() const;

 private:
  std::string body_;
};

}  // namespace parvex::standin
