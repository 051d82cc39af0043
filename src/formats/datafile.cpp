#include "formats/datafile.h"

#include <algorithm>

#include "formats/sections.h"
#include "setup/areaform.h"
#include "state/files.h"
#include "state/keyfile.h"
#include "state/numtext.h"
#include "state/param.h"

namespace tessiva {
namespace {

// Key defaults that mean "no value" in the outline and start-point sections.
constexpr int32_t kCoordinateMissing = -10000;
constexpr int32_t kStartMissing = -1;

size_t At(int32_t i) { return static_cast<size_t>(i); }

bool IsMember(const AppState& s, int index) {
  return index >= 1 && At(index) < s.DataFilePath.size() && At(index) < s.DataFileName.size();
}

// Step 1 of a save: a name typed in Text1 renames the data file once the user agrees.
void AskForRename(AreaForm& form, int index) {
  AppState& s = form.State();
  std::string typed = Trim(form.Controls().Text("Text1"));
  if (typed == s.DataFileName[At(index)]) return;
  const MsgAnswer answer = form.Ui().MessageBox("Do you really want to change the name of the data file ?",
                                                "WARNING", MsgButtons::YesNo, MsgIcon::Question);
  if (answer != MsgAnswer::Yes) return;
  if (typed.size() < 4 || ToLower(typed.substr(typed.size() - 4)) != ".don") typed += ".don";
  s.DataFileName[At(index)] = typed;
  s.DataFilePath[At(index)] = JoinPath(s.LastDir, typed);
}

void WritePicturesSection(std::string& out, const AppState& s) {
  AppendLine(out, "[PICTURES]");
  AppendLine(out, "; PicRef= filename of the reference picture");
  AppendKey(out, "PicRef", ToLower(s.PicRefName));
  AppendLine(out, "; PicDef= filename of the deformed picture");
  AppendKey(out, "PicDef", ToLower(s.PicDefName));
  AppendLine(out, "; Lima= width of the picture");
  AppendKey(out, "Lima ", Format(s.Lima, "00000"));
  AppendLine(out, "; Hima= height of the picture");
  AppendKey(out, "Hima ", Format(s.Hima, "00000"));
}

void WriteParametersSection(std::string& out, const AppState& s) {
  AppendLine(out, "[PARAMETERS]");
  AppendLine(out, "; LpatMin= width and height in pixel of one pattern");
  AppendKey(out, "LpatMin", Format(s.LpatMin, "00  "));
  AppendLine(out, "; LpatMax= width and height in pixel of one pattern which");
  AppendLine(out, ";          used if there is no valid solution with LpatMin value");
  AppendKey(out, "LpatMax", Format(s.LpatMax, "00  "));
  AppendLine(out, "; Lgrid= step in pixel which is used to displace one pattern in the work area");
  AppendKey(out, "Lgrid", Format(s.Lgrid, "00  "));
  AppendLine(out, "; Interpolation=0 for bilinear interpolation ");
  AppendLine(out, "; Interpolation=1 for spline interpolation ");
  AppendKey(out, "Interpolation", Format(s.Interpolation, "00  "));
  AppendLine(out, "; Correlation=0 for square correlation coefficient");
  AppendLine(out, "; Correlation=1 for crossed correlation coefficient");
  AppendKey(out, "Correlation", Format(s.Correlation, "00  "));
  AppendLine(out, "; LargeStrain=0 if strain are lower than 50 %");
  AppendLine(out, "; LargeStrain=1 if strain are greater than 50 %");
  AppendKey(out, "LargeStrain", Format(s.LargeStrain, "00  "));
  AppendLine(out, "; Precision=the inverse displacement calulation accuracy in pixel (between 1 and 100)");
  AppendKey(out, "Precision", Format(s.Precision, "0000  "));
}

// Patterns the solver is told to leave out; the list is numbered anew over the
// entries that name a pattern, and its count comes last.
void WriteBadPatternSection(std::string& out, const AppState& s) {
  if (s.NbPatBad == 0) return;
  AppendLine(out, "[BADPATTERN]");
  AppendLine(out, "; This section gives a list of pattern which are considered as wrong");
  AppendLine(out, "; due to their grey level uniformity");
  const int32_t listed = std::clamp(s.NbPatBad, 0, static_cast<int32_t>(s.BadPat.size()) - 1);
  int32_t n = 0;
  for (int32_t k = 1; k <= listed; ++k) {
    if (s.BadPat[At(k)] == 0) continue;
    AppendKey(out, NumberedKey("Bad", ++n), Format(s.BadPat[At(k)], "0000  "));
  }
  AppendKey(out, "NbPatBad", Format(n, "000000  "));
}

void WriteResultsDescription(std::string& out) {
  static constexpr const char* kLines[] = {
      ";[RESULTS] This section gives the displacement field between PicRef and PicDef",
      ";          The displacement field has the following description :",
      ";          d1=au.x+bu.y+cu.xy+du",
      ";          d2=av.x+bv.y+cv.xy+dv",
      ";under [RESULTS] section, each pattern has four lines as shown in this example :",
      "; -1 48 49 3.035839 0.707151",
      ";  1.481084 9.320356 -7.751096 -0.427107",
      ";  0.828280 2.993636 -1.123822 -0.922852",
      ";  1 8 0",
      ";The first line gives a flag equal to -1 if the calculation is good and equal to 0 if not",
      ";then, the X, Y coordinates of the center of the pattern are given followed by the displacement d1 and d2 for "
      "this point",
      ";then, the au bu cu du coefficients",
      ";then, the av bv cv dv coefficients",
      ";the fourth line is reserved for Tessiva",
  };
  for (const char* line : kLines) AppendLine(out, line);
}

std::string DataFileText(AreaForm& form) {
  const AppState& s = form.State();
  std::string out;
  BanniereFichier(out, s);
  WritePicturesSection(out, s);
  WriteParametersSection(out, s);
  WriteGagesSection(out, form.Gages());
  WriteOutlinesSection(out, s, s.NbBox);
  WriteStartPointsSection(out, s);
  WriteExtraSection(out, form.Controls());
  WriteUnitSection(out, s);
  WriteMaterialSection(out, s);
  WriteClfAndFissureSections(out, s);
  WriteBadPatternSection(out, s);
  WriteResultsDescription(out);
  return out;
}

// The reading of one data file, step by step; every step reads by key.
class DataFileReader {
 public:
  DataFileReader(AreaForm& form, int index) : form_(form), s_(form.State()), index_(index) {}

