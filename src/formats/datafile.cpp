#include "formats/datafile.h"

#include <algorithm>

#include "formats/sections.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

void WritePictures(std::string& out, const PictureNames& p) {
  AppendLine(out, "[PICTURES]");
  AppendLine(out, "; PicRef= filename of the reference picture");
  AppendKey(out, "PicRef", ToLower(p.picRef));
  AppendLine(out, "; PicDef= filename of the deformed picture");
  AppendKey(out, "PicDef", ToLower(p.picDef));
  AppendLine(out, "; Lima= width of the picture");
  AppendKey(out, "Lima ", Format(p.lima, "00000"));
  AppendLine(out, "; Hima= height of the picture");
  AppendKey(out, "Hima ", Format(p.hima, "00000"));
}

void WriteParameters(std::string& out, const Parameters& p) {
  AppendLine(out, "[PARAMETERS]");
  AppendLine(out, "; LpatMin= width and height in pixel of one pattern");
  AppendKey(out, "LpatMin", Format(p.lpatMin, "00  "));
  AppendLine(out, "; LpatMax= width and height in pixel of one pattern which");
  AppendLine(out, ";          used if there is no valid solution with LpatMin value");
  AppendKey(out, "LpatMax", Format(p.lpatMax, "00  "));
  AppendLine(out, "; Lgrid= step in pixel which is used to displace one pattern in the work area");
  AppendKey(out, "Lgrid", Format(p.lgrid, "00  "));
  AppendLine(out, "; Interpolation=0 for bilinear interpolation ");
  AppendLine(out, "; Interpolation=1 for spline interpolation ");
  AppendKey(out, "Interpolation", Format(p.interpolation, "00  "));
  AppendLine(out, "; Correlation=0 for square correlation coefficient");
  AppendLine(out, "; Correlation=1 for crossed correlation coefficient");
  AppendKey(out, "Correlation", Format(p.correlation, "00  "));
  AppendLine(out, "; LargeStrain=0 if strain are lower than 50 %");
  AppendLine(out, "; LargeStrain=1 if strain are greater than 50 %");
  AppendKey(out, "LargeStrain", Format(p.largeStrain, "00  "));
  AppendLine(out, "; Precision=the inverse displacement calulation accuracy in pixel (between 1 and 100)");
  AppendKey(out, "Precision", Format(p.precision, "0000  "));
}

// Patterns the solver is told to leave out, numbered anew; the count comes last.
void WriteBadPatterns(std::string& out, const std::vector<int32_t>& bad) {
  if (bad.empty()) return;
  AppendLine(out, "[BADPATTERN]");
  AppendLine(out, "; This section gives a list of pattern which are considered as wrong");
  AppendLine(out, "; due to their grey level uniformity");
  for (size_t k = 0; k < bad.size(); ++k)
    AppendKey(out, NumberedKey("Bad", static_cast<int32_t>(k + 1)), Format(bad[k], "0000  "));
  AppendKey(out, "NbPatBad", Format(static_cast<double>(bad.size()), "000000  "));
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

}  // namespace

Parsed<DataFileContent> ParseDataFile(std::string_view text) {
  const KeyFile keys = KeyFile::Parse(text);
  DataFileContent c;
  c.date = ReadReleaseDate(keys);
  auto pictures = ReadPictureNames(keys);
  if (!pictures) return pictures.Error();
  c.pictures = *pictures;
  c.parameters = ReadParameters(keys);
  auto areas = ReadAreaContent(keys, FileKind::DataFile);
  if (!areas) return areas.Error();
  c.areas = std::move(*areas);
  return c;
}

DataFileContent DataFileContentOf(const AppState& s, int32_t areaSlots, const GageStore& gages, ExtraValues extra) {
  DataFileContent c;
  c.version = s.Title;
  c.pictures = {s.PicRefName, s.PicDefName, std::nullopt, s.Lima, s.Hima};
  c.parameters = ParametersOf(s);
  c.areas = AreaContentOf(s, areaSlots, gages, std::move(extra));
  if (s.NbPatBad != 0) {
    const int32_t listed = std::clamp(s.NbPatBad, 0, static_cast<int32_t>(s.BadPat.size()) - 1);
    for (int32_t k = 1; k <= listed; ++k)
      if (s.BadPat[static_cast<size_t>(k)] != 0) c.badPatterns.push_back(s.BadPat[static_cast<size_t>(k)]);
  }
  return c;
}

std::string DataFileText(const DataFileContent& c) {
  std::string out;
  AppendBanner(out, c.version);
  WritePictures(out, c.pictures);
  WriteParameters(out, c.parameters);
  WriteAreaContent(out, c.areas, false);
  WriteBadPatterns(out, c.badPatterns);
  WriteResultsDescription(out);
  return out;
}

}  // namespace tessiva
