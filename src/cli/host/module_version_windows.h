#pragma once

#include <string>

namespace parvex::cli {

/// The version in a program's or DLL's resources: "8.110.19041.1"; empty where there is none.
std::string ModuleVersion(const std::wstring& path);

}  // namespace parvex::cli
