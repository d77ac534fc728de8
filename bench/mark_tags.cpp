// Marks the tags of a list as up to date as a whole program: reads the list and the tools, marks, writes the answer.
// For comparing two builds by compare_builds.py.

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "seams/xml.h"
#include "tags/tag_listing.h"

namespace {

std::string Content(const char* file) {
  std::ostringstream content;
  content << std::ifstream(file, std::ios::binary).rdbuf();
  return content.str();
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::fputs("usage: mark_tags LIST TOOLS\n", stderr);
    return 2;
  }
  const auto list = parvex::xml::Document::Parse(Content(arguments[1]));
  parvex::MarkUpToDate(list, parvex::xml::Document::Parse(Content(arguments[2])));
  const std::string marked = list.Xml();
  return std::fwrite(marked.data(), 1, marked.size(), stdout) == marked.size() ? 0 : 1;
}
