#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/host/machine_look.h"
#include "seams/automation_error.h"

namespace parvex::cli {

/// What is told about a machine, in pieces that say which of it may be told to others.
class Told {
 public:
  Told() = default;
  /// Words of this program.
  Told(const char* words) : Told(Kind::Words, words) {}  // NOLINT: literals join by +
  static Told Words(std::string words) { return Told(Kind::Words, std::move(words)); }
  /// A path, whose folders may have names of people, projects and customers.
  static Told Path(std::string path) { return Told(Kind::Path, std::move(path)); }
  /// What others have written; `shared` is said in its place to others.
  static Told Foreign(std::string text, std::string shared);

  /// Whole, for the user.
  std::string Full() const;
  /// For others: without what others have written, and with paths as SharedPath has them.
  std::string Shared(const std::vector<MachineLook::PrivateFolder>& folders) const;

  friend Told operator+(Told left, const Told& right);

 private:
  enum class Kind { Words, Path, Foreign };
  struct Piece {
    Kind kind;
    std::string text;
    std::string shared;
  };
  Told(Kind kind, std::string text) : pieces_{{kind, std::move(text), {}}} {}
  std::vector<Piece> pieces_;
};

/// What an error says; of one that somebody else may have worded, others are told the number.
Told ToldOf(const AutomationError& error);

/// A path as others may see it: a private folder by its name, and in place of each other name "...", but those that
/// every installation has, and names of programs and DLLs.
std::string SharedPath(std::string_view path, const std::vector<MachineLook::PrivateFolder>& folders);

}  // namespace parvex::cli
