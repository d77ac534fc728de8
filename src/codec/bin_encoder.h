#pragma once

#include <string>
#include <string_view>

#include "seams/code_page.h"
#include "seams/files.h"

namespace parvex {

/// Base64 of bytes. One line whatever the length; "=" fills the last group.
std::string EncodeBase64(std::string_view bytes);
/// Bytes of a Base64 text, read leniently: CR LF pairs and "=" are dropped; every other character counts with the value
/// of the low 8 bits of its UTF-16 code (a surrogate pair as two characters, half of one as itself), and one outside
/// the alphabet, a lone CR or LF included, with the value 0. A single character left over at the end is ignored.
/// Nothing is ever an error.
std::string DecodeBase64(std::string_view text);

/// The public codec: Base64 of texts, byte arrays and files. Texts travel through the ANSI code page. No state.
class cBinEncoder {
 public:
  cBinEncoder(CodePage& codePage, Files& files) : codePage_(codePage), files_(files) {}

  /// The decoded bytes read as ANSI text; empty for an empty text.
  std::string Decode(std::string_view base64);
  std::string DecodeArr(std::string_view base64);
  /// Writes the decoded bytes to a new file. An existing file is the error 0x800403E8 "File already exists." with
  /// source "Base64.DecodeToFile", and stays as it is.
  void DecodeToFile(std::string_view base64, std::string_view fileName);
  std::string Encode(std::string_view text);
  std::string EncodeArr(std::string_view bytes);
  /// A missing file is "file not found" (53); an empty one is an error too (9), as the legacy codec cannot size its
  /// buffer.
  std::string EncodeFromFile(std::string_view fileName);

 private:
  CodePage& codePage_;
  Files& files_;
};

}  // namespace parvex
