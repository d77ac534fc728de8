#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace parvex::recording {

// How a recorded call, a case, is laid out (docs/case-format.md). A finished case is an archive. One that is being
// recorded, or whose host died, is a folder that holds the small members as files, and all that is to stay in the
// archive in an archive without a directory.

inline constexpr int kFormat = 1;

/// Larger ones are not read; files are kept up to somewhat less.
inline constexpr std::uint64_t kLargestCase = std::uint64_t{1} << 30;
inline constexpr std::uint64_t kLargestFiles = kLargestCase / 8 * 7;

inline constexpr std::string_view kSuffix = ".pvxcase";
inline constexpr std::string_view kUnfinishedSuffix = ".pvxcase.part";

inline constexpr std::string_view kFacts = "case.json";
inline constexpr std::string_view kCommand = "command.xml";
inline constexpr std::string_view kReply = "reply.xml";
inline constexpr std::string_view kJournal = "journal.jsonl";
/// The machine as it was before the call, and files as they were left during it.
inline constexpr std::string_view kMachine = "machine/";
inline constexpr std::string_view kAfter = "after/";
/// Of a folder only: the archive without a directory.
inline constexpr std::string_view kFiles = "files.zip";

/// YYYYMMDD-hhmmss-PID-N-COMMAND. Of the command letters, digits, "-" and "_" are kept, at most 40; "unknown" when none
/// is.
std::string CaseName(std::string_view localTime, std::uint32_t processId, std::uint64_t number,
                     std::string_view command);

/// Where a file of the machine stands in a machine folder: "drive_c/Korvane/a.ini" for "C:\Korvane\a.ini"; a path
/// without a drive begins at C:\, one of a network at "unc/". Nothing for a path that no archive can hold.
std::optional<std::string> MemberOf(std::string_view path);

/// "after/7/", what was left at a step of the journal.
std::string AfterStep(std::uint64_t step);

}  // namespace parvex::recording
