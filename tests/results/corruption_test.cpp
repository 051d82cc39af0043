// Damaged result files (truncated blocks, stray bytes, absurd or garbage
// numbers, missing sections, far too many patterns) read as the next member
// of a sequence: the reader never crashes or hangs, a refused file leaves the
// result on show untouched, and an accepted one leaves a consistent result.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "results/analysisfixture.h"
#include "results/mesh.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;
using testing::GridPatterns;
using testing::ResultHead;

constexpr unsigned kSeed = 20240611;
constexpr int kCases = 300;

class Corrupter {
 public:
  explicit Corrupter(unsigned seed) : rng_(seed) {}

  std::string Damage(std::string text) {
    for (int n = Pick(1, 3); n > 0 && !text.empty(); --n) {
      switch (Pick(0, 5)) {
        case 0: text.resize(static_cast<size_t>(Pick(0, static_cast<int>(text.size())))); break;
        case 1: ScrambleBytes(text); break;
        case 2: ReplaceNumber(text); break;
        case 3: DropSection(text); break;
        case 4: RepeatBlock(text); break;
        default: DropLine(text); break;
      }
    }
    return text;
  }

 private:
  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng_); }
  size_t PickIn(const std::string& text) { return static_cast<size_t>(Pick(0, static_cast<int>(text.size()) - 1)); }

  void ScrambleBytes(std::string& text) {
    static const char kTelling[] = {'\0', '\r', '\n', '[', ' ', ',', '-', '.', 'E', '\xff'};
    for (int n = Pick(1, 8); n > 0; --n)
      text[PickIn(text)] = Pick(0, 1) ? kTelling[Pick(0, 9)] : static_cast<char>(Pick(0, 255));
  }

  void ReplaceNumber(std::string& text) {
    static const char* const kNumbers[] = {"99999999999999", "2147483647", "-2147483648", "1e308", "nan",
                                           "inf",            "-0",         "0,5.5",       "1E999", "-1e-320"};
    std::vector<std::pair<size_t, size_t>> runs;
    for (size_t i = 0; i < text.size();) {
      if (!std::isdigit(static_cast<unsigned char>(text[i]))) {
        ++i;
        continue;
      }
      const size_t start = i;
      while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i;
      runs.emplace_back(start, i - start);
    }
    if (runs.empty()) return;
    const auto [start, length] = runs[static_cast<size_t>(Pick(0, static_cast<int>(runs.size()) - 1))];
    text.replace(start, length, kNumbers[Pick(0, 9)]);
  }

  void DropSection(std::string& text) {
    std::vector<size_t> starts;
    for (size_t i = 0; i < text.size(); ++i)
      if (text[i] == '[' && (i == 0 || text[i - 1] == '\n')) starts.push_back(i);
    if (starts.empty()) return;
    const size_t which = static_cast<size_t>(Pick(0, static_cast<int>(starts.size()) - 1));
    const size_t end = which + 1 < starts.size() ? starts[which + 1] : text.size();
    text.erase(starts[which], end - starts[which]);
  }

  // Far more patterns than any grid of the picture holds.
  void RepeatBlock(std::string& text) {
    const size_t block = text.find("[RESULTS]\n");
    if (block == std::string::npos) return;
    const std::string body = text.substr(block + 10);
    for (int n = Pick(1, 3); n > 0; --n) text += body;
  }

  void DropLine(std::string& text) {
    const size_t at = text.rfind('\n', PickIn(text));
    const size_t from = at == std::string::npos ? 0 : at + 1;
    const size_t to = text.find('\n', from);
    text.erase(from, to == std::string::npos ? std::string::npos : to - from + 1);
  }

  std::mt19937 rng_;
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
  Corrupter corrupter(kSeed);
  int refused = 0;
  for (int n = 0; n < kCases; ++n) {
    SCOPED_TRACE("case " + std::to_string(n));
    const std::string damaged = corrupter.Damage(good);
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
