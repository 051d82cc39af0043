#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "engine_fixture.h"
#include "formats/datafile.h"
#include "setup/areafiles.h"

namespace tessiva {
namespace {

// What the setup window saves, its reader rebuilds: the same grid, the same
// start points, and the same outcome of the walk.
TEST(DataFile, SavedAndReadBackGivesTheSameGridStartPointsAndWalk) {
  testing::EngineWindow w;
  w.s.LastDir = w.dir.Path();
  w.Load(155, 105, testing::SpeckleLevels(155, 105), testing::SpeckleLevels(155, 105, 4, 3));
  w.AddRectangle(15, 15, 45, 45);
  w.AddRectangle(115, 15, 145, 85);
  w.form.CreateRectArea();
  w.AddStartPoint(30, 30, 4, 3);
  w.form.PropagArea();
  w.AddStartPoint(130, 50, 4, 3);
  w.form.PropagArea();
  ASSERT_EQ(w.Engine().walk.PropagDone, -1);

  testing::EngineWindow r;
  for (testing::EngineWindow* window : {&w, &r}) {
    window->s.LastDir = w.dir.Path();
    window->s.ResizeSequence(1);
    std::tie(window->s.DataFileName[1], window->s.DataFilePath[1]) = std::tuple("pair.don", w.dir.File("pair.don"));
    window->form.Controls().SetText("Text1", "pair.don");
  }
  ASSERT_TRUE(SauveDonArea(w.form, 1));
  ASSERT_TRUE(LecDonArea(r.form, 1, false));
  ASSERT_EQ(r.s.NbPat, w.s.NbPat);
  const auto end = static_cast<std::ptrdiff_t>(w.s.NbPat) + 1;
  EXPECT_TRUE(std::equal(w.s.XPat.begin() + 1, w.s.XPat.begin() + end, r.s.XPat.begin() + 1));
  EXPECT_TRUE(std::equal(w.s.YPat.begin() + 1, w.s.YPat.begin() + end, r.s.YPat.begin() + 1));
  ASSERT_EQ(r.s.NbStart, 2);
  EXPECT_EQ(std::tie(r.s.XStart, r.s.DvStart, r.s.StartOk), std::tie(w.s.XStart, w.s.DvStart, w.s.StartOk));
  EXPECT_EQ(std::tuple(r.Engine().walk.PropagDone, r.Engine().walk.FoundPat), std::tuple(-1, w.Engine().walk.FoundPat));
}

}  // namespace
}  // namespace tessiva
