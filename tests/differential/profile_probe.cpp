// Carries out a script of private-profile calls and prints what each gave, so that the results of two platforms can be
// compared line by line. Built twice: with the functions of Windows (for the cross compiler), and with the native
// adapter.
//
//   profile_probe SCRIPT [MACHINE]        MACHINE: the machine folder, native build only
//
// A line of the script is a call and its fields, separated by tabs, texts as hex digits of their ANSI bytes:
//   string FILE SECTION KEY FALLBACK SIZE        prints the text
//   integer FILE SECTION KEY FALLBACK            prints the number
//   write FILE SECTION KEY VALUE                 prints 1 or 0
//   bytes FILE                                   prints the file's bytes, - when there is no file
// Everything printed is hex digits again, one line a call.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include "adapters/posix/machine.h"
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

#ifdef _WIN32

class Profile {
 public:
  explicit Profile(const char*) {}

  std::string String(const std::vector<std::string>& f) {
    const auto size = static_cast<DWORD>(std::stoul(f[5]));
    std::string buffer(size, '\0');
    const DWORD length =
        GetPrivateProfileStringA(f[2].c_str(), f[3].c_str(), f[4].c_str(), buffer.data(), size, f[1].c_str());
    return buffer.substr(0, length);
  }

  std::string Integer(const std::vector<std::string>& f) {
    const auto fallback = static_cast<INT>(std::stol(f[4]));
    return std::to_string(static_cast<INT>(GetPrivateProfileIntA(f[2].c_str(), f[3].c_str(), fallback, f[1].c_str())));
  }

  std::string Write(const std::vector<std::string>& f) {
    return WritePrivateProfileStringA(f[2].c_str(), f[3].c_str(), f[4].c_str(), f[1].c_str()) ? "1" : "0";
  }

  std::string Bytes(const std::vector<std::string>& f) {
    std::ifstream file(f[1], std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "-";
  }
};

#else

class Profile {
 public:
  explicit Profile(const char* folder) : machine_(folder) {}

  std::string String(const std::vector<std::string>& f) {
    return Ansi(At(f).ReadString(Text(f[3]), Text(f[4]), std::stoul(f[5])));
  }
  std::string Integer(const std::vector<std::string>& f) {
    return std::to_string(At(f).ReadInteger(Text(f[3]), static_cast<std::int32_t>(std::stol(f[4]))));
  }
  std::string Write(const std::vector<std::string>& f) { return At(f).WriteString(Text(f[3]), Text(f[4])) ? "1" : "0"; }
  std::string Bytes(const std::vector<std::string>& f) {
    const std::string file = Text(f[1]);
    return machine_.GetFiles().IsFile(file) ? machine_.GetFiles().ReadAll(file) : "-";
  }

 private:
  parvex::ProfileSection& At(const std::vector<std::string>& f) {
    section_ = machine_.GetPrivateProfile().Section(Text(f[2]), Text(f[1]));
    return *section_;
  }
  std::string Text(const std::string& bytes) { return machine_.GetCodePage().FromAnsi(bytes); }
  std::string Ansi(const std::string& text) { return machine_.GetCodePage().ToAnsi(text); }

  parvex::posix::Machine machine_;
  std::unique_ptr<parvex::ProfileSection> section_;
};

#endif

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
  if (argc < 2) {
    std::fprintf(stderr, "usage: profile_probe SCRIPT [MACHINE]\n");
    return 2;
  }
  std::ifstream script(argv[1], std::ios::binary);
  Profile profile(argc > 2 ? argv[2] : "");
  std::string line;
  while (std::getline(script, line)) {
    std::vector<std::string> fields = Fields(line);
    const std::size_t texts = fields[0] == "string" || fields[0] == "integer" ? fields.size() - 1 : fields.size();
    for (std::size_t i = 1; i < texts; ++i) {
      fields[i] = FromHex(fields[i]);
    }
    std::string result;
    if (fields[0] == "string") {
      result = profile.String(fields);
    } else if (fields[0] == "integer") {
      result = profile.Integer(fields);
    } else if (fields[0] == "write") {
      result = profile.Write(fields);
    } else if (fields[0] == "bytes") {
      result = profile.Bytes(fields);
    } else {
      std::fprintf(stderr, "unknown call: %s\n", line.c_str());
      return 2;
    }
    std::printf("%s\n", ToHex(result).c_str());
  }
  return 0;
}
