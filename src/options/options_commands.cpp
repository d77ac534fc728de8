#include "options/options_commands.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "legacy_env/install_paths.h"
#include "legacy_env/installed_files.h"
#include "legacy_env/program_folder_document.h"
#include "protocol/command_document.h"
#include "protocol/reply_envelope.h"
#include "protocol/required_node.h"
#include "seams/automation_error.h"
#include "seams/durable_files.h"

namespace parvex {
namespace {

constexpr std::string_view kGeneralOptions[] = {"cmbLanguage", "cmbUnitOfMeasure"};

std::string OptionsPath(const LegacyLink& link) { return GetBinPath(link.platform) + "\\" + std::string(kOptionsFile); }

/// The Option of tool SOV02 with that name; a null node when there is none.
xml::Node GeneralOption(const xml::Document& options, std::string_view name) {
  const xml::Node found = options.First("//Tool[@ID='SOV02']/Option/Name[text()='" + std::string(name) + "']");
  return found ? found.Parent() : xml::Node();
}

xml::Node ValueBelow(const xml::Node& element, std::string_view path) {
  return Required(element.First(path), path, element.Name());
}

void SetGeneralOption(const xml::Document& options, const xml::Document& command, std::string_view name) {
  const xml::Node given = command.First("//COMMAND/PARAMETER/NAME[text()='" + std::string(name) + "']");
  if (!given) {
    return;
  }
  const xml::Node option = Required(GeneralOption(options, name), name, "tool SOV02 of Options.xml");
  ValueBelow(option, ".//Value").SetText(ValueBelow(given.Parent(), ".//VALUE").Text());
}

/// The options of tool SOV01, by a text that stands in their names.
class PassedOptions {
 public:
  explicit PassedOptions(const xml::Document& options) {
    for (const xml::Node& text : options.All("//Tool[@ID='SOV01']/Option/Name/text()")) {
      texts_[text.Text()].push_back(text);
    }
  }

  /// The first option whose Name holds exactly this text; a null node when there is none, as for a name with an
  /// apostrophe. Blanks around an option's name count, deliberately, while those around a parameter's are never seen:
  /// no parameter sets an option that is written with them.
  xml::Node Find(const std::string& name) const {
    const auto texts = texts_.find(name);
    if (texts == texts_.end() || name.find('\'') != std::string::npos) {
      return {};
    }
    const std::string exactly = "self::node()[.='" + name + "']";
    for (const xml::Node& text : texts->second) {
      if (text.First(exactly)) {
        return text.Parent().Parent();
      }
    }
    return {};
  }

 private:
  // A node's own text has no outer blanks, so that nodes of one key may still differ in them.
  std::unordered_map<std::string, std::vector<xml::Node>> texts_;
};

void SetPassedOptions(const xml::Document& options, const xml::Document& command) {
  const PassedOptions passed(options);
  for (const xml::Node& parameter : command.All("//COMMAND/PARAMETER")) {
    const std::string name = ValueBelow(parameter, ".//NAME").Text();
    const std::string value = ValueBelow(parameter, ".//VALUE").Text();
    if (const xml::Node option = passed.Find(name)) {
      ValueBelow(option, ".//Value").SetText(value);
    }
  }
}

void WriteOptions(const LegacyLink& link, const xml::Document& command) {
  const std::string path = OptionsPath(link);
  const std::shared_ptr<void> alone = link.platform.files->HoldForChange(path);
  const xml::Document options = LoadDocument(link.platform, path);
  Required(options.Root(), "Tool", path);
  for (const std::string_view name : kGeneralOptions) {
    SetGeneralOption(options, command, name);
  }
  SetPassedOptions(options, command);
  ReplaceOnDisk(*link.platform.files, path, options.Bytes());
}

}  // namespace

xml::Document GetOptions(LegacyLink& link, const xml::Document&) {
  const xml::Document reply = MakeCommandDocument("setOptions");
  const xml::Document options = LoadFromProgramFolder(link.platform, kOptionsFile);
  if (options.IsEmpty()) {
    return reply;
  }
  for (const std::string_view name : kGeneralOptions) {
    const xml::Node option = GeneralOption(options, name);
    const xml::Node value = option ? option.First(".//Value") : xml::Node();
    if (value) {
      AddParameter(reply, name, value.Text());
    }
  }
  for (const xml::Node& option : options.All("//Tool[@ID='SOV01']/Option")) {
    AddParameter(reply, ValueBelow(option, ".//Name").Text(), ValueBelow(option, ".//Value").Text());
  }
  return reply;
}

xml::Document SetOptions(LegacyLink& link, const xml::Document& command) {
  try {
    WriteOptions(link, command);
    return MakeReplyEnvelope();
  } catch (const AutomationError&) {
    return MakeFailedReply();
  }
}

}  // namespace parvex
