#pragma once

#include <string>
#include <string_view>

namespace parvex::windows {

// Between the text of XML markup and the bytes of a file, done here so that files are written in the encoding they
// declare whatever version of the XML component is installed.

/// UTF-8 text of a file's bytes: by byte order mark, else by the declaration's encoding, else UTF-8. Bytes that are not
/// valid in their encoding leave a reason in `refusal`.
std::string DecodeMarkup(std::string_view bytes, std::string& refusal);

struct NeutralMarkup {
  std::string text;         ///< as long as the markup, so that places in it stay
  std::string declaration;  ///< the content that the declaration had; empty when nothing was taken out
};

/// Markup whose declaration names no encoding: the component may refuse a text that names one which it does not know.
NeutralMarkup WithoutEncoding(std::string_view markup);

/// Bytes for `markup` (UTF-8; its own declaration, if any, is replaced) in the encoding that the declaration's
/// pseudo-attributes name. Without a declaration: UTF-8. An encoding that is not known is written as UTF-8, and the
/// declaration says so. Characters that the encoding lacks become references; in CDATA sections they stand between two.
std::string EncodeMarkup(std::string_view markup, std::string_view declaration);

/// Why a text must not reach the XML component, empty when it may: a DOCTYPE whose entities are more than plain text
/// (the stuff of entity bombs and of external entities) or expand to too much, and elements nested so deeply that the
/// component would overrun the stack of its host. Linear in the text.
std::string RefusedMarkup(std::string_view text);

}  // namespace parvex::windows