  // True when the file was read to its end, or to the end of its header.
  bool Read(bool headerOnly) {
    s_.DataFile = s_.DataFilePath[At(index_)];
    ReadReleaseDate();
    if (!ReadPictureNames() || !form_.LoadPictures()) return false;
    form_.Controls().SetText("Text1", s_.DataFileName[At(index_)]);
    if (index_ == 1) ReadParameters();
    s_.Lpat = s_.LpatMin;
    s_.Lpas = 2 * (s_.Lgrid / 2);
    AllocPat(s_);
    form_.DeleteAOI();
    ReadUnitSection(s_, form_.Controls(), File());
    ReadExtraSection(form_.Controls(), File());
    if (headerOnly) return true;
    ReadMaterialSection(s_, File());
    ReadClfSection(s_, File());
    ReadFissureSection(s_, File());
    form_.Parameters().ParamShow();
    ReadOutlines();
    ReadGagesIntoForm(form_, File(), 0);
    form_.CreateRectArea();
    form_.AreAPicRefRefresh();
    form_.AreAPicDefRefresh();
    ReadStartPoints();
    if (s_.NbStart != 0) ShowStartPoints();
    return true;
  }

 private:
  const std::string& File() const { return s_.DataFile; }

  // Files made before the key existed count as made today.
  void ReadReleaseDate() {
    s_.FileDate = GetPrivateProfileIntA("RELEASE", "date", -1, File());
    if (s_.FileDate == -1) s_.FileDate = TodayNumber();
  }

  bool ReadPictureNames() {
    const SectionReader pictures("PICTURES", File());
    const auto ref = pictures.Text("PicRef");
    const auto def = pictures.Text("PicDef");
    if (!ref || !def) return false;
    s_.PicRefName = *ref;
    s_.PicDefName = *def;
    s_.PicRefPath = JoinPath(s_.LastDir, *ref);
    s_.PicDefPath = JoinPath(s_.LastDir, *def);
    return true;
  }

  // Pattern sizes, grid step and precision set beforehand win over the file;
  // the three switches always come from it.
  void ReadParameters() {
    const SectionReader parameters("PARAMETERS", File());
    if (s_.LpatMin == 0) s_.LpatMin = parameters.Int("LpatMin", 9);
    if (s_.LpatMax == 0) s_.LpatMax = parameters.Int("LpatMax", 9);
    if (s_.Lgrid == 0) s_.Lgrid = parameters.Int("Lgrid", 9);
    s_.Interpolation = parameters.Int("Interpolation", 1);
    s_.Correlation = parameters.Int("Correlation", 1);
    s_.LargeStrain = parameters.Int("LargeStrain", 0);
    if (s_.Precision == 0) s_.Precision = parameters.Int("Precision", 100);
  }

