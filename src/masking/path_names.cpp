#include "masking/path_names.h"

#include <algorithm>
#include <string>

#include "formats/text/text.h"

namespace parvex::masking {
namespace {

bool IsSeparator(char32_t c) { return c == U'\\' || c == U'/'; }

// What a file's name cannot hold, and so ends a path in a text.
bool EndsPath(char32_t c) {
  return c == U'"' || c == U'<' || c == U'>' || c == U'|' || c == U'*' || c == U'?' || c < 0x20;
}

bool Is(const std::string& component, std::initializer_list<std::string_view> names) {
  return std::any_of(names.begin(), names.end(),
                     [&](std::string_view name) { return EqualIgnoringCase(component, name); });
}

bool IsNobody(const std::string& user) { return Is(user, {"Public", "Default", "All Users", "Default User"}); }

Part WithoutExtension(Part name) {
  for (std::size_t i = name.size(); i > 1; --i) {
    if (name[i - 1].code == U'.') {
      return name.first(i - 1);
    }
  }
  return name;
}

}  // namespace

std::vector<Part> NamesInPath(Part text, bool isWhole) {
  std::vector<Part> names;
  std::string before;     // the component in front
  std::size_t count = 0;  // of the components that this path has so far
  bool isNetwork = false;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t from = at;
    while (at < text.size() && IsSeparator(text[at].code)) {
      ++at;
    }
    if (count == 0 && isWhole && from == 0) {
      isNetwork = at >= 2;
    }
    const std::size_t start = at;
    while (at < text.size() && !IsSeparator(text[at].code) && !EndsPath(text[at].code)) {
      ++at;
    }
    const Part component = text.subspan(start, at - start);
    const bool goesOn = at < text.size() && IsSeparator(text[at].code);
    const std::string name = Utf8(component);
    const bool isNamed = !component.empty() && (goesOn || isWhole);
    if (isNamed && Is(before, {"Users", "Documents and Settings", "home"}) && !IsNobody(name)) {
      names.push_back(component);
    } else if (isNamed && Is(before, {"Projects"})) {
      names.push_back(component);
    } else if (isNamed && Is(before, {"Archives"})) {
      names.push_back(goesOn ? component : WithoutExtension(component));
    } else if (isNamed && isNetwork && count < 2) {
      names.push_back(component);
    } else if (isNamed && isWhole && count == 0 && !isNetwork && Is(name, {"unc"})) {
      isNetwork = true;  // a network's path in a machine folder
      continue;
    }
    before = name;
    ++count;
    if (at < text.size() && EndsPath(text[at].code)) {
      ++at;
      before.clear();
      count = 0;
      isNetwork = false;
    }
  }
  return names;
}

}  // namespace parvex::masking
