#pragma once

#include <string>

// The lists whose tags are marked as up to date, as markup.

namespace parvex::bench {

inline constexpr int kTools = 1000;

inline std::string Group(int number) { return "G" + std::to_string(number % kTools) + "47"; }

/// Tags of all groups. Every second one, the first included, has the current version.
inline std::string TagList(int tags) {
  std::string text = "<TAGLIST>";
  for (int i = 0; i < tags; ++i) {
    text += "<TAG><NAME>Unit " + std::to_string(i) + "</NAME><PDSG>" + Group(i * 7) +
            "</PDSG><DATATYPE>0</DATATYPE><TAGVERSION>4.71." + std::to_string(i % 2) + "</TAGVERSION><TAGINDEXID>" +
            std::to_string(i) + "</TAGINDEXID><ID>" + std::to_string(i) + "</ID></TAG>";
  }
  return text + "</TAGLIST>";
}

/// A tool of each group, in the current version.
inline std::string Tools() {
  std::string text = "<Tools>";
  for (int i = 0; i < kTools; ++i) {
    text += "<Tool><Name>Tool " + std::to_string(i) + "</Name><Pdsg>" + Group(i) +
            "</Pdsg><Version>4.71.0</Version></Tool>";
  }
  return text + "</Tools>";
}

}  // namespace parvex::bench
