#pragma once

#include <string>
#include <string_view>

#include "fuzz/fuzz_input.h"
#include "interface/legacy_orla_pull.h"

namespace parvex::fuzz {

inline void SendText(LegacyORLAPull& pull, std::string_view command) {
  const std::string reply = pull.PullNGORLA(command);
  Require(reply.empty() || !xml::Document::Parse(reply).IsEmpty(), "a reply parses");
}

inline void SendDocument(LegacyORLAPull& pull, std::string_view command) {
  if (const xml::Document reply = pull.Pull(xml::Document::Parse(command))) {
    reply.Xml();
  }
}

}  // namespace parvex::fuzz
