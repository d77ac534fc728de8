#include "seams/lock_holder.h"

#include <charconv>
#include <system_error>

namespace parvex {
namespace {

constexpr char kWithUser = 'u';
constexpr char kAlone = 'a';

}  // namespace

std::string TextOfHolder(const MachineLocks::Holder& holder) {
  return std::string(1, holder.waitsForUser ? kWithUser : kAlone) + " " + std::to_string(holder.processId) + " " +
         holder.program;
}

MachineLocks::Holder HolderIn(std::string_view text) {
  MachineLocks::Holder holder;
  if (text.size() < 2) {
    return holder;
  }
  holder.waitsForUser = text[0] == kWithUser;
  const auto [end, failed] = std::from_chars(text.data() + 2, text.data() + text.size(), holder.processId);
  if (failed == std::errc{} && end != text.data() + text.size()) {
    holder.program.assign(end + 1, text.data() + text.size());
  }
  return holder;
}

}  // namespace parvex
