// Captures of the analysis window (Film, Film2), the frame's Output marks and
// the export menus, on a three-member sequence of results for known fields.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "analysis/capture.h"
#include "analysis/exportmenu.h"
#include "analysis/fieldlist.h"
#include "results/analysisfixture.h"
#include "state/files.h"
#include "state/index.h"
#include "ui/recordingcanvas.h"

namespace tessiva {
namespace {

using testing::Displacement;

// Joins nothing: gives a picture of the layout's size and remembers what it
// was asked; saves write a marker file, so that a directory that can't be
// written fails as it would for a real picture.
class FakeCapture : public CapturePort {
 public:
  std::optional<RgbImage> Compose(const CaptureLayout& layout, const CaptureSurfaces& surfaces,
                                  const CaptureLegendTexts& legend) override {
    layouts.push_back(layout);
    lastSurfaces = surfaces;
    lastLegend = legend;
    return RgbImage{layout.width, layout.height,
                    std::vector<uint32_t>(static_cast<size_t>(layout.width) * static_cast<size_t>(layout.height))};
  }
  bool Save(const RgbImage&, const std::string& path) override {
    saves.push_back(path);
    return WriteFileAtomically(path, "picture");
  }
  std::vector<CaptureLayout> layouts;
  CaptureSurfaces lastSurfaces;
  CaptureLegendTexts lastLegend;
  std::vector<std::string> saves;
};

bool Contains(const std::vector<std::string>& texts, const std::string& wanted) {
  return std::find(texts.begin(), texts.end(), wanted) != texts.end();
}

class CaptureTest : public testing::AnalysisFixture {
 protected:
  // Members m1.res, m2.res, m3.res: u = k x / 100 for member k, 11 x 11 patterns.
  CaptureTest() {
    std::vector<std::string> paths;
    for (int k = 1; k <= 3; ++k) {
      const auto field = [k](double x, double) { return Displacement{k * x / 100.0, 0.0}; };
      testing::ResultHead head;
      head.lgrid = head.lpatMin = head.lpatMax = 10;
      paths.push_back(testing::WriteResultFile(dir.File("m" + std::to_string(k) + ".res"), head,
                                               testing::GridPatterns(field, 40, 40, 11, 11, 10, 10)));
    }
    UseSequence(paths);
    for (int k = 1; k <= 3; ++k) s.DataFileName[At(k)] = "m" + std::to_string(k) + ".res";
    window.PicAna = &map;
    window.IsoPic = &bar;
    window.Captures = &port;
    EXPECT_TRUE(LecRes(window, 1, false));
    window.OnCombo2Click(0);
  }

