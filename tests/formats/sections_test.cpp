#include "formats/sections.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

namespace tessiva {
namespace {

// The outline section of each kind of file, read from the same text: what
// differs between the files is the rule for tags, for a missing count and for
// a missing vertex.
TEST(SharedSections, OutlinesFollowTheRulesOfEachKindOfFile) {
  const KeyFile keys = KeyFile::Parse(
      "[OUTLINES]\n  Number=2\n  TagBox1=3\n  Nbox1=2\n  x1-1=1\n  y1-1=2\n  x1-2=3\n  y1-2=4\n"
      "  Nbox2=3\n  x2-1=5\n  y2-1=-1\n  y2-2=7\n  x2-3=8\n  y2-3=9\n");
  struct Case {
    FileKind kind;
    int32_t areas;
    bool firstSkipped;
    size_t secondVertices;           // vertices read of slot 2
    std::optional<int32_t> secondY;  // y of its second vertex
  };
  const Case cases[] = {
      // A data file leaves a tagged slot to its gauge, and a vertex without x keeps its y.
      {FileKind::DataFile, 1, true, 3, std::nullopt},
      // A set stops an outline at its first -1.
      {FileKind::AreaSet, 1, true, 1, std::nullopt},
      // A result reads every slot.
      {FileKind::Result, 2, false, 3, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.kind));
    const auto outlines = ReadOutlines(keys, c.kind);
    ASSERT_TRUE(outlines);
    EXPECT_EQ(std::tie(outlines->areas, outlines->slots[0].skipped), std::tie(c.areas, c.firstSkipped));
    ASSERT_EQ(outlines->slots[1].vertices.size(), c.secondVertices);
    if (c.kind != FileKind::AreaSet) {
      EXPECT_EQ(outlines->slots[1].vertices[1].x, kUnknownValue);
      EXPECT_EQ(outlines->slots[1].vertices[1].y, c.secondY);
    }
  }
  const KeyFile empty = KeyFile::Parse("");
  EXPECT_EQ(ReadOutlines(empty, FileKind::DataFile)->areas, 0);
  EXPECT_TRUE(ReadOutlines(empty, FileKind::AreaSet)->slots.empty());
}

TEST(SharedSections, StartPointsOfDataFilesAndSetsTellSolvedPointsApart) {
  const KeyFile keys = KeyFile::Parse(
      "[STARTPOINTS]\n  Number=3\n  x1=10\n  y1=20\n  du1=-10000\n  dv1=4\n"
      "  x2=30\n  y2=40\n  du2=1\n  x3=-1\n  y3=5\n");
  struct Case {
    FileKind kind;
    std::vector<std::optional<bool>> ok;
    int32_t curStartAfter;  // from a current start point of 0
  };
  const Case cases[] = {
      // Only -10000 is unknown in a data file: a missing dv reads -10000 too; x = -1 skips the point.
      {FileKind::DataFile, {false, false, std::nullopt}, 2},
      // A set needs both displacements, and -10000 is a value there; x = -1 is a coordinate.
      {FileKind::AreaSet, {true, false, false}, 2},
  };
  for (const Case& c : cases) {
    const auto list = ReadStartPoints(keys, c.kind);
    ASSERT_TRUE(list);
    std::vector<std::optional<bool>> ok;
    for (const StartPointEntry& p : list->points) ok.push_back(p.ok);
    EXPECT_EQ(ok, c.ok) << static_cast<int>(c.kind);
    AppState s;
    ApplyStartPoints(*list, s);
    EXPECT_EQ(std::tie(s.NbStart, s.CurStart), std::make_tuple(3, c.curStartAfter)) << static_cast<int>(c.kind);
  }
}

template <class T>
std::string ErrorOf(const Parsed<T>& parsed) {
  return parsed ? std::string() : parsed.Error().message;
}

TEST(SharedSections, CountsBeyondTheStoresAreParseErrorsNamingTheKey) {
  using Reader = std::function<std::string(const KeyFile&)>;
  const Reader outlines = [](const KeyFile& k) { return ErrorOf(ReadOutlines(k, FileKind::DataFile)); };
  const std::tuple<const char*, Reader, const char*> cases[] = {
      {"[OUTLINES]\n  Number=21\n", outlines, "[OUTLINES] Number=21"},
      {"[OUTLINES]\n  Number=1\n  Nbox1=52\n", outlines, "[OUTLINES] Nbox1=52"},
      // Refused before its vertices are looked up: a count read first would cost minutes.
      {"[OUTLINES]\n  Number=1\n  Nbox1=2147483647\n", outlines, "[OUTLINES] Nbox1=2147483647"},
      {"[STARTPOINTS]\n  Number=1000\n", [](const KeyFile& k) { return ErrorOf(ReadStartPoints(k, FileKind::AreaSet)); },
       "[STARTPOINTS] Number=1000"},
      {"[GAGES]\n  Number=1000\n", [](const KeyFile& k) { return ErrorOf(ReadGages(k)); }, "[GAGES] Number=1000"},
      {"[EXTRA]\n  number=1000\n", [](const KeyFile& k) { return ErrorOf(ReadExtraValues(k)); }, "[EXTRA] number=1000"},
  };
  for (const auto& [text, read, named] : cases) {
    const std::string message = read(KeyFile::Parse(text));
    EXPECT_TRUE(message.starts_with(named)) << text << " gave: " << message;
  }
}

TEST(SharedSections, UnitsGaugesAndTheCrackReadWhatIsComplete) {
  const KeyFile keys = KeyFile::Parse(
      "[UNIT]\n  UnitPX=0,025\n[GAGES]\n  Number=3\n  name1=a\n  type1=1\n  xdep1=1\n  ydep1=2\n  xarr1=3\n"
      "  name2=b\n  type2=0\n  xdep2=1\n  ydep2=2\n  xarr2=3\n  yarr2=4\n[FISSURE]\n  XfissureDep=1\n");
  for (const char* name : {"Pixel", "pixel"}) {
    const Units units = ReadUnits(keys, name);
    EXPECT_EQ(std::tie(units.nameX, units.px, units.py), std::make_tuple(std::string(name), 0.025, 1.0));
  }
  const auto gages = ReadGages(keys);
  ASSERT_TRUE(gages);
  ASSERT_EQ(gages->Count(), 1) << "a gauge without yarr isn't created; the next one still is";
  EXPECT_EQ(gages->Get(1).name, "b");
  EXPECT_FALSE(ReadCrack(keys).on);
  EXPECT_FALSE(ReadFormingLimitZone(keys).on);
}

}  // namespace
}  // namespace tessiva
