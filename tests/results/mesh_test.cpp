// The analysis mesh: its numbering, the reconciliation of node values and the
// shape checks that decide which patterns count as good.
#include "results/mesh.h"

#include <gtest/gtest.h>

#include "results/analysisfixture.h"

namespace tessiva {
namespace {

using testing::Displacement;
using testing::DisplacementField;
using testing::GridPatterns;
using testing::ResultPattern;

DisplacementField Translation(double u, double v) {
  return [u, v](double, double) { return Displacement{u, v}; };
}

// u = G (x - 100, y - 100) with G = F - I.
DisplacementField Affine(double f11, double f12, double f21, double f22) {
  return [=](double x, double y) {
    return Displacement{(f11 - 1) * (x - 100) + f12 * (y - 100), f21 * (x - 100) + (f22 - 1) * (y - 100)};
  };
}

class MeshTest : public ::testing::Test {
 protected:
  void Picture(int32_t lima, int32_t hima, int32_t lgrid, int32_t lpatMax) {
    testing::SetPicture(s, lima, hima, lgrid, lpatMax);
  }
  void Put(const std::vector<ResultPattern>& patterns) { testing::PutPatterns(s, patterns); }

  // A block of patterns at 64, 64 with the grid step as spacing.
  void PutBlock(const DisplacementField& field, int32_t columns, int32_t rows) {
    Put(GridPatterns(field, 8 * s.Lpas, 8 * s.Lpas, columns, rows, s.Lpas, s.LpatEven));
  }

  const MeshCell& CellOf(int32_t i) const { return s.Mailles[static_cast<size_t>(NumMaille(s, s.XPat[i], s.YPat[i]))]; }
  const MeshNode& NodeOf(int32_t i, int k) const { return s.Noeuds[static_cast<size_t>(CellOf(i).Noeud[k])]; }

  std::vector<int32_t> Flags() const { return {s.FlagPat.begin() + 1, s.FlagPat.begin() + 1 + s.NbPat}; }

  AppState s;
};

// Numbered column by column; a node needs two agreeing contributions, so a
// lone pattern and a pair never count, and the corner cells of a block wait
// for the repair. A contribution off by more than the threshold is dropped
// and the others still give the field exactly.
TEST_F(MeshTest, BlocksOfPatternsBeforeAndAfterTheRepair) {
  struct Case {
    const char* what;
    int32_t columns, rows;
    double bump;  // added to Du of the centre pattern 5
    std::vector<int32_t> meshed, repaired;
  };
  const std::vector<int32_t> corners3x3{0, -1, 0, -1, -1, -1, 0, -1, 0};
  const Case cases[] = {
      {"a lone pattern", 1, 1, 0.0, {0}, {0}},
      {"two neighbours", 1, 2, 0.0, {0, 0}, {0, 0}},
      {"a full block", 4, 3, 0.0, {0, -1, 0, -1, -1, -1, -1, -1, -1, 0, -1, 0}, std::vector<int32_t>(12, -1)},
      {"an outlier in the centre", 3, 3, 5.0, corners3x3, std::vector<int32_t>(9, -1)},
  };
  const DisplacementField field = Affine(1.02, 0.01, -0.03, 0.99);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    s = AppState{};
    Picture(256, 256, 8, 8);
    PutBlock(field, c.columns, c.rows);
    if (c.bump != 0.0) s.DuPat[5] += c.bump;
    const auto expectValidNodesOnTheField = [&] {
      for (int32_t i = 1; i <= s.NbPat; ++i)
        for (int k = 0; k < 4; ++k) {
          const MeshNode& node = NodeOf(i, k);
          if (!node.Valide) continue;
          EXPECT_NEAR(node.U, field(node.X, node.Y).u, 1e-12) << i << "/" << k;
          EXPECT_NEAR(node.V, field(node.X, node.Y).v, 1e-12) << i << "/" << k;
        }
    };
    CreeMaillage(s, 0);
    EXPECT_EQ(Flags(), c.meshed);
    expectValidNodesOnTheField();
    RepareMaillage(s);
    EXPECT_EQ(Flags(), c.repaired);
    expectValidNodesOnTheField();
  }
}

TEST_F(MeshTest, TheThresholdGrowsWithLpatMaxAndShrinksWithTheGridStep) {
  struct Case {
    int32_t lpatMax, lgrid;
    double jump;  // difference of the two translations
    bool accepted;
  };
  const Case cases[] = {
      {16, 16, 1.5, true}, {16, 16, 1.7, false},  // T = 0.8
      {16, 32, 0.7, true}, {16, 32, 0.9, false},  // T = 0.4
      {32, 16, 3.1, true}, {32, 16, 3.3, false},  // T = 1.6
  };
  for (const Case& c : cases) {
    s = AppState{};
    Picture(512, 512, c.lgrid, c.lpatMax);
    const int32_t at = 8 * s.Lpas;
    Put({testing::PatternOf(Translation(0, 0), at, at, s.LpatEven),
         testing::PatternOf(Translation(c.jump, 0), at, at + s.Lpas, s.LpatEven)});
    CreeMaillage(s, 0);
    EXPECT_EQ(NodeOf(1, 1).Valide, c.accepted) << c.lpatMax << "/" << c.lgrid << " jump " << c.jump;
  }
}

// A mirrored cell is folded; the area and side limits are in units of Lpas^2.
TEST_F(MeshTest, ShapeRulesOfTheMesh) {
  struct Case {
    const char* what;
    double f11, f12, f21, f22;
    int32_t afterMesh, afterRepair;  // flag of the centre pattern of a 3 x 3 block
  };
  const Case cases[] = {
      {"undeformed", 1, 0, 0, 1, -1, -1},
      {"mirrored: every other rule passes", -1, 0, 0, 1, 0, 0},
      {"A1 + A3 at 15 Lpas^2", 3, 0, 0, 2.5, -1, 0},
      {"A1 + A3 above 15 Lpas^2", 3, 0, 0, 2.515625, 0, 0},
      {"side squared at 5 Lpas^2", 2, 0, 1, 1, -1, -1},
      {"side squared above 5 Lpas^2", 2, 0, 1.125, 1, -1, 0},
      {"side squared at 0.0625 Lpas^2", 1, 0, 0, 0.25, -1, -1},
      {"side squared below 0.04 Lpas^2", 1, 0, 0, 0.125, -1, 0},
  };
  for (const Case& c : cases) {
    s = AppState{};
    Picture(512, 512, 8, 8);
    PutBlock(Affine(c.f11, c.f12, c.f21, c.f22), 3, 3);
    CreeMaillage(s, 0);
    EXPECT_EQ(s.FlagPat[5], c.afterMesh) << c.what;
    RepareMaillage(s);
    EXPECT_EQ(s.FlagPat[5], c.afterRepair) << c.what;
  }
}

}  // namespace
}  // namespace tessiva
