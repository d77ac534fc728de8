#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "formats/zip/zip_reader.h"
#include "formats/zip/zip_writer.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {

inline constexpr const char* kBlob = "C:\\data\\tag.dat";

/// Reads archives from memory.
class Packing : public testing::Test {
 protected:
  test::FakeMachine machine_;

  std::vector<PackedEntry> UnpackBytes(const std::string& archive) {
    // A buffer of exactly the archive's size, so that the sanitizers see a read beyond it.
    const std::vector<char> exact(archive.begin(), archive.end());
    return Unpack(*machine_.platform.codePage, std::string_view(exact.data(), exact.size()), kBlob);
  }

  // The description of the error that refuses an archive; a test fails when it is accepted.
  std::string RefusalOf(const std::string& archive) {
    try {
      UnpackBytes(archive);
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.RuntimeNumber(), static_cast<std::uint16_t>(RuntimeError::InvalidCall));
      EXPECT_THAT(error.Description(), testing::HasSubstr(kBlob));
      return error.Description();
    }
    ADD_FAILURE() << "accepted";
    return "accepted";
  }
};

/// An archive of empty entries.
inline std::string ArchiveOf(const std::vector<std::string>& names) {
  ZipWriter writer;
  for (const std::string& name : names) {
    writer.Add(name, "", false);
  }
  return writer.Finish();
}

}  // namespace parvex::test
