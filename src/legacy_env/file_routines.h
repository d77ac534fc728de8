#pragma once

#include <string>
#include <string_view>

#include "seams/platform.h"

namespace parvex {

/// Whether a directory listing of the path gives the name of a normal file; so a path may hold wildcards, and a
/// folder's path with a final backslash counts when the folder holds a file. False for an empty path.
bool FileExists(const Platform& platform, std::string_view path);

/// Reads the whole file into `bytes`. An empty path, a file that is missing, empty or unreadable leave them as they
/// are.
void ReadFileBytes(const Platform& platform, std::string_view path, std::string& bytes);

/// The file's bytes as Base64 text, empty for a file that is missing or empty. A file below a folder of the name
/// "Temp" (letter case counts) is deleted once it is read: files in a temporary folder are consumed by being encoded.
std::string EncodeFileBase64(const Platform& platform, std::string_view path);
/// The same for a file that has been read already: `bytes` is what it holds.
std::string EncodeFileBase64(const Platform& platform, std::string_view path, std::string_view bytes);

/// A path that came from outside is a device's, a pipe's or a stream's: it is never opened, and the call ends with an
/// error (75) that names it.
void RefuseDevicePath(std::string_view path);

/// Where a report names a file: one with a backslash in it as it stands; one with ".rtf" in it in the folder GSpec
/// beside the last component of `folder`; any other in `folder`.
std::string ResolveReportFile(std::string_view fileName, std::string_view folder);

}  // namespace parvex
