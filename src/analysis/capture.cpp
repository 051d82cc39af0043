#include "analysis/capture.h"

#include <algorithm>

#include "analysis/fieldlist.h"
#include "analysis/newanalyse.h"
#include "state/files.h"
#include "state/index.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr const char* kPictureFilter = "bmp file|*.bmp";
constexpr const char* kCancelled = "Operation cancelled";
// The texts start right of the axes' corner, so that both stay readable.
constexpr int kTextLeft = kCaptureAxesSide + 4;
constexpr int kTextTop = 2;
constexpr int kOutputMarkColour = 12;
constexpr int32_t kOutputPatterns[] = {100, 110};

const std::string kLegendControls[] = {"CadreIso",      "LabEchelle(0)", "LabEchelle(1)",
                                       "LabEchelle(2)", "LabEchelle(3)", "LabEchelle(4)"};

// The legend's controls black for the copy; their colours come back when it ends.
class LegendInBlack {
 public:
  explicit LegendInBlack(ControlRegistry& controls) : controls_(controls) {
    for (size_t i = 0; i < std::size(kLegendControls); ++i) {
      kept_[i] = controls_.Get(kLegendControls[i]).foreColor;
      controls_.SetForeColor(kLegendControls[i], 0);
    }
  }
  ~LegendInBlack() {
    for (size_t i = 0; i < std::size(kLegendControls); ++i) controls_.SetForeColor(kLegendControls[i], kept_[i]);
  }
  LegendInBlack(const LegendInBlack&) = delete;
  LegendInBlack& operator=(const LegendInBlack&) = delete;

 private:
  ControlRegistry& controls_;
  std::array<int, std::size(kLegendControls)> kept_{};
};

std::string FieldNameOnShow(NewAnalyse& window) {
  const int32_t chosen = window.Controls().Get("Combo2").listIndex;
  const FieldEntry* entry = FieldAt(chosen);
  if (!entry || !entry->view) entry = FieldAt(FieldIndexOfView(window.VueCourante).value_or(-1));
  return entry ? std::string(entry->listText) : std::string();
}

std::string MemberName(NewAnalyse& window, int32_t member) {
  const AppState& s = window.State();
  if (member >= 1 && static_cast<size_t>(member) < s.DataFileName.size() && !s.DataFileName[At(member)].empty())
    return FileNameOf(s.DataFileName[At(member)]);
  return s.ResName;
}

FileDialogRequest PictureDialog(NewAnalyse& window, const std::string& title, const std::string& name) {
  FileDialogRequest request;
  request.initialDir = window.State().LastDir;
  request.defaultExt = "bmp";
  request.filter = kPictureFilter;
  request.title = title;
  request.fileName = name;
  return request;
}

void Tell(UiPort& ui, const std::string& text) { ui.MessageBox(text, "", MsgButtons::Ok, MsgIcon::Information); }

void PrintTexts(NewAnalyse& window, Canvas& map) {
  double y = map.ToUserY(kTextTop);
  for (const std::string& line : CaptureTexts(window)) {
    map.Text(map.ToUserX(kTextLeft), y, line, QBColor(0));
    y += map.TextHeight(line.empty() ? std::string("X") : line);
  }
}

}  // namespace

std::string CaptureFileName(const std::string& resultName, const std::string& fieldName,
                            const std::string& extension) {
  std::string field = fieldName;
  std::replace(field.begin(), field.end(), '/', '_');
  std::replace(field.begin(), field.end(), '\\', '_');
  const std::string stem = resultName.size() > 4 ? resultName.substr(0, resultName.size() - 4) : std::string();
  return stem + "-" + field + extension;
}

std::vector<std::string> CaptureTexts(NewAnalyse& window) {
  const ControlRegistry& c = window.Controls();
  const AppState& s = window.State();
  std::vector<std::string> lines{Trim(c.Text("Label1")), window.PickingTools().PickingExtra(true),
                                 window.PickingTools().PickingExtra(false),
                                 MemberName(window, window.CurFile) + " from " + s.PicRefName};
  if (c.Checked("Amplification")) lines.push_back("Amplification : x " + c.Text("TextMagni"));
  return lines;
}

