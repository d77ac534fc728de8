#include "cli/host/system_look_windows.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>

#include "adapters/msxml/document_factory.h"
#include "adapters/windows/dao_databases.h"
#include "adapters/windows/this_program.h"
#include "adapters/windows/wide_text.h"
#include "cli/host/module_version_windows.h"
#include "cli/host/program_header.h"
#include "seams/file_parts.h"

namespace parvex::cli {
namespace {

using windows::Narrow;
using windows::Widen;

constexpr bool kHas64Bits = sizeof(void*) == 8;

// The part of the registry in which programs of a bitness find classes.
REGSAM ViewOf(MachineLook::Programs programs) {
  const bool sees64Bits = kHas64Bits == (programs == MachineLook::Programs::OfThisBitness);
  return sees64Bits ? KEY_WOW64_64KEY : KEY_WOW64_32KEY;
}

std::optional<std::wstring> ReadClasses(const std::wstring& key, REGSAM view) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_QUERY_VALUE | view, &opened) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::wstring text(32768, L'\0');
  DWORD size = static_cast<DWORD>((text.size() - 1) * sizeof(wchar_t));
  DWORD type = 0;
  const LSTATUS status = RegQueryValueExW(opened, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
  RegCloseKey(opened);
  if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ)) {
    return std::nullopt;
  }
  text.resize(text.find(L'\0'));
  return text;
}

std::wstring Expanded(const std::wstring& text) {
  std::wstring expanded(32768, L'\0');
  const DWORD size = ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
  expanded.resize(size > 0 && size <= expanded.size() ? size - 1 : 0);
  return expanded;
}

bool IsFile(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// The program of a command line: in quotes, or up to the first blank behind which a file ends.
std::wstring ProgramIn(const std::wstring& line) {
  if (line.starts_with(L'"')) {
    return line.substr(1, line.find(L'"', 1) - 1);
  }
  for (std::size_t blank = line.find(L' '); blank != std::wstring::npos; blank = line.find(L' ', blank + 1)) {
    if (IsFile(line.substr(0, blank))) {
      return line.substr(0, blank);
    }
  }
  return line;
}

// A name without folder is looked for where the system looks for modules.
std::wstring FullNameOf(const std::wstring& file) {
  std::wstring found(32768, L'\0');
  const DWORD size =
      SearchPathW(nullptr, file.c_str(), nullptr, static_cast<DWORD>(found.size()), found.data(), nullptr);
  found.resize(size < found.size() ? size : 0);
  return found.empty() ? file : found;
}

MachineLook::Server ServerIn(const std::wstring& file) {
  const std::wstring full = FullNameOf(file);
  return {.file = Narrow(full), .version = ModuleVersion(full), .isThere = IsFile(full)};
}

std::optional<std::wstring> ClassIdOf(std::string_view id, REGSAM view) {
  return id.starts_with('{') ? std::optional(Widen(id)) : ReadClasses(Widen(id) + L"\\CLSID", view);
}

std::wstring TextOf(REFCLSID id) {
  wchar_t text[64] = {};
  StringFromGUID2(id, text, 64);
  return text;
}

// Of a program that was made for the processor: why it cannot run on this Windows.
std::string WhyNotOn(std::uint16_t machine) {
  SYSTEM_INFO system = {};
  GetNativeSystemInfo(&system);
  const bool isIntel = system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_INTEL;
  if (machine == kWindowsX64 && isIntel) {
    return " is a 64-bit program, and this Windows has 32 bits";
  }
  const bool isKnown = machine == kWindowsX86 || machine == kWindowsX64;
  const bool isPc = isIntel || system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64;
  return !isKnown && isPc ? " is a program for another processor or an older Windows" : "";
}

class SystemLook : public MachineLook {
 public:
  explicit SystemLook(Files& files) : files_(files) {}

  Application WhoAnswers() override { return Application::Installed; }

  std::optional<Server> ServerOf(std::string_view id, Programs programs) override {
    const REGSAM view = ViewOf(programs);
    const std::optional<std::wstring> classId = ClassIdOf(id, view);
    if (!classId) {
      return std::nullopt;
    }
    const std::wstring key = L"CLSID\\" + *classId;
    if (const auto dll = ReadClasses(key + L"\\InprocServer32", view)) {
      return ServerIn(Expanded(*dll));
    }
    if (const auto line = ReadClasses(key + L"\\LocalServer32", view)) {
      return ServerIn(ProgramIn(Expanded(*line)));
    }
    return std::nullopt;
  }

  Engine XmlParser() override {
    const auto server = ServerOf(Narrow(TextOf(xml::kDomDocument30)), Programs::OfThisBitness);
    return server ? Engine{"MSXML 3", server->version, server->file} : Engine{"MSXML 3", "", ""};
  }

  Engine DatabaseEngine() override {
    for (const char* engine : windows::kDatabaseEngines) {
      const auto server = ServerOf(engine, Programs::OfThisBitness);
      if (server && server->isThere) {
        return {engine, server->version, server->file};
      }
    }
    return {"DAO", "", ""};
  }

  StartRefusal WhyNotStarted(std::string_view path) override {
    const std::string begin = ReadPart(files_, path, 0, kMostOfProgramHeader);
    const ProgramHeader header = ReadProgramHeader(begin);
    switch (header.kind) {
      case ProgramHeader::Kind::Windows:
        return {WhyNotOn(header.machine)};
      case ProgramHeader::Kind::WindowsLibrary:
        return {" is a DLL, and no program"};
      default:
        return {" is no Windows program"};
    }
  }

  std::string OtherProgram() override {
    const std::filesystem::path folder = std::filesystem::path(windows::ProgramPath()).parent_path();
    for (const wchar_t* name : {L"parvex32.exe", L"parvex64.exe", L"parvex.exe"}) {
      const std::string path = Narrow((folder / name).wstring());
      const std::string begin = files_.IsFile(path) ? ReadPart(files_, path, 0, kMostOfProgramHeader) : std::string();
      if (ReadProgramHeader(begin).machine == (kHas64Bits ? kWindowsX86 : kWindowsX64)) {
        return path;
      }
    }
    return {};
  }

  std::string OwnPath(std::string_view path) override { return std::string(path); }
  std::string MachineFolder() override { return {}; }
  bool IsSampleMachine() override { return false; }
  std::string SubstituteWorkflow() override { return {}; }

  std::vector<PrivateFolder> PrivateFolders() override {
    std::vector<PrivateFolder> folders;
    for (const wchar_t* variable : {L"USERPROFILE", L"TEMP", L"TMP"}) {
      const std::wstring name = std::wstring(L"%") + variable + L"%";
      const std::wstring path = Expanded(name);
      if (path == name || path.size() <= 3) {
        continue;
      }
      folders.push_back({Narrow(path), Narrow(name)});
      std::wstring longName(32768, L'\0');
      longName.resize(GetLongPathNameW(path.c_str(), longName.data(), static_cast<DWORD>(longName.size())));
      if (!longName.empty() && longName != path) {
        folders.push_back({Narrow(longName), Narrow(name)});
      }
    }
    std::ranges::stable_sort(folders, std::ranges::greater(), [](const PrivateFolder& one) { return one.path.size(); });
    return folders;
  }

 private:
  Files& files_;
};

}  // namespace

std::unique_ptr<MachineLook> LookAtSystem(Files& files) { return std::make_unique<SystemLook>(files); }

}  // namespace parvex::cli
