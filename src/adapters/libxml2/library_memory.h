#pragma once

// libxml2 asks for memory in places that do not look whether they got any: a refusal there ends the process, or leaves
// out a part without a word. So its smaller requests are not refused: what the system does not give comes from a
// reserve, the call ends in peace, and its caller is told afterwards.

namespace parvex::xml {

/// Stands around a call into the library. The first one of a process takes the library's allocations over from whoever
/// had them; they go on to be made there.
class LibraryMemory {
 public:
  LibraryMemory() noexcept;
  /// Throws std::bad_alloc when the library wanted memory in this thread since the construction that the system
  /// refused. What it made then may be incomplete, but can be freed.
  void Check() const;

 private:
  unsigned long refusedBefore_;
};

}  // namespace parvex::xml
