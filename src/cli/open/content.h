#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "formats/json/bounded_json.h"

namespace parvex::cli {

/// What the bytes of a file were found to be.
struct Content {
  std::string kind;               ///< a word for scripts; words are only ever added (docs/program.md has them)
  std::string what;               ///< the same for people
  Json members = Json::object();  ///< what is in it, by kind; numbers, texts, objects and arrays of objects
};

/// How far one file is looked into. What is beyond is left out, and said to be.
struct Looking {
  std::size_t items = 30'000;           ///< rows, lines, elements and so on that are still listed
  std::uint64_t unpacked = 128u << 20;  ///< bytes that archives in it may still unpack to
  std::uint64_t parsed = 16u << 20;     ///< bytes of entries and stored texts that are still looked into
  int depth = 3;                        ///< archives in each other, the outermost one counted

  bool TakeItem() { return items > 0 && items-- > 0; }
};

/// Lists what `add` makes of each item under `key`; `leftOut` counts those that there is no room for.
template <typename Items, typename Add>
void AddAll(Json& members, const char* key, const Items& items, Looking& looking, Add add) {
  Json listed = Json::array();
  std::size_t left = 0;
  for (const auto& item : items) {
    if (looking.TakeItem()) {
      listed.push_back(add(item));
    } else {
      ++left;
    }
  }
  members[key] = std::move(listed);
  if (left > 0) {
    members["leftOut"] = members.value("leftOut", std::size_t{0}) + left;
  }
}

/// A text as far as it is shown.
std::string ShownText(std::string_view text);

/// What bytes are and what is in them; nothing for what none of this system's readers knows. `name`, which may be
/// empty, is what errors call them; it does not decide what they are. An AutomationError or a UsageError that names it
/// for what begins like something known and is damaged, hostile or too large.
std::optional<Content> ContentOf(std::string_view bytes, const std::string& name, Looking& looking);

// The same for what may be one kind; nothing for what is none of it.
std::optional<Content> ArchiveContent(std::string_view bytes, const std::string& name, Looking& looking);
std::optional<Content> DatabaseContent(std::string_view bytes, const std::string& name, Looking& looking);
std::optional<Content> XmlContent(std::string_view bytes, const std::string& name, Looking& looking);
std::optional<Content> RegistryContent(std::string_view bytes, Looking& looking);
std::optional<Content> JsonContent(std::string_view bytes, const std::string& name, Looking& looking);
std::optional<Content> IniContent(std::string_view bytes, Looking& looking);

/// What stands inside of another file, as a member object: `kind`, `what` and the members, or `problem`. What is not
/// known, or too large to be looked into, has the kind `unknown`.
Json InnerContent(std::string_view bytes, const std::string& name, Looking& looking);

/// A file's content for people. `bytes` is its size.
std::string ContentAsText(const Content& content, const std::string& file, std::size_t bytes);
/// The same for tools.
std::string ContentAsJson(const Content& content, const std::string& file, std::size_t bytes);

}  // namespace parvex::cli
