// Area side files: the same text read as a set of areas of interest
// (-aoi.ini) and as a set of areas of selection (-AOS.ini). What is read fits
// the stores, keeps its counts when written and read back, and its written
// text then settles.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "formats/sections.h"
#include "formats/sidefiles.h"
#include "fuzz/fuzzcheck.h"
#include "state/keyfile.h"

using namespace tessiva;

namespace {

void CheckAoi(const KeyFile& keys) {
  const Parsed<AoiSet> set = ParseAoi(keys);
  if (!set) {
    FUZZ_CHECK(!set.Error().message.empty(), "a refusal without a reason");
    return;
  }
  fuzz::CheckAreaContent(*set);
  AppState s;
  ApplyOutlines(set->outlines, s);
  ApplyStartPoints(set->startPoints, s);
  fuzz::CheckAreaStores(s);

  if (fuzz::HoldsNegativeGaugeTag(*set)) return;
  fuzz::CheckRoundTrip(
      *set, [](const AoiSet& c) { return AoiText(c); },
      [](const std::string& text) { return ParseAoi(KeyFile::Parse(text)); }, fuzz::AreaCounts);
}

void CheckAos(const KeyFile& keys) {
  const Parsed<AosSet> set = ParseAos(keys);
  if (!set) {
    FUZZ_CHECK(!set.Error().message.empty(), "a refusal without a reason");
    return;
  }
  const SelectionArea& selection = set->selection;
  FUZZ_CHECK(selection.NboxAOS >= -1 && selection.NboxAOS <= AppState::kMaxVertices,
             "NboxAOS " + fuzz::Num(selection.NboxAOS));
  FUZZ_CHECK(selection.XAOS.size() == selection.YAOS.size() &&
                 selection.XAOS.size() > static_cast<size_t>(std::max(selection.NboxAOS, 0)),
             fuzz::Num(static_cast<double>(selection.XAOS.size())) + " vertex slots for NboxAOS " +
                 fuzz::Num(selection.NboxAOS));
  FUZZ_CHECK(set->gages.Count() <= kMaxGages, fuzz::Num(set->gages.Count()) + " gauges");

  fuzz::CheckRoundTrip(
      *set, [](const AosSet& c) { return AosText(c); },
      [](const std::string& text) { return ParseAos(KeyFile::Parse(text)); },
      [](const AosSet& c) {
        return "vertices " + std::to_string(std::max(c.selection.NboxAOS, 0)) + ", gauges " +
               std::to_string(c.gages.Count());
      });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const KeyFile keys = KeyFile::Parse(std::string_view(reinterpret_cast<const char*>(data), size));
  CheckAoi(keys);
  CheckAos(keys);
  return 0;
}
