#include "cli/doctor/cures.h"

#include <algorithm>

#include "formats/text/text.h"

namespace parvex::cli {

std::string Cures::Argument(std::string_view text) const {
  const std::string_view open = isWindows_ ? "\\:._-~" : "/._-+:,";
  const bool isPlain = !text.empty() && std::ranges::all_of(text, [&](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           open.find(c) != std::string_view::npos;
  });
  if (isPlain) {
    return std::string(text);
  }
  return isWindows_ ? "\"" + std::string(text) + "\"" : "'" + ReplaceAll(text, "'", "'\\''") + "'";
}

Cure Cures::Reinstall(const std::string& why) const {
  const std::string begin = why.empty() ? "" : why + " ";
  if (look_.IsSampleMachine()) {
    return {begin + "Make the sample machine anew; its projects are made anew, too.",
            Argument(program_) + " machine create " + Argument(look_.MachineFolder())};
  }
  return {begin + "Install or repair the legacy application" +
          (isWindows_ ? "." : ", and copy its folders from there anew.")};
}

Cure Cures::MakeFolder(const std::string& folder, const std::string& what) const {
  return {what, (isWindows_ ? "mkdir " : "mkdir -p ") + Own(folder)};
}

Cure Cures::AllowWriting(const std::string& folder) const {
  return {"Give the user the right to write there.",
          isWindows_ ? "icacls " + Own(folder) + " /grant \"%USERNAME%:(OI)(CI)M\"" : "chmod u+rwx " + Own(folder)};
}

Cure Cures::RemoveFolder(const std::string& folder) const {
  return {"A folder has the name that the doctor gives a file. Remove it.", "rmdir " + Own(folder)};
}

Cure Cures::ReplaceWorkflow(const std::string& program) const {
  if (isWindows_ || look_.SubstituteWorkflow().empty()) {
    return Reinstall("Exports need a quote builder that runs here.");
  }
  return {
      "Exports need a quote builder that runs here. Put the substitute's in its place; the old file is kept as "
      "kdwfm470.exe~.",
      "install -b -m 755 " + Argument(look_.SubstituteWorkflow()) + " " + Own(program)};
}

Cure Cures::MakeRunnable(const std::string& program) const {
  return {"Make it a program.", "chmod a+x " + Own(program)};
}

Cure Cures::EndProcess(std::uint32_t processId) const {
  Cure cure = {"Wait until it has ended, or close its windows. If it hangs, end it.", ""};
  if (processId != 0) {
    cure.command = (isWindows_ ? "taskkill /F /PID " : "kill ") + std::to_string(processId);
  }
  return cure;
}

std::string Cures::ResetCommand() const { return "echo '{}' > " + Argument(look_.MachineFolder() + "/standin.json"); }

Cure Cures::LetSubstituteAnswer() const {
  return {
      "Run parvex doctor on the Windows that the files come from. To let the substitute answer for it here, say so in "
      "standin.json.",
      ResetCommand()};
}

Cure Cures::LetSubstituteBehave() const {
  return {"If standin.json tells the substitute to fail, empty it.", ResetCommand()};
}

Cure Cures::SaveRouterIds(const std::string& library) const {
  if (!isWindows_) {
    const std::string file = Argument(look_.MachineFolder() + "/router-ids.txt");
    const RouterIds substitutes = {std::string(kSubstituteRouterClass), std::string(kSubstituteRouterInterface)};
    std::string lines = AsLines(substitutes);
    lines = ReplaceAll(lines.substr(0, lines.find_last_not_of('\n') + 1), "\n", "' '");
    return {
        "Save those of the installed application: \"parvex router-ids FILE --save\", where FILE is what the same "
        "command has written on its Windows. The substitute's do for a sample.",
        "printf '%s\\n' '" + lines + "' > " + file + " && " + Argument(program_) + " --machine " +
            Argument(look_.MachineFolder()) + " router-ids " + file + " --save"};
  }
  return {
      "Save those of the installed application: \"parvex router-ids FILE --save\", where FILE is its component with "
      "the message router.",
      library.empty() ? "" : Argument(program_) + " router-ids " + Argument(library) + " --save"};
}

Cure Cures::AskTheOther(const std::string& why) const {
  const std::string other = look_.OtherProgram();
  return {why + " Ask the doctor of that bitness" + (other.empty() ? "." : ":"),
          other.empty() ? "" : Argument(other) + " doctor"};
}

}  // namespace parvex::cli
