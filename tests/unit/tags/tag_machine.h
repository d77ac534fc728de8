#pragma once

#include <string>
#include <vector>

#include "protocol/legacy_link.h"
#include "tests/support/command_texts.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {

/// A machine whose router answers from a list, and the link of one instance on it.
class TagMachine {
 public:
  FakeMachine machine;
  LegacyLink link{machine.platform};

  void Answer(bool success, const std::string& text) { machine.routers.answers.push_back({success, text}); }
  const std::vector<std::string>& Requests() const { return machine.routers.requests; }

  void WriteProgramFile(const std::string& name, const std::string& text) {
    machine.Write(std::string(FakeMachine::kBinPath) + name, text);
  }
};

inline std::string Tag(const std::string& name, const std::string& pdsg, const std::string& more = "") {
  return "<TAG><NAME>" + name + "</NAME><PDSG>" + pdsg + "</PDSG>" + more + "</TAG>";
}

/// A tag as tag lists hold it.
inline std::string ListedTag(const std::string& name, const std::string& pdsg, const std::string& version = "1") {
  return Tag(name, pdsg, "<TAGVERSION>" + version + "</TAGVERSION>");
}

/// A tag as commands name it.
inline std::string TagEntry(const std::string& name, const std::string& pdsg, const std::string& dataType) {
  return Tag(name, pdsg, "<DATATYPE>" + dataType + "</DATATYPE>");
}

}  // namespace parvex::test