  std::vector<std::string> WrittenFiles(const std::string& where) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(where)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  RecordingCanvas map{400, 300};
  RecordingCanvas bar{318, 40};
  FakeCapture port;
};

TEST(CaptureLayoutTest, PartsStandWhereTheWindowCopiesThem) {
  struct Case {
    const char* name;
    int mapWidth, mapHeight;
    bool axes;
    std::optional<CaptureRect> graph;
    int scale;
    bool trim;
    int width, height;
    CaptureRect map, legend;
  };
  const Case cases[] = {
      {"map wider than the legend", 408, 304, false, {}, 1, true, 400, 300 + 71, {0, 0, 400, 300}, {0, 300, 318, 71}},
      {"narrow map: the legend stays whole", 108, 104, true, {}, 1, true, 318, 100 + 71, {0, 0, 100, 100},
       {0, 100, 318, 71}},
      {"graph at the right, as tall as it is", 408, 104, false, CaptureRect{0, 0, 200, 300}, 1, true, 400 + 196, 296,
       {0, 0, 400, 100}, {0, 100, 318, 71}},
      {"enlarged legend under an untrimmed map", 1000, 900, false, {}, 2, false, 1000, 900 + 142, {0, 0, 1000, 900},
       {0, 900, 636, 142}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const CaptureLayout layout = LayOutCapture(c.mapWidth, c.mapHeight, c.axes, c.graph, c.scale, c.trim);
    EXPECT_EQ(layout.width, c.width);
    EXPECT_EQ(layout.height, c.height);
    EXPECT_EQ(std::tie(layout.map.left, layout.map.top, layout.map.width, layout.map.height),
              std::tie(c.map.left, c.map.top, c.map.width, c.map.height));
    const CaptureRect& frame = layout.legend.frame;
    EXPECT_EQ(std::tie(frame.left, frame.top, frame.width, frame.height),
              std::tie(c.legend.left, c.legend.top, c.legend.width, c.legend.height));
    EXPECT_EQ(layout.axes.has_value(), c.axes);
    if (layout.axes) {
      EXPECT_EQ(std::tie(layout.axes->width, layout.axes->height), std::tie(kCaptureAxesSide, kCaptureAxesSide));
    }
    if (c.graph) {
      ASSERT_TRUE(layout.graph);
      EXPECT_EQ(layout.graph->left, c.map.width);
      EXPECT_EQ(layout.graph->Right(), layout.width);
    }
    // The bar spans the legend between caption and labels; the outer labels sit on its ends.
    const CaptureLegend& legend = layout.legend;
    EXPECT_GT(legend.bar.top, frame.top);
    EXPECT_LE(legend.bar.Bottom(), legend.labelTop);
    EXPECT_EQ(legend.labelTop + legend.labelHeight, frame.Bottom());
    EXPECT_EQ(legend.labelX[0], legend.bar.left);
    EXPECT_EQ(legend.labelX[4], legend.bar.Right() - 1);
    EXPECT_EQ(legend.labelX[2], (legend.bar.width - 1) / 2);
  }
}

TEST(CaptureFileNameTest, ResultLessItsExtensionThenTheFieldAndPngByItsEnding) {
  EXPECT_EQ(CaptureFileName("r1.res", "Teta(1,I)", ".bmp"), "r1-Teta(1,I).bmp");
  EXPECT_EQ(CaptureFileName("test-12.res", "1 displacement", ".png"), "test-12-1 displacement.png");
  EXPECT_EQ(CaptureFileName("a.res", "E1/E2\\x", ".bmp"), "a-E1_E2_x.bmp");
  for (const auto& [name, png] : {std::pair{"dir/a.png", true}, {"A.PNG", true}, {"a.bmp", false}, {"png", false},
                                  {"a.pngs", false}, {"", false}})
    EXPECT_EQ(NamesPng(name), png) << name;
}

TEST_F(CaptureTest, FilmSendsThePictureToTheClipboardAndSavesItUnderTheChosenName) {
  ui.messageAnswers = {MsgAnswer::Yes};
  ui.dialogAnswers = {{dir.File("chosen.png"), "chosen.png"}};
  window.Controls().SetForeColor("CadreIso", 15);
  Film(window, port);

  ASSERT_EQ(port.layouts.size(), 1u);
  EXPECT_EQ(ui.clipboardPicture.width, 400 - 8);
  EXPECT_EQ(ui.clipboardPicture.height, 300 - 4 + 71);
  EXPECT_EQ(port.lastLegend.ink, QBColor(0)) << "the legend is copied black";
  EXPECT_EQ(window.Controls().Get("CadreIso").foreColor, 15) << "and its colour comes back";
  EXPECT_EQ(port.lastSurfaces.bar, &bar);
  ASSERT_EQ(ui.dialogRequests.size(), 1u);
  const FileDialogRequest& dialog = ui.dialogRequests[0];
  EXPECT_EQ(dialog.title, "Save picture");
  EXPECT_EQ(dialog.filter, "bmp file|*.bmp");
  EXPECT_EQ(dialog.defaultExt, "bmp");
  EXPECT_EQ(dialog.fileName, "m1-1 displacement.bmp");
  EXPECT_EQ(port.saves, std::vector<std::string>{dir.File("chosen.png")});
  EXPECT_TRUE(Contains(ui.Messages(),
                       "The picture is sent to the clipboard\r\nDo you want to save the picture in a BMP file too ?"));
  // The file and its reference picture were printed on the map for the copy.
  std::vector<std::string> texts;
  for (const auto& op : map.OfKind("text")) texts.push_back(op.text);
  EXPECT_TRUE(Contains(texts, "m1.res from ref.bmp"));
}

TEST_F(CaptureTest, FilmAnsweredNoOrCancelledSavesNothing) {
  for (const bool cancelDialog : {false, true}) {
    SCOPED_TRACE(cancelDialog ? "dialog cancelled" : "answered No");
    ui.messageAnswers = {cancelDialog ? MsgAnswer::Yes : MsgAnswer::No};
    ui.log.clear();
    Film(window, port);
    EXPECT_TRUE(port.saves.empty());
    EXPECT_EQ(Contains(ui.Messages(), "Operation cancelled"), cancelDialog);
  }
}

TEST_F(CaptureTest, Film2SavesEachMemberUnderItsDefaultNameInTheChosenDirectory) {
  struct Case {
    const char* chosen;
    const char* extension;
  };
  for (const Case& c : {Case{"whatever.bmp", ".bmp"}, Case{"film.PNG", ".png"}}) {
    SCOPED_TRACE(c.chosen);
    const std::string out = dir.File(std::string("out") + c.extension);
    std::filesystem::create_directory(out);
    ui.dialogAnswers = {{JoinPath(out, c.chosen), c.chosen}};
    ui.log.clear();
    EXPECT_TRUE(Film2(window, port));
    const std::string e = c.extension;
    EXPECT_EQ(WrittenFiles(out), (std::vector<std::string>{"m1-1 displacement" + e, "m2-1 displacement" + e,
                                                           "m3-1 displacement" + e}));
    EXPECT_TRUE(Contains(ui.Messages(), "Sequence saved"));
    EXPECT_EQ(ui.dialogRequests.back().title, "Choose the directory");
    EXPECT_EQ(window.CurFile, 3);
    EXPECT_EQ(Trim(frame.Text("Label1")).rfind("Save sequence in pogress", 0), std::string::npos)
        << "the repaint after the sequence gives the status line back";
  }
  // Each member was composed after being read: its map shows its own file.
  std::vector<std::string> texts;
  for (const auto& op : map.OfKind("text")) texts.push_back(op.text);
  EXPECT_TRUE(Contains(texts, "m3.res from ref.bmp"));
}

TEST_F(CaptureTest, Film2CancelledOrUnwritableWritesNothingMoreAndSaysSo) {
  // Cancelled: no dialog answer.
  EXPECT_FALSE(Film2(window, port));
  EXPECT_TRUE(Contains(ui.Messages(), "Operation cancelled"));
  EXPECT_TRUE(port.saves.empty());
  EXPECT_EQ(WrittenFiles(dir.Path()).size(), 3u) << "only the results";

  // A directory that can't be written: the first file fails and the sequence stops.
  const std::string missing = dir.File("no-such-directory");
  ui.dialogAnswers = {{JoinPath(missing, "x.bmp"), "x.bmp"}};
  ui.log.clear();
  EXPECT_FALSE(Film2(window, port));
  EXPECT_EQ(port.saves, std::vector<std::string>{JoinPath(missing, "m1-1 displacement.bmp")});
  EXPECT_TRUE(Contains(ui.Messages(), "The picture " + JoinPath(missing, "m1-1 displacement.bmp") +
                                          " could not be written; the sequence stops at this file"));
  EXPECT_FALSE(Contains(ui.Messages(), "Sequence saved"));
  EXPECT_EQ(window.CurFile, 1);
}

TEST_F(CaptureTest, OutputMarksPatterns100And110WithTheirNumbers) {
  s.AnalyseOpen = false;
  EXPECT_FALSE(MarkOutputPatterns(window)) << "no analysis on show";
  s.AnalyseOpen = true;
  map.ops.clear();
  ASSERT_TRUE(MarkOutputPatterns(window));
  const auto points = map.OfKind("point");
  const auto texts = map.OfKind("text");
  ASSERT_EQ(points.size(), 2u);
  ASSERT_EQ(texts.size(), 2u);
  // Patterns go column by column, 11 a column from (40, 40) every 10 pixels:
  // 100 and 110 are the first and the last of the tenth column.
  EXPECT_EQ(std::tie(points[0].x1, points[0].y1), std::tuple(130.0, 40.0));
  EXPECT_EQ(std::tie(points[1].x1, points[1].y1), std::tuple(130.0, 140.0));
  EXPECT_EQ(texts[0].text, "100");
  EXPECT_EQ(texts[1].text, "110");
}

TEST_F(CaptureTest, EachExportEntryWritesItsKindOfFileAndACancelNothing) {
  struct Case {
    const char* control;
    const char* title;
    const char* startsWith;
  };
  const Case cases[] = {{"SCFMnu", "Write clean result file", "*NODE Num X Y"},
                        {"SUFMnu", "Write Universal result file", "    -1"},
                        {"SAFMnu", "Write Abaqus input file", "*HEADING"},
                        {"SVTMnu", "Write VTK grid file", "<?xml"},
                        {"SCSMnu", "Write CSV table file", "Node,"}};
  ASSERT_EQ(ExportCommands().size(), std::size(cases));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.control);
    const std::string file = dir.File(std::string(c.control) + ".out");
    EXPECT_FALSE(OnExportMenu(window, c.control)) << "a cancelled dialog";
    EXPECT_FALSE(FileExists(file));
    ui.dialogAnswers = {{file, FileNameOf(file)}};
    EXPECT_TRUE(OnExportMenu(window, c.control));
    EXPECT_EQ(ui.dialogRequests.back().title, c.title);
    EXPECT_EQ(ui.dialogRequests.back().initialDir, s.LastDir);
    EXPECT_EQ(dir.Read(FileNameOf(file)).rfind(c.startsWith, 0), 0u) << dir.Read(FileNameOf(file)).substr(0, 40);
  }
}

}  // namespace
}  // namespace tessiva
