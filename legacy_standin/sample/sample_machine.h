#pragma once

#include <filesystem>

namespace parvex::standin {

/// Makes a machine folder with the substitute legacy application and one project in it: registry.reg, drive_c/ and
/// commands/ (command documents to send). `workflowProgram` is the built workflow program; it is copied into the
/// machine's program folder as kdwfm470.exe.
///
/// A folder that holds something is refused with an AutomationError (75), unless it is a machine that this function
/// made: what it made is then made anew, other files lying beside it stay. A workflow program that is no file is
/// refused (53) before anything is touched.
void CreateSampleMachine(const std::filesystem::path& folder, const std::filesystem::path& workflowProgram);

/// Whether a folder is a machine that this function made.
bool IsSampleMachine(const std::filesystem::path& folder);

/// The project of the sample machine.
inline constexpr const char* kSampleProject = "Riverside Clinic";

}  // namespace parvex::standin