  // A tagged area (one a gauge made) isn't read back: its slot stays empty and
  // the count of areas drops, so the gauge lays it again.
  void ReadOutlines() {
    const SectionReader outlines("OUTLINES", File());
    const int32_t number = CheckedCount(outlines.Int("Number", 0), 0, AppState::kMaxAreas);
    int32_t count = number;
    for (int32_t i = 1; i <= number; ++i) {
      s_.TagBox[At(i)] = outlines.Int(NumberedKey("TagBox", i), -1);
      if (s_.TagBox[At(i)] != 0 && s_.TagBox[At(i)] != -1) {
        --count;
        continue;
      }
      s_.Nbox[At(i)] = CheckedCount(outlines.Int(NumberedKey("Nbox", i), 0), 0, AppState::kMaxVertices);
      for (int32_t j = 1; j <= s_.Nbox[At(i)]; ++j) {
        s_.XBox[At(i)][At(j)] = outlines.Int(NumberedKey("x", i, j), kCoordinateMissing);
        if (s_.XBox[At(i)][At(j)] != kCoordinateMissing)
          s_.YBox[At(i)][At(j)] = outlines.Int(NumberedKey("y", i, j), kCoordinateMissing);
      }
    }
    s_.NbBox = count + 1;
  }

  // Only -10000 marks an unknown displacement: a start point without it is
  // not solved, and the search starts again from it.
  void ReadStartPoints() {
    const SectionReader start("STARTPOINTS", File());
    SetStartPointCount(s_, CheckedCount(start.Int("Number", 0), 0, AppState::kMaxStartPoints));
    for (int32_t i = 1; i <= s_.NbStart; ++i) {
      if ((s_.XStart[At(i)] = start.Int(NumberedKey("x", i), kStartMissing)) == kStartMissing) continue;
      if ((s_.YStart[At(i)] = start.Int(NumberedKey("y", i), kStartMissing)) == kStartMissing) continue;
      s_.StartOk[At(i)] = true;
      s_.CurStart = i;
      s_.DuStart[At(i)] = start.Int(NumberedKey("du", i), kCoordinateMissing);
      if (s_.DuStart[At(i)] == kCoordinateMissing) MarkUnsolved(i);
      s_.DvStart[At(i)] = start.Int(NumberedKey("dv", i), kCoordinateMissing);
      if (s_.DvStart[At(i)] == kCoordinateMissing) MarkUnsolved(i);
    }
  }

  void MarkUnsolved(int32_t i) {
    s_.StartOk[At(i)] = false;
    if (i < s_.CurStart || s_.CurStart == 0) s_.CurStart = i;
  }

  void ShowStartPoints() {
    form_.AreAPicRefRefresh();
    form_.AreAPicDefRefresh();
    form_.ShowStartPointsDefined();
    const auto solved = std::find(s_.StartOk.begin() + 1, s_.StartOk.end(), true);
    if (solved != s_.StartOk.end()) form_.PropagArea();
  }

  AreaForm& form_;
  AppState& s_;
  int index_;
};

}  // namespace

std::string NotRightFormattedMessage(const std::string& path) {
  return "This file :" + path + " is not right formatted, no data could be retrieved from this file";
}

void BanniereFichier(std::string& out, const AppState& s) {
  static constexpr const char* kBanner[] = {
      "; Tessiva RESULTS",
      "; Tessiva Workbench",
      "; 1 Correlation Street",
      "; 00000 Imageville",
      "; Tel: +00 0 00 00 00 00",
      "; mail: support@tessiva.org  web: tessiva.org",
      "; ",
      "; Please report bugs to support@tessiva.org",
  };
  for (const char* line : kBanner) AppendLine(out, line);
  AppendLine(out, "[RELEASE]");
  AppendLine(out, ";Don't modify this section");
  AppendKey(out, "name", "Tessiva");
  AppendKey(out, "version", s.Title);
  AppendKey(out, "date", TodayText());
}

bool SauveDonArea(AreaForm& form, int index) {
  AppState& s = form.State();
  try {
    if (!IsMember(s, index)) return false;
    AskForRename(form, index);
    s.DataFile = s.DataFilePath[At(index)];
    form.Parameters().ParamRead();
    // The free slot of memory isn't an area of the file. With forming-limit data
    // the slot is written too, as an area without points.
    if (!s.ClfMode) s.NbBox = std::max(0, s.NbBox - 1);
    if (!WriteFileAtomically(s.DataFile, DataFileText(form))) {
      form.Ui().StatusLine(s.DataFile + " could not be written");
      return false;
    }
    form.Ui().StatusLine(s.DataFile + " successfully written");
    return true;
  } catch (...) {
    form.Ui().StatusLine(s.DataFile + " could not be written");
    return false;
  }
}

bool LecDonArea(AreaForm& form, int index, bool headerOnly) {
  AppState& s = form.State();
  if (!IsMember(s, index)) return false;
  BusyPointer busy(form.Ui());
  bool read = false;
  try {
    read = DataFileReader(form, index).Read(headerOnly);
  } catch (...) {
    read = false;
  }
  if (!read && !s.DataFile.empty()) form.Ui().StatusLine(NotRightFormattedMessage(s.DataFile));
  return read;
}

}  // namespace tessiva
