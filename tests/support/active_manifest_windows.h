#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "adapters/windows/wide_text.h"

namespace parvex::test {

/// While it lives, this thread finds the classes that a manifest offers, without any registration.
class ActiveManifest {
 public:
  explicit ActiveManifest(const std::wstring& manifest) {
    ACTCTXW description = {};
    description.cbSize = sizeof description;
    description.lpSource = manifest.c_str();
    context_ = CreateActCtxW(&description);
    EXPECT_NE(context_, INVALID_HANDLE_VALUE) << "no manifest " << windows::Narrow(manifest);
    EXPECT_TRUE(ActivateActCtx(context_, &cookie_)) << GetLastError();
  }
  ~ActiveManifest() {
    DeactivateActCtx(0, cookie_);
    ReleaseActCtx(context_);
  }
  ActiveManifest(const ActiveManifest&) = delete;
  ActiveManifest& operator=(const ActiveManifest&) = delete;

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
};

}  // namespace parvex::test
