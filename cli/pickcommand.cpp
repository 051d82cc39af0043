#include "pickcommand.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <set>
#include <string_view>

#include "analysis/analysisfiles.h"
#include "analysis/fieldlist.h"
#include "analysis/newanalyse.h"
#include "commands.h"
#include "mapcommand.h"
#include "options.h"
#include "results/fieldmap.h"
#include "results/ranges.h"
#include "headlessanalysis.h"
#include "state/files.h"
#include "state/index.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva::cli {
namespace {

// The tools by the names the command line gives them, with their tool bar keys.
struct CliTool {
  std::string_view name;
  std::string_view key;
};
constexpr std::array<CliTool, 6> kTools{{{"point", "point"},
                                         {"line", "trait"},
                                         {"rectangle", "rectangle"},
                                         {"slider", "slider"},
                                         {"gauge", "jauge"},
                                         {"rosette", "rosette"}}};

const CliTool* ToolOfName(std::string_view name) {
  for (const CliTool& tool : kTools)
    if (tool.name == name) return &tool;
  return nullptr;
}

std::string NameOfKey(std::string_view key) {
  for (const CliTool& tool : kTools)
    if (tool.key == key) return std::string(tool.name);
  return std::string(key);
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines = SplitText(text, "\r\n");
  while (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

std::string CsvRow(std::vector<std::string> fields) {
  for (std::string& field : fields) field = Trim(field);
  return JoinedFields(fields, true) + '\n';
}

// The unit a column of the collector's tables is in, by the column's head.
// Positions and displacements are in the calibration's units, strains in
// percent, angles in degrees, gauge lengths in pixels; ratios have none.
std::string ColumnUnit(const std::string& head, const UnitNames& units) {
  static const std::set<std::string> strains{"Epsi 1", "Epsi 2",  "Epsi 3", "Epsi 11", "Epsi 22", "Epsi 12",
                                             "E1",     "E2",      "Epsi11", "Epsi12",  "Epsi22"};
  if (head == "X" || head == "Displ.1") return units.x;
  if (head == "Y" || head == "Displ.2") return units.y;
  if (head == "Ds" || head == "Norm") return units.norm;
  if (strains.contains(head)) return "%";
  if (head == "Teta") return "deg";
  if (head == "Lini" || head == "Lfin") return "px";
  return {};
}

std::string WithUnit(const std::string& name, const std::string& unit) {
  return unit.empty() ? name : name + " (" + (unit == "Degrees" ? "deg" : unit) + ")";
}

class Picker {
 public:
  Picker(const PickRequest& request, std::ostream& err) : request_(request), err_(err) {}

  int Run(std::ostream& out) {
    // The working copy of the selection and the names list go to the scratch directory.
    if (!h_.Open(request_.input, "", err_)) return kFailed;
    if (!Read(1)) return kFailed;
    window_.OnCombo2Click(request_.field);
    if (!h_.ChooseField(request_.field, err_)) return kFailed;
    for (size_t i = 0; i + 1 < request_.at.size(); i += 2)
      if (!OnPicture(request_.at[i], request_.at[i + 1])) return kFailed;
    extrasCount_ = window_.Controls().Get("Combo3").items.size();
    window_.OnToolbar1Click(request_.toolKey);
    Select();
    if (!SelectionMade()) return kFailed;
    for (int32_t i = 1; i <= s_.NbSeq; ++i) {
      if (i > 1) {
        if (!Read(i)) return kFailed;
        window_.AfterFileChange();
        MemberGaveRows(i);
      }
      Keep(i);
    }
    if (request_.csv) {
      out << Csv();
    } else if (PerMember()) {
      for (const std::string& text : tables_) out << text;
    } else {
      out << window_.Info.DataText();
    }
    return kDone;
  }

 private:
  bool IsTool(std::string_view key) const { return request_.toolKey == key; }
  bool IsGauge() const { return IsTool("slider") || IsTool("jauge") || IsTool("rosette"); }
  // A line and a rectangle start their table again on each member.
  bool PerMember() const { return IsTool("trait") || IsTool("rectangle"); }

  int Fail(const std::string& message) {
    err_ << message << '\n';
    return kFailed;
  }

  std::string Member(int32_t i) const { return s_.DataFileName[At(i)]; }

  bool Read(int32_t i) {
    h_.ui.clipboardText.clear();
    return h_.ReadMember(i, err_);
  }

  // The pointer ignores positions off the picture; here they are refused.
  bool OnPicture(double x, double y) {
    const double rx = Round(x), ry = Round(y);
    if (rx >= 0 && rx <= s_.Lima && ry >= 0 && ry <= s_.Hima) return true;
    Fail("The position " + StrTrim(x) + "," + StrTrim(y) + " lies off the picture of " + Member(1) + " (0 to " +
         StrTrim(s_.Lima) + " by 0 to " + StrTrim(s_.Hima) + " pixels)");
    return false;
  }

  // Press at the first position, drag to the last and release there.
  void Select() {
    const std::vector<double>& a = request_.at;
    const double x2 = a[a.size() - 2], y2 = a.back();
    window_.OnPicAnaMouseDown(kLeftButton, 0, a[0], a[1]);
    window_.OnPicAnaMouseMove(kLeftButton, 0, x2, y2);
    window_.OnPicAnaMouseUp(kLeftButton, 0, x2, y2);
  }

  std::string Where() const {
    std::string where;
    for (size_t i = 0; i + 1 < request_.at.size(); i += 2)
      where += (i ? " to " : "") + StrTrim(request_.at[i]) + "," + StrTrim(request_.at[i + 1]);
    return where;
  }

  // The selection on the first member, and its first rows; a selection that
  // gives none is refused with the reason.
  bool SelectionMade() {
    Picking& pick = window_.PickingTools();
    const std::string tool = NameOfKey(request_.toolKey);
    if (IsGauge()) {
      if (pick.JaugeCtrl1.JaugeCount() == 0) {
        Fail("A " + tool + " from " + Where() + " is shorter than the grid step (" + StrTrim(s_.Lpas) +
             " pixels): it makes no gauge");
        return false;
      }
      if (!GaugeOnMesh()) {
        Fail("A corner of the " + tool + " from " + Where() + " lies where no pattern of " + Member(1) +
             " is, so it can't be read");
        return false;
      }
      return true;
    }
    if (IsTool("point")) {
      if (pick.NboxAOS() == kAosPoint) return true;
      Fail("No pattern of " + Member(1) + " covers the point " + Where() + ": it gives no row");
      return false;
    }
    if (pick.NboxAOS() == kAosNone) {
      Fail("The " + tool + " from " + Where() + " is shorter than three grid steps (" + StrTrim(3 * s_.Lpas) +
           " pixels): it makes no selection");
      return false;
    }
    if (IsTool("trait") && !ProfileHasRows()) {
      Fail("The line from " + Where() + " crosses no pattern of " + Member(1) + ": it gives no row");
      return false;
    }
    return true;
  }

  bool ProfileHasRows() const {
    const Collector& info = window_.Info;
    return info.DataText().size() > info.TitreInfo.size() + info.ColonnesInfo.size();
  }

  // The corners of the last gauge's box all lie on the mesh.
  bool GaugeOnMesh() {
    const JaugeCtrl& gauges = window_.PickingTools().JaugeCtrl1;
    const int32_t i = gauges.JaugeCount();
    const double x1 = gauges.JaugeXDep(i), y1 = gauges.JaugeYDep(i);
    const double x2 = gauges.JaugeXArr(i), y2 = gauges.JaugeYArr(i);
    for (const auto& [x, y] : {std::pair{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}})
      if (window_.DonneIso(x, y, kViewU) == kFenceValue) return false;
    return true;
  }

  // A later member that gives no row, or a gauge row of no meaning, is said
  // on standard error; the table goes on.
  void MemberGaveRows(int32_t i) {
    const std::string warning = "tessiva-cli: warning: ";
    if (IsGauge()) {
      if (window_.PickingTools().JaugeCtrl1.JaugeCount() > 0 && !GaugeOnMesh())
        err_ << warning << "a corner of the gauge lies where no pattern of " << Member(i)
             << " is; its row holds no measure\n";
    } else if (IsTool("point")) {
      if (window_.Info.DataText().size() == collected_) err_ << warning << "no pattern of " << Member(i)
                                                             << " covers the point; it gives no row\n";
    } else if (IsTool("trait") && !ProfileHasRows()) {
      err_ << warning << "the line crosses no pattern of " << Member(i) << "; its table is empty\n";
    }
  }

  void Keep(int32_t i) {
    collected_ = window_.Info.DataText().size();
    if (IsTool("trait")) tables_.push_back(window_.Info.DataText());
    if (IsTool("rectangle")) tables_.push_back(h_.ui.clipboardText);
    members_.push_back(Member(i));
  }

  UnitNames Units() const {
    const std::string norm =
        s_.UnitNameX == s_.UnitNameY ? s_.UnitNameX : "sqr(" + s_.UnitNameX + " x " + s_.UnitNameY + ")";
    return UnitNames{s_.UnitNameX, s_.UnitNameY, norm};
  }

  std::string FieldHead() const {
    const FieldEntry* entry = FieldAt(request_.field);
    return WithUnit(std::string(entry->listText), FieldUnit(*entry, Units()));
  }

  std::string Csv() const { return IsTool("rectangle") ? RectangleCsv() : TableCsv(); }

  // One row a cell: the member, the cell's position and the value there,
  // empty where no pattern lies.
  std::string RectangleCsv() const {
    const UnitNames units = Units();
    std::string csv = CsvRow({"File", WithUnit("X", units.x), WithUnit("Y", units.y), FieldHead()});
    for (size_t m = 0; m < tables_.size(); ++m) {
      const std::vector<std::string> lines = Lines(tables_[m]);
      if (lines.size() < 2) continue;
      const std::vector<std::string> ys = SplitText(lines[1], "\t");
      for (size_t r = 2; r < lines.size(); ++r) {
        const std::vector<std::string> cells = SplitText(lines[r], "\t");
        for (size_t j = 1; j < cells.size() && j < ys.size(); ++j) csv += CsvRow({members_[m], cells[0], ys[j], cells[j]});
      }
    }
    return csv;
  }

  // The collector's columns with their units; the rule over the file names
  // becomes "File", and the extra values' place is dropped when there are
  // none. A line's rows, which name no file, are given their member's.
  std::string TableCsv() const {
    const bool line = IsTool("trait");
    const std::vector<std::string>& texts = line ? tables_ : std::vector<std::string>{window_.Info.DataText()};
    const std::vector<std::string> columns = SplitText(Lines(window_.Info.ColonnesInfo).at(0), "\t");
    const size_t lead = line ? 0 : 1, extras = std::max<size_t>(1, extrasCount_);
    const UnitNames units = Units();
    std::vector<std::string> head;
    if (line) head.push_back("File");
    for (size_t c = 0; c < columns.size(); ++c) {
      const std::string name = Trim(columns[c]);
      if (c < lead) {
        head.push_back("File");
      } else if (c < lead + extras) {
        if (extrasCount_ > 0) head.push_back(name);
      } else {
        head.push_back(name == "Value" ? FieldHead() : WithUnit(name, ColumnUnit(name, units)));
      }
    }
    std::string csv = CsvRow(head);
    for (size_t m = 0; m < texts.size(); ++m) {
      const std::vector<std::string> lines = Lines(texts[m]);
      for (size_t r = 2; r < lines.size(); ++r) {
        std::vector<std::string> fields = SplitText(lines[r], "\t");
        if (extrasCount_ == 0 && fields.size() > lead) fields.erase(fields.begin() + static_cast<std::ptrdiff_t>(lead));
        if (line) fields.insert(fields.begin(), members_[m]);
        csv += CsvRow(fields);
      }
    }
    return csv;
  }

  const PickRequest& request_;
  std::ostream& err_;
  HeadlessAnalysis h_;
  AppState& s_ = h_.s;
  NewAnalyse& window_ = h_.window;
  size_t extrasCount_ = 0;
  size_t collected_ = 0;
  // The file name of each member, and for a line or a rectangle its table.
  std::vector<std::string> members_;
  std::vector<std::string> tables_;
};

}  // namespace

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + '"';
}

std::string JoinedFields(const std::vector<std::string>& fields, bool csv) {
  std::string row;
  for (size_t i = 0; i < fields.size(); ++i) row += (i ? (csv ? "," : "\t") : "") + (csv ? CsvField(fields[i]) : fields[i]);
  return row;
}

namespace {

std::string ToolNames() {
  std::string names;
  for (const CliTool& t : kTools) names += (names.empty() ? "" : ", ") + std::string(t.name);
  return names;
}

// The field must give the tool something to read, and --at as many positions as the tool takes.
void CheckPick(const PickRequest& request) {
  const std::string tool = NameOfKey(request.toolKey);
  const FieldEntry* entry = FieldAt(request.field);
  if (entry->view == kViewFlcDiagram || entry->view == kViewFlcDetermination)
    Refuse("the picking tools don't work on the " + std::string(entry->listText) + " view");
  // The meshes and the vectors are drawings: the point, line and rectangle read no value from them.
  const bool readsField = request.toolKey == "point" || request.toolKey == "trait" || request.toolKey == "rectangle";
  if (readsField && (entry->view == kViewDeformedMesh || entry->view == kViewVectors))
    Refuse("the " + tool + " reads no value from the " + std::string(entry->listText) + " view; give a field");
  const bool point = request.toolKey == "point";
  if (request.at.size() != (point ? 2u : 4u))
    Refuse("the " + tool + " takes " + (point ? "one position, --at X,Y" : "two positions, --at X1,Y1,X2,Y2"));
}

}  // namespace

CLI::App* AddPickCommand(CLI::App& app, PickRequest& request) {
  CLI::App* command = app.add_subcommand("pick", "uses a picking tool of the analysis window and prints its table");
  command->footer(
      "On a result, or on each member of a sequence in turn, the table the data collector makes: tab\n"
      "separated with CR LF line ends as the window gives it, or CSV. The selection is made on the first\n"
      "member, then replayed on each following one: a point and a gauge add one row per member, a line\n"
      "and a rectangle give one table per member. A rosette is the square of the larger side to the lower\n"
      "right of the start.");
  command->add_option("INPUT", request.input, "a result (.res) or a sequence (.seq)")
      ->required()
      ->type_name("")
      ->check(Found());
  const auto tool = [&request](const std::string& name) {
    const CliTool* chosen = ToolOfName(name);
    if (!chosen) Refuse("unknown tool " + name + "; the tools are " + ToolNames());
    request.toolKey = chosen->key;
  };
  command->add_option_function<std::string>("--tool", tool, ToolNames() + " (a linear strain gage: gauge)")
      ->type_name("TOOL")
      ->required()
      ->check(AValue());
  AddPositions(*command, "--at", "X1,Y1[,X2,Y2]", std::nullopt,
               "picture pixels, as the pointer gives them: the point, or where the drag starts and ends",
               [&request](const std::vector<double>& at) { request.at = at; })
      ->required();
  AddFieldOption(*command, request.field, "the field, as map --list-fields names it, case ignored")->required();
  command->add_flag("--csv", request.csv,
                    "comma separated, a header naming each column with its unit, LF line ends; a rectangle gives one "
                    "row a cell: file, X, Y, value");
  command->callback([&request] { CheckPick(request); });
  return command;
}

int RunPick(const PickRequest& request, std::ostream& out, std::ostream& err) {
  return Picker(request, err).Run(out);
}

}  // namespace tessiva::cli
