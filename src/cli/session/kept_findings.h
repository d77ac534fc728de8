#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "protocol/legacy_requests.h"
#include "seams/notes.h"

namespace parvex::cli {

/// Keeps what a run was found to lack and which answers of the router were no documents, and hands everything on to the
/// notes of the machine, which may be null.
class KeptFindings : public Notes {
 public:
  explicit KeptFindings(Notes* outside) : outside_(outside) {}

  void Take(std::string_view about, std::string_view text) override {
    if (about == kRouterNotes) {
      answers_.emplace_back(text);
    }
    if (outside_ != nullptr) {
      outside_->Take(about, text);
    }
  }
  void Find(std::string_view text) override {
    texts_.emplace_back(text);
    if (outside_ != nullptr) {
      outside_->Find(text);
    }
  }

  const std::vector<std::string>& Texts() const { return texts_; }
  /// What is the matter with the router's answers since the last call of this.
  std::vector<std::string> TakeAnswers() { return std::exchange(answers_, {}); }

 private:
  Notes* outside_;
  std::vector<std::string> answers_;
  std::vector<std::string> texts_;
};

}  // namespace parvex::cli
