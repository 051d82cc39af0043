// Data files (.don): any text is either refused with a reason or read into
// content that fits the stores, keeps its counts when written and read back,
// and whose written text then settles.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "formats/datafile.h"
#include "formats/sections.h"
#include "fuzz/fuzzcheck.h"

using namespace tessiva;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const Parsed<DataFileContent> parsed = ParseDataFile(text);
  if (!parsed) {
    FUZZ_CHECK(!parsed.Error().message.empty(), "a refusal without a reason");
    return 0;
  }
  const DataFileContent& content = *parsed;
  fuzz::CheckAreaContent(content.areas);
  // A data file reads every vertex its slot states, unless the slot is a gauge's.
  for (const AreaSlot& slot : content.areas.outlines.slots)
    FUZZ_CHECK(slot.skipped || slot.vertices.size() == static_cast<size_t>(slot.nbox),
               fuzz::Num(static_cast<double>(slot.vertices.size())) + " vertices of " + fuzz::Num(slot.nbox));

  AppState s;
  ApplyOutlines(content.areas.outlines, s);
  ApplyStartPoints(content.areas.startPoints, s);
  fuzz::CheckAreaStores(s);

  if (fuzz::HoldsNegativeGaugeTag(content.areas)) return 0;
  fuzz::CheckRoundTrip(
      content, [](const DataFileContent& c) { return DataFileText(c); },
      [](const std::string& written) { return ParseDataFile(written); },
      [](const DataFileContent& c) { return fuzz::AreaCounts(c.areas); });
  return 0;
}
