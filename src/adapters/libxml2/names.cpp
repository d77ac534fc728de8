#include "adapters/libxml2/names.h"

#include <array>
#include <cstddef>
#include <utility>

#include "adapters/libxml2/document_state.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {
namespace {

// A dictionary never forgets a name, so one that has seen this many gives way to a fresh one.
constexpr int kMostNames = 50'000;
constexpr std::size_t kMostNameBytes = 8u << 20;

// The dictionary for the names of a thread's documents, and names lately found in it.
class Names {
 public:
  Names() = default;
  ~Names() { xmlDictFree(dictionary_); }
  Names(const Names&) = delete;
  Names& operator=(const Names&) = delete;

  xmlDict* Dictionary() {
    if (dictionary_ != nullptr &&
        (xmlDictSize(dictionary_) > kMostNames || xmlDictGetUsage(dictionary_) > kMostNameBytes)) {
      xmlDictFree(std::exchange(dictionary_, nullptr));
      known_ = {};
    }
    if (dictionary_ == nullptr) {
      dictionary_ = Made(xmlDictCreate());
    }
    return dictionary_;
  }

  const xmlChar* FindPlain(xmlDict* dictionary, std::string_view name) {
    if (name.empty() || dictionary != dictionary_) {
      return LookUpPlain(dictionary, name);
    }
    std::string_view& known = known_[PlaceOf(name)];
    if (known != name) {
      const xmlChar* found = LookUpPlain(dictionary, name);
      if (found == nullptr) {
        return nullptr;
      }
      known = View(found);
    }
    return reinterpret_cast<const xmlChar*>(known.data());
  }

 private:
  static const xmlChar* LookUpPlain(xmlDict* dictionary, std::string_view name) {
    return IsPlainName(name) ? Made(xmlDictLookup(dictionary, Chars(name.data()), static_cast<int>(name.size())))
                             : nullptr;
  }

  std::size_t PlaceOf(std::string_view name) const {
    const auto at = [&](std::size_t pos) { return static_cast<std::size_t>(static_cast<unsigned char>(name[pos])); };
    return (name.size() * 37 + at(0) * 3 + at(name.size() / 2) * 11 + at(name.size() - 1) * 7) % known_.size();
  }

  xmlDict* dictionary_ = nullptr;
  std::array<std::string_view, 256> known_{};
};

thread_local Names names;

}  // namespace

xmlDict* SharedNames() { return names.Dictionary(); }

const xmlChar* PlainName(xmlDoc* document, std::string_view name) { return names.FindPlain(document->dict, name); }

}  // namespace parvex::xml
