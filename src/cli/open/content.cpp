#include "cli/open/content.h"

#include "cli/host/exit_status.h"
#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex::cli {

std::string ShownText(std::string_view text) {
  constexpr std::size_t kLongestText = 1'000;
  const std::string_view shown = FirstUnits(text, kLongestText);
  return std::string(shown) + (shown.size() < text.size() ? "..." : "");
}

std::optional<Content> ContentOf(std::string_view bytes, const std::string& name, Looking& looking) {
  if (std::optional<Content> archive = ArchiveContent(bytes, name, looking)) {
    return archive;
  }
  if (std::optional<Content> database = DatabaseContent(bytes, name, looking)) {
    return database;
  }
  if (std::optional<Content> document = XmlContent(bytes, name, looking)) {
    return document;
  }
  if (std::optional<Content> registry = RegistryContent(bytes, looking)) {
    return registry;
  }
  if (std::optional<Content> json = JsonContent(bytes, name, looking)) {
    return json;
  }
  return IniContent(bytes, looking);
}

Json InnerContent(std::string_view bytes, const std::string& name, Looking& looking) {
  Json inner = {{"kind", "unknown"}, {"what", "nothing that is known"}};
  if (bytes.size() > looking.parsed || looking.items == 0) {
    inner["what"] = "not looked into";
    return inner;
  }
  looking.parsed -= bytes.size();
  try {
    if (std::optional<Content> content = ContentOf(bytes, name, looking)) {
      inner["kind"] = content->kind;
      inner["what"] = content->what;
      inner.update(content->members);
    }
  } catch (const AutomationError& error) {
    inner["problem"] = error.Description();
  } catch (const UsageError& error) {
    inner["problem"] = error.what();
  }
  return inner;
}

}  // namespace parvex::cli
