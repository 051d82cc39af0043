// The line layouts of the three exports, byte for byte, on a mesh of 2 x 2
// good cells: pattern 4 bad in the file, a pattern outside the mesh (cell 0),
// and only the nodes of the first cell valid, although the others name theirs.
#include "results/exports.h"

#include <gtest/gtest.h>

#include "results/analysisfixture.h"
#include "results/mesh.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

class Exports : public ::testing::Test {
 protected:
  // A 24 x 24 picture at grid step 8: cells 3 x 3 (centres 8, 16, 24), nodes
  // 4 x 4 (at 4, 12, 20, 28), both numbered column by column. The patterns at
  // 16 and 24 lie in cells 5, 6, 8 and 9.
  Exports() {
    testing::SetPicture(s, 24, 24, 8, 8);
    const auto still = [](double, double) { return testing::Displacement{}; };
    std::vector<testing::ResultPattern> patterns = testing::GridPatterns(still, 16, 16, 2, 2, 8, 8);
    patterns.push_back(testing::PatternOf(still, 100, 100, 8));
    testing::PutPatterns(s, patterns);
    CreeMaillage(s, 0);
    RepareMaillage(s);
    s.FlagPat[4] = 1;
    for (const size_t n : {8, 12, 14, 15, 16}) s.Noeuds[n].Valide = false;
    for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
      MeshNode& node = s.Noeuds[static_cast<size_t>(n)];
      node.U = n / 4.0, node.V = -n / 8.0, node.E11 = n, node.E22 = -0.5, node.E12 = 0.25;
      node.H1 = 1.5, node.H2 = -1.0, node.Teta = 90.0, node.Psi = -45.5, node.Gamma = 89.75;
    }
  }

  std::string Written(std::string_view name) const { return dir.Read(name); }

  AppState s;
  testing::TempDir dir;
};

TEST_F(Exports, CleanResultFile) {
  const std::string head =
      "*NODE Num X Y\n"
      "         6   12   12\n"
      "         7   12   20\n"
      "        10   20   12\n"
      "        11   20   20\n"
      "*ELEMENT Num N1 N2 N3 N4\n"
      "         5         6         7        11        10 \n"
      "         6         7         8        12        11 \n"
      "         8        10        11        15        14 \n";
  const std::string bad =
      "         9        11        12        16        15 \n"
      "         0         0         0         0         0 \n";
  const std::string tail =
      "*DISPLACEMENT U1 U2\n"
      "         6   1.5  -.75\n"
      "         7   1.75  -.875\n"
      "        10   2.5  -1.25\n"
      "        11   2.75  -1.375\n"
      "*STRAIN E11 E22 E12 H1 H2 TETA PSI GAMMA\n"
      "         6   6  -.5   .25   1.5  -1   90  -45.5   89.75\n"
      "         7   7  -.5   .25   1.5  -1   90  -45.5   89.75\n"
      "        10   10  -.5   .25   1.5  -1   90  -45.5   89.75\n"
      "        11   11  -.5   .25   1.5  -1   90  -45.5   89.75\n";
  ASSERT_TRUE(SauveCfr(s, 0, dir.File("good.cfr")));
  EXPECT_EQ(Written("good.cfr"), head + tail);
  ASSERT_TRUE(SauveCfr(s, 1, dir.File("all.cfr")));
  EXPECT_EQ(Written("all.cfr"), head + bad + tail);
}

