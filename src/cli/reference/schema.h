#pragma once

#include <string>

namespace parvex::cli {

// XML schemas (XSD 1.0), made of the command tables.

/// Of command documents, in the shape that the example requests have. The protocol takes more: it searches, and hardly
/// checks.
std::string RequestSchema();

/// Of replies: the envelope, the Hybris document, and the other documents that commands answer with. What belongs to
/// the legacy application may hold anything.
std::string ReplySchema();

}  // namespace parvex::cli
