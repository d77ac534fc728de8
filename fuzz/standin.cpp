#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "legacy_standin/installation/standin_settings.h"
#include "legacy_standin/projects/units.h"

// The JSON files of the substitute. The input: which file it is, and its text.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  const bool isUnits = input.TakeByte() % 2 == 0;
  const std::string_view text = input.TakeRest();
  fuzz::MayBeRefused([&] {
    if (!isUnits) {
      standin::ParseStandinSettings(text, "standin.json");
      return;
    }
    const std::vector<standin::Unit> units = standin::ParseUnits(text, "units.json");
    fuzz::Require(standin::ParseUnits(standin::FormatUnits(units), "units.json") == units,
                  "units that were written read back alike");
  });
  return 0;
}