TEST_F(Exports, UniversalFile) {
  const std::string today = TodayText().insert(6, "-").insert(4, "-");
  const std::string expected =
      "    -1\n"
      "  2411\n"
      "         6         1         1        11\n"
      "   0.1200000000000000D+02   0.1200000000000000D+02   0.0000000000000000D+00\n"
      "         7         1         1        11\n"
      "   0.1200000000000000D+02   0.2000000000000000D+02   0.0000000000000000D+00\n"
      "        10         1         1        11\n"
      "   0.2000000000000000D+02   0.1200000000000000D+02   0.0000000000000000D+00\n"
      "        11         1         1        11\n"
      "   0.2000000000000000D+02   0.2000000000000000D+02   0.0000000000000000D+00\n"
      "    -1\n"
      "    -1\n"
      "  2412\n"
      "         5        94         2         1         7         4\n"
      "         6         7        11        10 \n"
      "         6        94         2         1         7         4\n"
      "         7         8        12        11 \n"
      "         8        94         2         1         7         4\n"
      "        10        11        15        14 \n"
      "         9        94         2         1         7         4\n"
      "        11        12        16        15 \n"
      "         0        94         2         1         7         4\n"
      "         0         0         0         0 \n"
      "    -1\n"
      "    -1\n"
      "  2414\n"
      "         1\n"
      "DEPLACEMENTS\n"
      "         1\n"
      "Valeurs nodales\n"
      "Date de creation : " + today + "\n"
      "Organisation : The Tessiva developers\n"
      "Telephone : not published\n"
      "Mail : not published\n"
      "         1         1         3         8         2         6\n"
      "       -10         0         1         1         1         0         0         0\n"
      "        16         0\n"
      "  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00\n"
      "  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00\n"
      "         6\n"
      "  0.15000E+01  -0.7500E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00\n"
      "         7\n"
      "  0.17500E+01  -0.8750E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00\n"
      "        10\n"
      "  0.25000E+01  -0.1250E+01  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00\n"
      "        11\n"
      "  0.27500E+01  -0.1375E+01  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00\n"
      "    -1\n";
  ASSERT_TRUE(SauveUnv(s, 1, dir.File("mesh.unv")));
  EXPECT_EQ(Written("mesh.unv"), expected);
}

// Every node and every pattern, y turned upwards, the displacement of the
// valid nodes rounded half away from zero to two places.
TEST_F(Exports, AbaqusInputFile) {
  const std::string expected =
      "*HEADING\n"
      "*PREPRINT,ECHO=NO,HISTORY=NO,MODEL=NO\n"
      "Tessiva - The Tessiva developers\n"
      "*NODE, SYSTEM=R\n"
      " 1,0004.00,-0004.00,0.0\n"
      " 2,0004.00,-0012.00,0.0\n"
      " 3,0004.00,-0020.00,0.0\n"
      " 4,0004.00,-0028.00,0.0\n"
      " 5,0012.00,-0004.00,0.0\n"
      " 6,0012.00,-0012.00,0.0\n"
      " 7,0012.00,-0020.00,0.0\n"
      " 8,0012.00,-0028.00,0.0\n"
      " 9,0020.00,-0004.00,0.0\n"
      " 10,0020.00,-0012.00,0.0\n"
      " 11,0020.00,-0020.00,0.0\n"
      " 12,0020.00,-0028.00,0.0\n"
      " 13,0028.00,-0004.00,0.0\n"
      " 14,0028.00,-0012.00,0.0\n"
      " 15,0028.00,-0020.00,0.0\n"
      " 16,0028.00,-0028.00,0.0\n"
      "*ELEMENT,TYPE=S4R,ELSET=MAIN\n"
      " 5, 6, 7, 11, 10\n"
      " 6, 7, 8, 12, 11\n"
      " 8, 10, 11, 15, 14\n"
      " 9, 11, 12, 16, 15\n"
      " 0, 0, 0, 0, 0\n"
      "*SHELL SECTION,ELSET=MAIN,MATERIAL=M0000001\n"
      "1.000E-03 ,   3\n"
      "*MATERIAL,NAME=M0000001\n"
      "*ELASTIC,TYPE=ISOTROPIC\n"
      "2.0E+1 , 2.900E-01\n"
      "*RESTART,WRITE\n"
      "*STEP,NLGEOM\n"
      "*STATIC\n"
      "*BOUNDARY,OP=NEW\n"
      " 6,1,1,0001.50\n"
      " 6,2,2,0000.75\n"
      " 7,1,1,0001.75\n"
      " 7,2,2,0000.88\n"
      " 10,1,1,0002.50\n"
      " 10,2,2,0001.25\n"
      " 11,1,1,0002.75\n"
      " 11,2,2,0001.38\n"
      "*END STEP\n";
  ASSERT_TRUE(SauveInp(s, dir.File("mesh.inp")));
  EXPECT_EQ(Written("mesh.inp"), expected);
}

}  // namespace
}  // namespace tessiva
