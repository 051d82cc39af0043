// The analysis mesh: its numbering, the reconciliation of node values and the
// shape checks that decide which patterns count as good.
#include "results/mesh.h"

#include <gtest/gtest.h>

#include <set>

#include "state/param.h"
#include "support/resultwriter.h"

namespace tessiva {
namespace {

using testing::Displacement;
using testing::DisplacementField;
using testing::GridPatterns;
using testing::ResultPattern;

constexpr int32_t kCorner[4][2] = {{-1, -1}, {-1, 1}, {1, 1}, {1, -1}};

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
    s.Lima = lima;
    s.Hima = hima;
    s.Lgrid = lgrid;
    s.Lpas = 2 * (lgrid / 2);
    s.LpatMin = s.LpatEven = lgrid;
    s.LpatMax = lpatMax;
    AllocPat(s);
  }

  void Put(const std::vector<ResultPattern>& patterns) {
    s.NbPat = static_cast<int32_t>(patterns.size());
    for (int32_t i = 1; i <= s.NbPat; ++i) {
      const ResultPattern& p = patterns[static_cast<size_t>(i - 1)];
      s.FlagPat[i] = p.flag;
      s.XPat[i] = p.x;
      s.YPat[i] = p.y;
      s.AuPat[i] = p.u[0], s.BuPat[i] = p.u[1], s.CuPat[i] = p.u[2], s.DuPat[i] = p.u[3];
      s.AvPat[i] = p.v[0], s.BvPat[i] = p.v[1], s.CvPat[i] = p.v[2], s.DvPat[i] = p.v[3];
    }
  }

  // A block of patterns at 64, 64 with the grid step as spacing.
  void PutBlock(const DisplacementField& field, int32_t columns, int32_t rows) {
    Put(GridPatterns(field, 8 * s.Lpas, 8 * s.Lpas, columns, rows, s.Lpas, s.LpatEven));
  }

  const MeshCell& CellOf(int32_t i) const { return s.Mailles[static_cast<size_t>(NumMaille(s, s.XPat[i], s.YPat[i]))]; }
  const MeshNode& NodeOf(int32_t i, int k) const { return s.Noeuds[static_cast<size_t>(CellOf(i).Noeud[k])]; }

  std::vector<int32_t> Flags() const { return {s.FlagPat.begin() + 1, s.FlagPat.begin() + 1 + s.NbPat}; }

  AppState s;
};

TEST_F(MeshTest, CellsCoverThePictureAndShareTheirCornerNodes) {
  Picture(64, 48, 8, 8);
  CreeMaillage(s, 0);
  EXPECT_EQ(s.XGridMax, 64);
  EXPECT_EQ(s.YGridMax, 48);
  ASSERT_EQ(s.NbMailles, 8 * 6);
  ASSERT_EQ(s.NbNoeuds, 9 * 7);
  std::set<std::pair<int32_t, int32_t>> positions;
  for (int32_t c = 1; c <= s.NbMailles; ++c) {
    const MeshCell& cell = s.Mailles[static_cast<size_t>(c)];
    for (int k = 0; k < 4; ++k) {
      const MeshNode& node = s.Noeuds[static_cast<size_t>(cell.Noeud[k])];
      EXPECT_EQ(node.X, cell.X + kCorner[k][0] * 4) << "cell " << c << " corner " << k + 1;
      EXPECT_EQ(node.Y, cell.Y + kCorner[k][1] * 4) << "cell " << c << " corner " << k + 1;
    }
  }
  for (int32_t n = 1; n <= s.NbNoeuds; ++n) positions.insert({s.Noeuds[n].X, s.Noeuds[n].Y});
  EXPECT_EQ(positions.size(), 63u) << "every node at its own place";
}

TEST_F(MeshTest, NumMailleRoundsToTheNearestGridLineAndNeverAnswersTheFirstColumnOrRow) {
  Picture(64, 48, 8, 8);
  CreeMaillage(s, 0);
  struct Case {
    double x, y;
    int32_t cellX, cellY;  // centre of the cell found, 0 for none
  };
  // Half-way goes to the next line; the first column and row fall in the second.
  const Case cases[] = {
      {40, 24, 40, 24}, {43.9, 27.9, 40, 24}, {44, 24, 48, 24}, {36, 20, 40, 24}, {8, 8, 16, 16},
      {15.9, 8, 16, 16}, {64, 48, 64, 48},    {65, 24, 0, 0},   {7.9, 24, 0, 0},  {40, -1, 0, 0},
  };
  for (const Case& c : cases) {
    const int32_t n = NumMaille(s, c.x, c.y);
    EXPECT_EQ(n == 0 ? 0 : s.Mailles[n].X, c.cellX) << c.x << ", " << c.y;
    EXPECT_EQ(n == 0 ? 0 : s.Mailles[n].Y, c.cellY) << c.x << ", " << c.y;
  }
}

TEST_F(MeshTest, ALonePatternIsRejectedAndStaysSo) {
  Picture(256, 256, 8, 8);
  PutBlock(Translation(1, 2), 1, 1);
  CreeMaillage(s, 0);
  for (int k = 0; k < 4; ++k) {
    EXPECT_EQ(NodeOf(1, k).Nval, 1);
    EXPECT_FALSE(NodeOf(1, k).Valide);
  }
  EXPECT_EQ(s.FlagPat[1], 0);
  RepareMaillage(s);
  EXPECT_EQ(s.FlagPat[1], 0);
}

