#pragma once

#include <string_view>

#include "journal/journal_lines.h"

namespace parvex::replay {

/// Whether two texts say the same: as XML, layout of markup aside, where both are a document or several elements; else
/// byte for byte.
bool SameText(std::string_view one, std::string_view other);

/// The same of the bytes of two files, which may be in the encodings that their declarations name.
bool SameDocument(std::string_view one, std::string_view other);

/// Whether two errors, as the journal holds them, say the same. Of what another parser says about a document that it
/// does not take, which begins with the line, only what stands before it counts.
bool SameError(const journal::Json& one, const journal::Json& other, bool isOtherParser);

/// The same of values, at any depth. Members of objects count whatever their order.
bool SameValue(const journal::Json& one, const journal::Json& other);

/// Whether two paths of a machine mean the same file.
bool SamePath(std::string_view one, std::string_view other);

}  // namespace parvex::replay
