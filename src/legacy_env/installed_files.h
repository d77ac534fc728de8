#pragma once

#include <string_view>

namespace parvex {

// Names of the files and folders of the legacy application that this system reads and writes. Its installation fixes
// them; who looks for one, or checks that it is there, takes the name from here.

// In the program folder.
inline constexpr std::string_view kWorkflowProgram = "kdwfm470.exe";
inline constexpr std::string_view kUiKeysFile = "UIKeys.txt";
inline constexpr std::string_view kOptionsFile = "Options.xml";
inline constexpr std::string_view kToolsFile = "Tools.xml";
inline constexpr std::string_view kTagUpdateInfoFile = "TagUpdateInfo.xml";
inline constexpr std::string_view kCustomReportsFile = "KDCustomRpt_Cfg.xml";

// In the data root.
inline constexpr std::string_view kTemporaryFolder = "Temp";
inline constexpr std::string_view kProjectsFolder = "Projects";
inline constexpr std::string_view kArchivesFolder = "Archives";

/// In a project's folder.
inline constexpr std::string_view kProjectDatabase = "project.mdb";

}  // namespace parvex
