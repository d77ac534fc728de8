#include "hybris/return_to_legacy.h"

#include <string>
#include <string_view>
#include <vector>

#include "codec/bin_encoder.h"
#include "formats/text/text.h"
#include "legacy_env/hand_over_lock.h"
#include "legacy_env/ini_target.h"
#include "legacy_env/install_paths.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

/// A path inside the tag document. It is looked for under PARAMETERS, which no other command has: deliberate, the
/// return command's front end wraps its parameters once more. Its project name and mark-for text are not used here.
std::string InTag(std::string_view path) {
  return "//COMMAND/PARAMETERS/PARAMETER/PROJECT/TAGS/TAG/" + std::string(path);
}

void ShowBox(const Platform& platform, std::string_view text) {
  platform.messageBoxes->Show(text, kDefaultCaption, MessageBoxes::Icon::None);
}

xml::Document Refuse(const Platform& platform, std::string_view boxText, std::string_view errorMessage) {
  ShowBox(platform, boxText);
  return MakeFailedReply(errorMessage);
}

/// The legacy application's ini routines tell of no reason why they could not write: path/file access (75), always.
void WriteInstruction(const Platform& platform, const std::string& file, const std::string& selectionFile) {
  const std::string text = "[Header]\r\nAction=ok\r\n[Partnumber1]\r\nfilename=" + selectionFile + "\r\n";
  try {
    platform.files->Replace(file, platform.codePage->ToAnsi(text));
  } catch (const AutomationError& error) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, error.Description());
  }
}

/// Every component of the document is shown once for every base unit, deliberately: the list of components is that of
/// the whole document, not of the unit.
void ShowComponents(const Platform& platform, const xml::Document& command) {
  const std::size_t unitCount = command.All(InTag("BASEUNITS/BASEUNIT")).size();
  if (unitCount == 0) {
    return;
  }
  std::vector<std::string> texts;
  for (const xml::Node& component : command.All(InTag("BASEUNITS/BASEUNIT/COMPONENTS/COMPONENT"))) {
    texts.push_back(component.Xml());
  }
  for (std::size_t unit = 0; unit < unitCount; ++unit) {
    for (const std::string& text : texts) {
      ShowBox(platform, text);
    }
  }
}

/// Leaves the stored data and the instruction to take it where the legacy application looks for them. That application
/// deletes both files first and makes them anew; here each is replaced, so that whoever looks meanwhile, or after this
/// program was killed, finds an instruction that names what is there: the data before the instruction.
void WriteHandOver(const Platform& platform, const std::string& storedData) {
  const std::string folder = GetHandOverFolder(platform);
  const HandOverLock alone(platform, folder, HandOverLock::Run::Alone);
  const std::string selectionFile = folder + "\\QPblob.tmp";
  platform.files->Replace(selectionFile, DecodeBase64(storedData));

  const std::string instructionFile = folder + "\\input.ini";
  WriteInstruction(platform, instructionFile, selectionFile);
  SetIniTarget(platform, "Partnumber1", instructionFile);
}

}  // namespace

xml::Document ReturnTagToLegacy(LegacyLink& link, const xml::Document& command) {
  const Platform& platform = link.platform;
  const xml::Node pdsg = command.First(InTag("ATTRIBUTES_LIST/PDSG"));
  if (!pdsg) {
    return Refuse(platform, "This Tag did not originate from Legacy ORLA. Cannot Import it.",
                  "Tag document PDSG is missing");
  }
  const xml::Node blob = command.First(InTag("ATTRIBUTES_LIST/BLOB"));
  if (!blob) {
    const bool isAppliedChiller = FirstUnits(TrimBlanks(pdsg.Text()), 2) == "XR";
    return Refuse(platform,
                  isAppliedChiller ? "Returning Applied Chiller Tags to ORLA is not supported."
                                   : "Only units that originated in ORLA can be returned to ORLA",
                  "Tag document BLOB is missing");
  }
  WriteHandOver(platform, blob.Text());
  ShowComponents(platform, command);
  const xml::Document reply = MakeReplyEnvelope();
  reply.First("//errorMessage").SetText("No error");
  return reply;
}

}  // namespace parvex
