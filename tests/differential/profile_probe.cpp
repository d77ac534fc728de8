// Carries out a script of private-profile calls and prints what each gave, so that the results of two ways can be
// compared line by line: the system's functions, and ours, on Windows and natively.
//
//   profile_probe SCRIPT MACHINE          ours, on a machine folder (native build)
//   profile_probe SCRIPT system|own       the functions of Windows, or ours (build for Windows)
//
// A line of the script is a call and its fields, separated by tabs, texts as hex digits of their ANSI bytes:
//   string FILE SECTION KEY FALLBACK SIZE        prints the text
//   integer FILE SECTION KEY FALLBACK            prints the number
//   write FILE SECTION KEY VALUE                 prints 1 or 0
//   bytes FILE                                   prints the file's bytes, - when there is no file
//   replace FILE BYTES                           writes the file past the functions, as another program does; prints 1
// Everything printed is hex digits again, one line a call.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>

#include "adapters/windows/machine.h"
using PlatformMachine = parvex::windows::Machine;
#else
#include "adapters/posix/machine.h"
using PlatformMachine = parvex::posix::Machine;
#endif

namespace {

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes += static_cast<char>(std::strtol(hex.substr(i, 2).c_str(), nullptr, 16));
  }
  return bytes;
}

std::string ToHex(const std::string& bytes) {
  static const char* const kDigits = "0123456789abcdef";
  std::string hex;
  for (const unsigned char c : bytes) {
    hex += kDigits[c >> 4];
    hex += kDigits[c & 15];
  }
  return hex;
}

class Profile {
 public:
  virtual ~Profile() = default;
  virtual std::string String(const std::vector<std::string>& f) = 0;
  virtual std::string Integer(const std::vector<std::string>& f) = 0;
  virtual std::string Write(const std::vector<std::string>& f) = 0;

  std::string Bytes(const std::vector<std::string>& f) {
    std::ifstream file(HostPath(f[1]), std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "-";
  }
  std::string Replace(const std::vector<std::string>& f) {
    std::ofstream file(HostPath(f[1]), std::ios::binary);
    file << f[2];
    file.close();
    return file ? "1" : "0";
  }

 protected:
  virtual std::string HostPath(std::string path) { return path; }
};

#ifdef _WIN32
class SystemProfile : public Profile {
 public:
  std::string String(const std::vector<std::string>& f) override {
    const auto size = static_cast<DWORD>(std::stoul(f[5]));
    std::string buffer(size, '\0');
    const DWORD length =
        GetPrivateProfileStringA(f[2].c_str(), f[3].c_str(), f[4].c_str(), buffer.data(), size, f[1].c_str());
    return buffer.substr(0, length);
  }
  std::string Integer(const std::vector<std::string>& f) override {
    const auto fallback = static_cast<INT>(std::stol(f[4]));
    return std::to_string(static_cast<INT>(GetPrivateProfileIntA(f[2].c_str(), f[3].c_str(), fallback, f[1].c_str())));
  }
  std::string Write(const std::vector<std::string>& f) override {
    return WritePrivateProfileStringA(f[2].c_str(), f[3].c_str(), f[4].c_str(), f[1].c_str()) ? "1" : "0";
  }
};
#endif

class OwnProfile : public Profile {
 public:
  explicit OwnProfile([[maybe_unused]] const char* folder)
#ifndef _WIN32
      : folder_(folder),
        machine_(folder)
#endif
  {
  }

  std::string String(const std::vector<std::string>& f) override {
    return Ansi(At(f).ReadString(Text(f[3]), Text(f[4]), std::stoul(f[5])));
  }
  std::string Integer(const std::vector<std::string>& f) override {
    return std::to_string(At(f).ReadInteger(Text(f[3]), static_cast<std::int32_t>(std::stol(f[4]))));
  }
  std::string Write(const std::vector<std::string>& f) override {
    return At(f).WriteString(Text(f[3]), Text(f[4])) ? "1" : "0";
  }

 protected:
#ifndef _WIN32
  std::string HostPath(std::string path) override {
    std::replace(path.begin(), path.end(), '\\', '/');
    return folder_ + "/drive_c" + path.substr(2);
  }
#endif

 private:
  parvex::ProfileSection& At(const std::vector<std::string>& f) {
    section_ = machine_.GetPrivateProfile().Section(Text(f[2]), Text(f[1]));
    return *section_;
  }
  std::string Text(const std::string& bytes) { return machine_.GetCodePage().FromAnsi(bytes); }
  std::string Ansi(const std::string& text) { return machine_.GetCodePage().ToAnsi(text); }

#ifndef _WIN32
  std::string folder_;
#endif
  PlatformMachine machine_;
  std::unique_ptr<parvex::ProfileSection> section_;
};

std::unique_ptr<Profile> ProfileOf(const char* which) {
#ifdef _WIN32
  if (std::string(which) == "system") {
    return std::make_unique<SystemProfile>();
  }
#endif
  return std::make_unique<OwnProfile>(which);
}

std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields;
  std::size_t from = 0;
  for (std::size_t tab = line.find('\t'); tab != std::string::npos; tab = line.find('\t', from)) {
    fields.push_back(line.substr(from, tab - from));
    from = tab + 1;
  }
  fields.push_back(line.substr(from));
  return fields;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: profile_probe SCRIPT MACHINE|system|own\n");
    return 2;
  }
  std::ifstream script(argv[1], std::ios::binary);
  const std::unique_ptr<Profile> profile = ProfileOf(argv[2]);
  std::string line;
  while (std::getline(script, line)) {
    std::vector<std::string> fields = Fields(line);
    const std::size_t texts = fields[0] == "string" || fields[0] == "integer" ? fields.size() - 1 : fields.size();
    for (std::size_t i = 1; i < texts; ++i) {
      fields[i] = FromHex(fields[i]);
    }
    std::string result;
    if (fields[0] == "string") {
      result = profile->String(fields);
    } else if (fields[0] == "integer") {
      result = profile->Integer(fields);
    } else if (fields[0] == "write") {
      result = profile->Write(fields);
    } else if (fields[0] == "bytes") {
      result = profile->Bytes(fields);
    } else if (fields[0] == "replace") {
      result = profile->Replace(fields);
    } else {
      std::fprintf(stderr, "unknown call: %s\n", line.c_str());
      return 2;
    }
    std::printf("%s\n", ToHex(result).c_str());
  }
  return 0;
}