std::optional<RgbImage> ComposeCapture(NewAnalyse& window, CapturePort& port, const CaptureParts& parts) {
  Canvas* map = window.PicAna;
  if (!map) return std::nullopt;
  ControlRegistry& c = window.Controls();
  if (parts.texts) PrintTexts(window, *map);
  const LegendInBlack black(c);
  CaptureSurfaces surfaces{map, nullptr, window.IsoPic, nullptr};
  if (parts.axes && window.Repere && c.Checked("PictureShow")) surfaces.axes = window.Repere;
  std::optional<CaptureRect> graph;
  if (window.Flc.GraphShown && window.Graphe) {
    surfaces.graph = window.Graphe;
    graph = CaptureRect{0, 0, window.Graphe->PixelWidth(), window.Graphe->PixelHeight()};
  }
  const CaptureLayout layout =
      LayOutCapture(map->PixelWidth(), map->PixelHeight(), surfaces.axes != nullptr, graph, parts.scale,
                    parts.trimFrame);
  CaptureLegendTexts legend;
  legend.caption = Trim(c.Text("CadreIso"));
  for (int j = 0; j < 5; ++j) legend.labels[j] = Trim(c.Text("LabEchelle(" + std::to_string(j) + ")"));
  legend.ink = QBColor(c.Get("CadreIso").foreColor);
  return port.Compose(layout, surfaces, legend);
}

void Film(NewAnalyse& window, CapturePort& port) {
  UiPort& ui = window.Ui();
  const auto picture = ComposeCapture(window, port);
  // The texts were printed for the copy only.
  window.PicAnaRefresh();
  if (!picture) {
    Tell(ui, "The picture could not be made");
    return;
  }
  ui.SetClipboardPicture(*picture);
  if (ui.MessageBox("The picture is sent to the clipboard\r\nDo you want to save the picture in a BMP file too ?", "",
                    MsgButtons::YesNo, MsgIcon::Question) != MsgAnswer::Yes)
    return;
  const std::string name = CaptureFileName(MemberName(window, window.CurFile), FieldNameOnShow(window), ".bmp");
  const FileDialogResult chosen = ui.SaveFileDialog(PictureDialog(window, "Save picture", name));
  if (chosen.FileName.empty()) {
    Tell(ui, kCancelled);
    return;
  }
  if (!port.Save(*picture, chosen.FileName)) Tell(ui, "The picture " + chosen.FileName + " could not be written");
}

bool Film2(NewAnalyse& window, CapturePort& port) {
  UiPort& ui = window.Ui();
  const AppState& s = window.State();
  ui.StatusLine("Save sequence in pogress, don't press any key");
  std::optional<std::string> directory;
  std::string extension = ".bmp";
  const auto stop = [&window, &ui](const std::string& message) {
    Tell(ui, message);
    window.PicAnaRefresh();
    return false;
  };
  for (int32_t member = 1; member <= s.NbSeq; ++member) {
    // A member that can't be read has been told by its reader; the others go on.
    if (!window.GoToFile(member)) continue;
    ui.DoEvents();
    const auto picture = ComposeCapture(window, port);
    if (!picture) return stop("The picture of " + MemberName(window, member) + " could not be made");
    const std::string field = FieldNameOnShow(window);
    if (!directory) {
      const FileDialogResult chosen = ui.SaveFileDialog(
          PictureDialog(window, "Choose the directory", CaptureFileName(MemberName(window, member), field, ".bmp")));
      if (chosen.FileName.empty()) return stop(kCancelled);
      directory = DirectoryOf(chosen.FileName);
      // A name ending in .png chosen here makes the whole sequence PNG.
      if (NamesPng(chosen.FileName)) extension = ".png";
    }
    const std::string path = JoinPath(*directory, CaptureFileName(MemberName(window, member), field, extension));
    if (!port.Save(*picture, path))
      return stop("The picture " + path + " could not be written; the sequence stops at this file");
  }
  Tell(ui, "Sequence saved");
  window.PicAnaRefresh();
  return true;
}

bool MarkOutputPatterns(NewAnalyse& window) {
  const AppState& s = window.State();
  Canvas* map = window.PicAna;
  if (!s.AnalyseOpen || !map || s.NbPat < 1) return false;
  const KeptDrawWidth kept(map);
  map->SetDrawWidth(2);
  bool marked = false;
  for (const int32_t i : kOutputPatterns) {
    if (i > s.NbPat) continue;
    const double x = s.XPat[At(i)], y = s.YPat[At(i)];
    map->Point(x, y, QBColor(kOutputMarkColour));
    map->Text(x, y, StrTrim(i), QBColor(kOutputMarkColour));
    marked = true;
  }
  map->Refresh();
  return marked;
}

}  // namespace tessiva
