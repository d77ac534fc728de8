#include <algorithm>
#include <utility>
#include <vector>

#include "cli/open/content.h"
#include "cli/open/one_profile.h"
#include "formats/ini/profile_text.h"
#include "formats/text/letter_case.h"
#include "formats/text/windows_1252.h"
#include "hybris/selected_items.h"

namespace parvex::cli {
namespace {

struct Section {
  std::string name;
  std::vector<std::pair<std::string, std::string>> keys;
};

// The longest line that is one of an ini file.
constexpr std::size_t kLongestLine = 65'536;
constexpr std::size_t kLongestName = 255;

std::string ShownPiece(const ini::ProfileText& text, std::string_view piece, CodePage& codePage) {
  return ShownText(codePage.FromAnsi(text.Read(piece, kLongestLine)));
}

// Nothing for a text with a line that is no section, no key with a value and no remark.
std::optional<std::vector<Section>> SectionsOf(const ini::ProfileText& file, Looking& looking, std::size_t& leftOut,
                                               CodePage& codePage) {
  const std::string_view text = file.Text();
  std::vector<Section> sections;
  for (std::size_t pos = 0; pos < text.size();) {
    const ini::ProfileLine line = ini::ProfileLineAt(text, pos);
    pos = line.next;
    const std::string_view written = text.substr(line.begin, line.end - line.begin);
    if (line.IsBlank() || written.starts_with(';')) {
      continue;
    }
    const std::optional<std::string_view> header = ini::SectionName(written);
    const std::optional<std::string_view> value = ini::KeyValue(written);
    if (written.size() > kLongestLine || (!header && (!value || ini::KeyName(written).size() > kLongestName))) {
      return std::nullopt;
    }
    if (!looking.TakeItem()) {
      ++leftOut;
    } else if (header) {
      sections.push_back({ShownPiece(file, *header, codePage), {}});
    } else {
      if (sections.empty()) {
        sections.emplace_back();
      }
      sections.back().keys.emplace_back(ShownPiece(file, ini::KeyName(written), codePage),
                                        ShownPiece(file, *value, codePage));
    }
  }
  return sections;
}

Json KeysOf(const Section& section) {
  Json keys = Json::array();
  for (const auto& [name, value] : section.keys) {
    keys.push_back({{"name", name}, {"value", value}});
  }
  return keys;
}

const Section* Find(const std::vector<Section>& sections, std::string_view name) {
  const auto found = std::ranges::find_if(sections, [&](const auto& one) { return IsSameName(one.name, name); });
  return found == sections.end() ? nullptr : &*found;
}

bool HasKey(const Section* section, std::string_view name) {
  return section != nullptr &&
         std::ranges::any_of(section->keys, [&](const auto& key) { return IsSameName(key.first, name); });
}

Json AccessoryOf(const Accessory& accessory) {
  return {{"partNumber", ShownText(accessory.partNumber)},
          {"quantity", ShownText(accessory.quantity)},
          {"price", ShownText(accessory.masterPrice)},
          {"description", ShownText(accessory.description)}};
}

Json WarrantyOf(const Warranty& warranty) {
  return {{"name", ShownText(warranty.name)},
          {"quantity", ShownText(warranty.quantity)},
          {"price", ShownText(warranty.masterPrice)},
          {"description", ShownText(warranty.description)}};
}

Json SelectedTagOf(const SelectedTag& tag, Looking& looking) {
  SelectionSection section = tag.Section("PartNumber");
  Json listed = {{"markFor", ShownText(tag.markFor)},
                 {"pdsg", ShownText(tag.pdsg)},
                 {"partNumber", ShownText(tag.partNumber)},
                 {"quantity", ShownText(section.Text("Quantity"))},
                 {"price", ShownText(section.Text("MasterPrice"))},
                 {"description", ShownText(section.Text("Description"))},
                 {"storedData", ShownText(tag.blobFileName)}};
  if (const std::string eto = BuildEtoDescription(tag); !eto.empty()) {
    listed["engineeredToOrder"] = ShownText(eto);
  }
  AddAll(listed, "accessories", ReadAccessories(tag), looking, [](const auto& item) { return AccessoryOf(*item); });
  AddAll(listed, "warranties", ReadWarranties(tag), looking, [](const auto& item) { return WarrantyOf(*item); });
  return listed;
}

Content SelectionContent(std::string_view bytes, const std::vector<Section>& sections, Looking& looking) {
  Content content = {.kind = "selection", .what = "what the quote builder selected", .members = Json::object()};
  if (const Section* header = Find(sections, "Header")) {
    content.members["header"] = KeysOf(*header);
  }
  OneProfile profile{std::string(bytes)};
  const std::vector<SelectedTag> tags = ReadSelectedTags(profile.Machine(), OneProfile::kPath);
  content.members["tagCount"] = tags.size();
  AddAll(content.members, "tags", tags, looking, [&](const SelectedTag& tag) { return SelectedTagOf(tag, looking); });
  return content;
}

}  // namespace

std::optional<Content> IniContent(std::string_view bytes, Looking& looking) {
  posix::Windows1252 codePage;
  const ini::ProfileText file(std::string(bytes), codePage);
  if (file.Encoding() == TextEncoding::Unmarked && bytes.find('\0') != bytes.npos) {
    return std::nullopt;
  }
  std::size_t leftOut = 0;
  const std::size_t items = looking.items;
  const std::optional<std::vector<Section>> sections = SectionsOf(file, looking, leftOut, codePage);
  if (!sections || sections->empty()) {
    return std::nullopt;
  }
  const Section* first = Find(*sections, "PartNumber1");
  if (HasKey(first, "PartNumber")) {
    looking.items = items;
    return SelectionContent(bytes, *sections, looking);
  }
  Content content = {.kind = "ini", .what = "an ini file", .members = Json::object()};
  if (HasKey(first, "filename") && Find(*sections, "Header") != nullptr) {
    content = {.kind = "return-note", .what = "the note that brings a tag back", .members = Json::object()};
  } else if (sections->size() == 1 && sections->front().name.empty()) {
    content = {.kind = "settings", .what = "settings, a line each", .members = Json::object()};
  }
  for (const Section& section : *sections) {
    content.members["sections"].push_back({{"section", section.name}, {"values", KeysOf(section)}});
  }
  if (leftOut > 0) {
    content.members["leftOut"] = leftOut;
  }
  return content;
}

}  // namespace parvex::cli
