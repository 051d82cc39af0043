// Damaged result files (truncated blocks, stray bytes, absurd or garbage
// numbers, missing sections, far too many patterns) read as the next member
// of a sequence: the reader never crashes or hangs, a refused file leaves the
// result on show untouched, and an accepted one leaves a consistent result.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

#include "results/analysisfixture.h"
#include "results/mesh.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;
using testing::GridPatterns;
using testing::ResultHead;
using Rng = std::mt19937;

constexpr int kCases = 300;
constexpr size_t npos = std::string::npos;

int Pick(Rng& r, int low, int high) { return std::uniform_int_distribution<int>(low, high)(r); }
size_t PlaceIn(const std::string& t, Rng& r) { return static_cast<size_t>(Pick(r, 0, static_cast<int>(t.size()) - 1)); }

// Each damage is given a text that isn't empty.
const std::function<void(std::string&, Rng&)> kDamages[] = {
    [](std::string& t, Rng& r) { t.resize(static_cast<size_t>(Pick(r, 0, static_cast<int>(t.size())))); },
    [](std::string& t, Rng& r) {  // bytes overwritten, half of them with ones the number syntax gives a meaning
      static const char kTelling[] = {'\0', '\r', '\n', '[', ' ', ',', '-', '.', 'E', '\xff'};
      for (int n = Pick(r, 1, 8); n > 0; --n)
        t[PlaceIn(t, r)] = Pick(r, 0, 1) ? kTelling[Pick(r, 0, 9)] : static_cast<char>(Pick(r, 0, 255));
    },
    [](std::string& t, Rng& r) {  // the number at or after a random place made absurd or garbage
      static const char* const kNumbers[] = {"99999999999999", "2147483647", "-2147483648", "1e308", "nan",
                                             "inf",            "-0",         "0,5.5",       "1E999", "-1e-320"};
      const size_t at = t.find_first_of("0123456789", PlaceIn(t, r));
      if (at != npos)
        t.replace(at, std::min(t.find_first_not_of("0123456789", at), t.size()) - at, kNumbers[Pick(r, 0, 9)]);
    },
    [](std::string& t, Rng& r) {  // one whole section dropped
      std::vector<size_t> starts;
      for (size_t i = 0; i < t.size(); ++i)
        if (t[i] == '[' && (i == 0 || t[i - 1] == '\n')) starts.push_back(i);
      if (starts.empty()) return;
      const auto k = static_cast<size_t>(Pick(r, 0, static_cast<int>(starts.size()) - 1));
      t.erase(starts[k], (k + 1 < starts.size() ? starts[k + 1] : t.size()) - starts[k]);
    },
    [](std::string& t, Rng& r) {  // the block repeated: far more patterns than any grid of the picture holds
      const size_t block = t.find("[RESULTS]\n");
      if (block == npos) return;
      const std::string body = t.substr(block + 10);
      for (int n = Pick(r, 1, 3); n > 0; --n) t += body;
    },
    [](std::string& t, Rng& r) {  // one line dropped
      const size_t at = t.rfind('\n', PlaceIn(t, r)), from = at == npos ? 0 : at + 1, to = t.find('\n', from);
      t.erase(from, to == npos ? npos : to - from + 1);
    },
};

class ResultCorruption : public AnalysisFixture {
 protected:
  static ResultHead Head() {
    ResultHead head;
    head.lima = 128;
    head.hima = 128;
    head.moreSections = "[UNIT]\n  UnitNameX=mm\n  UnitPX=0,1\n[MATERIAL]\n  YOUNG=70000\n";
    return head;
  }

  // What an accepted file must leave: flags of the three kinds, every good
  // pattern in a cell of four valid nodes with finite values, arrays as sized
  // by the first file.
  void ExpectConsistent(const AppState& before) {
    ASSERT_GE(s.NbPat, 1);
    ASSERT_LE(s.NbPat, s.NbPatMax);
    EXPECT_EQ(s.NbPatMax, before.NbPatMax);
    EXPECT_LE(s.NbPatBad, s.NbPat);
    for (int32_t i = 1; i <= s.NbPat; ++i) {
      ASSERT_TRUE(s.FlagPat[i] == -1 || s.FlagPat[i] == 0 || s.FlagPat[i] == 1) << s.FlagPat[i];
      if (s.FlagPat[i] != -1) continue;
      const int32_t cell = NumMaille(s, s.XPat[i], s.YPat[i]);
      ASSERT_NE(cell, 0);
      for (int32_t n : s.Mailles[static_cast<size_t>(cell)].Noeud) {
        const MeshNode& node = s.Noeuds[static_cast<size_t>(n)];
        ASSERT_TRUE(node.Valide);
        for (double v : {node.U, node.V, node.E11, node.E22, node.E12, node.H1, node.H2, node.Teta, node.Psi,
                         node.Gamma})
          ASSERT_TRUE(std::isfinite(v)) << "pattern " << i;
      }
    }
  }
};

TEST_F(ResultCorruption, DamagedFilesNeverBreakTheResultOnShow) {
  const auto first = [](double x, double y) { return Displacement{0.01 * x, 0.5 - 0.01 * y}; };
  const auto second = [](double x, double y) { return Displacement{1 + 0.02 * y, -0.01 * x}; };
  ASSERT_TRUE(ReadResult(Head(), GridPatterns(first, 24, 24, 12, 12, 8, 8)));
  const std::string good = ResultFileText(Head(), GridPatterns(second, 24, 24, 12, 12, 8, 8));
  Rng rng(20240611);
  int refused = 0;
  for (int n = 0; n < kCases; ++n) {
    SCOPED_TRACE("case " + std::to_string(n));
    std::string damaged = good;
    for (int k = Pick(rng, 1, 3); k > 0 && !damaged.empty(); --k) kDamages[Pick(rng, 0, 5)](damaged, rng);
    const AppState before = s;
    ui.log.clear();
    if (ReadText(damaged, 2)) {
      ExpectConsistent(before);
      continue;
    }
    ++refused;
    EXPECT_EQ(ui.Messages().size(), 1u);
    EXPECT_EQ(s.NbPat, before.NbPat);
    EXPECT_EQ(s.FlagPat, before.FlagPat);
    EXPECT_EQ(s.XPat, before.XPat);
    EXPECT_EQ(s.DuPat, before.DuPat);
    EXPECT_EQ(s.TexteLignes, before.TexteLignes);
  }
  // Both outcomes were met, so both sets of checks ran.
  EXPECT_GT(refused, kCases / 10);
  EXPECT_LT(refused, kCases - kCases / 10);
}

}  // namespace
}  // namespace tessiva
