#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace parvex::test {

/// Why a document does not follow an XML schema; empty when it does.
std::string SchemaProblem(const std::string& schema, const std::string& document);

/// The documents that stand one behind the other in what a run printed, each ended by CR LF.
std::vector<std::string> RepliesIn(std::string_view printed);

/// Fails the test when a reply that the program printed does not follow the schema of replies. A document of the legacy
/// application that a test made up passes, when the command hands such documents on: `arguments` are those of the run.
void CheckReplies(const std::vector<std::string>& arguments, const std::string& printed);

}  // namespace parvex::test