TEST_F(MeshTest, TwoNeighboursAgreeOnTheirSharedNodesOnly) {
  Picture(256, 256, 8, 8);
  PutBlock(Translation(1, 2), 1, 2);
  CreeMaillage(s, 0);
  // Corners 2 and 3 of the upper pattern are corners 1 and 4 of the lower one.
  EXPECT_EQ(CellOf(1).Noeud[1], CellOf(2).Noeud[0]);
  EXPECT_EQ(CellOf(1).Noeud[2], CellOf(2).Noeud[3]);
  for (int k = 0; k < 4; ++k) {
    const bool shared = k == 1 || k == 2;
    EXPECT_EQ(NodeOf(1, k).Valide, shared) << "corner " << k + 1;
    if (shared) {
      EXPECT_EQ(NodeOf(1, k).Ecart, 0.0);
    }
  }
  EXPECT_EQ(Flags(), (std::vector<int32_t>{0, 0}));
  RepareMaillage(s);
  EXPECT_EQ(Flags(), (std::vector<int32_t>{0, 0}));
}

TEST_F(MeshTest, AFullBlockLosesItsCornerCellsAndTheRepairCompletesThem) {
  Picture(256, 256, 8, 8);
  const DisplacementField field = Affine(1.02, 0.01, -0.03, 0.99);
  PutBlock(field, 4, 3);
  CreeMaillage(s, 0);
  // Numbered column by column: the corner cells are 1, 3, 10 and 12.
  EXPECT_EQ(Flags(), (std::vector<int32_t>{0, -1, 0, -1, -1, -1, -1, -1, -1, 0, -1, 0}));
  const std::pair<int32_t, int> outerCorners[] = {{1, 0}, {3, 1}, {12, 2}, {10, 3}};
  for (auto [pattern, corner] : outerCorners) EXPECT_FALSE(NodeOf(pattern, corner).Valide);
  RepareMaillage(s);
  EXPECT_EQ(Flags(), std::vector<int32_t>(12, -1));
  for (auto [pattern, corner] : outerCorners) {
    const MeshNode& node = NodeOf(pattern, corner);
    EXPECT_TRUE(node.Valide);
    EXPECT_NEAR(node.U, field(node.X, node.Y).u, 1e-12);
    EXPECT_NEAR(node.V, field(node.X, node.Y).v, 1e-12);
  }
}

TEST_F(MeshTest, AContributionOffByMoreThanTheThresholdIsDropped) {
  Picture(256, 256, 8, 8);
  const DisplacementField field = Affine(1.01, 0.0, 0.0, 1.01);
  PutBlock(field, 3, 3);
  s.DuPat[5] += 5.0;  // the centre pattern
  CreeMaillage(s, 0);
  for (int k = 0; k < 4; ++k) {
    const MeshNode& node = NodeOf(5, k);
    EXPECT_TRUE(node.Valide);
    EXPECT_EQ(node.Nval, 3);
    EXPECT_NEAR(node.U, field(node.X, node.Y).u, 1e-12);
    EXPECT_NEAR(node.Ecart, 0.0, 1e-12);
  }
  EXPECT_EQ(s.FlagPat[5], -1);
}

TEST_F(MeshTest, ANodeLeftWithOneContributionIsInvalidAndKeepsTheLastMeans) {
  Picture(256, 256, 8, 8);
  Put({testing::PatternOf(Translation(0, 0), 64, 64, 8), testing::PatternOf(Translation(10, 4), 64, 72, 8)});
  CreeMaillage(s, 0);
  const MeshNode& shared = NodeOf(1, 1);
  EXPECT_FALSE(shared.Valide);
  EXPECT_EQ(shared.Nval, 1);
  EXPECT_EQ(shared.U, 5.0);
  EXPECT_EQ(shared.V, 2.0);
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

// The product test moves its working cell only with good patterns, so a
// pattern the file calls bad answers for the cell of the last good one before
// it, not for its own.
TEST_F(MeshTest, ABadPatternAnswersForTheCellOfTheGoodPatternBeforeIt) {
  Picture(256, 256, 8, 8);
  const std::vector<ResultPattern> block = GridPatterns(Translation(1, 1), 64, 64, 3, 3, 8, 8);
  ResultPattern centre = block[4], apart = testing::PatternOf(Translation(1, 1), 160, 160, 8);
  centre.flag = apart.flag = 1;
  // The centre (all its nodes valid) follows a corner cell with an invalid
  // outer node; the pattern apart (no valid node) follows the top middle cell.
  Put({block[0], centre, block[1], block[2], block[3], apart, block[5], block[6], block[7], block[8]});
  CreeMaillage(s, 0);
  EXPECT_EQ(s.FlagPat[2], 0);
  EXPECT_EQ(s.FlagPat[6], 1);
}

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

TEST_F(MeshTest, PatternsOutsideThePictureGoToCellZeroWithoutHarm) {
  Picture(64, 64, 8, 8);
  Put({testing::PatternOf(Translation(0, 0), 5000, -300, 8), testing::PatternOf(Translation(0, 0), 2147483647, 0, 8)});
  CreeMaillage(s, 0);
  RepareMaillage(s);
  EXPECT_EQ(Flags(), (std::vector<int32_t>{0, 0}));
}

}  // namespace
}  // namespace tessiva
