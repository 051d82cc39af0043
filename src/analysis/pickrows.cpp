#include "analysis/pickrows.h"

#include <cmath>
#include <cstdlib>

#include "results/fieldmap.h"
#include "results/ranges.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr const char* kEnd = "\r\n";
constexpr const char* kColumnX = "    X     ";
constexpr const char* kColumnY = "    Y     ";
// Neither side of a rectangle table holds more than about this many samples.
constexpr double kRectangleSamples = 30.0;

constexpr std::array<PickToolKey, 6> kTools{{
    {"point", "Picking of one point", kPickPoint, 4},
    {"trait", "Picking along a line", kPickLine, 5},
    {"rectangle", "Picking rectangle area", kPickRectangle, 6},
    {"slider", "Picking with a slider", kPickSlider, 7},
    {"jauge", "Picking with a linear strain gage", kPickGage, 8},
    {"rosette", "Picking with a rosette strain gage", kPickRosette, 9},
}};

std::string Joined(std::initializer_list<std::string_view> fields) {
  std::string line;
  bool first = true;
  for (const std::string_view field : fields) {
    if (!first) line += '\t';
    line += field;
    first = false;
  }
  return line + kEnd;
}

// ", " then the field's name and unit; a group names its measure instead.
std::string FieldPart(const HeadContext& head, bool groups) {
  const FieldGroup group = groups ? FieldGroupOf(head.view) : FieldGroup::Single;
  switch (group) {
    case FieldGroup::Displacement:
      return ", Displacements in " + head.units.x;
    case FieldGroup::Hencky:
      return ", Hencky Strain in %";
    case FieldGroup::GreenLagrange:
      return ", Green Lagrange Strain in %";
    case FieldGroup::Single:
      break;
  }
  const auto index = FieldIndexOfView(head.view);
  const FieldEntry* entry = index ? FieldAt(*index) : nullptr;
  if (!entry) return ", ";
  return ", " + std::string(entry->scaleName) + " in " + FieldUnit(*entry, head.units);
}

std::array<std::string_view, 3> GroupColumns(int32_t view) {
  switch (FieldGroupOf(view)) {
    case FieldGroup::Displacement:
      return {"   Displ.1", "   Displ.2", "   Norm   "};
    case FieldGroup::Hencky:
      return {"   Epsi 1 ", "   Epsi 2 ", "   Epsi 3 "};
    case FieldGroup::GreenLagrange:
      return {"   Epsi 11", "   Epsi 22", "   Epsi 12"};
    case FieldGroup::Single:
      break;
  }
  return {"   Value  ", "", ""};
}

void AddGroupColumns(std::string& line, int32_t view) {
  line.resize(line.size() - 2);  // the CR LF
  for (const std::string_view column : GroupColumns(view))
    if (!column.empty()) line += "\t" + std::string(column);
  line += kEnd;
}

void AddValues(std::string& row, const std::vector<double>& values, const std::string& format) {
  for (const double value : values) row += "\t" + Format(value, format);
  row += kEnd;
}

}  // namespace

const std::array<PickToolKey, 6>& PickToolKeys() { return kTools; }

const PickToolKey* PickToolOfKey(std::string_view key) {
  for (const PickToolKey& tool : kTools)
    if (tool.key == key) return &tool;
  return nullptr;
}

const PickToolKey* PickToolOfCode(int32_t code) {
  for (const PickToolKey& tool : kTools)
    if (tool.tool == code) return &tool;
  return nullptr;
}

FieldGroup FieldGroupOf(int32_t view) {
  switch (view) {
    case kViewU:
    case kViewV:
    case kViewNorm:
      return FieldGroup::Displacement;
    case kViewH1:
    case kViewH2:
    case kViewH3:
      return FieldGroup::Hencky;
    case kViewE11:
    case kViewE22:
    case kViewE12:
      return FieldGroup::GreenLagrange;
    default:
      return FieldGroup::Single;
  }
}

std::vector<RowField> RowFields(int32_t view, double unitPX, double unitPY) {
  switch (FieldGroupOf(view)) {
    case FieldGroup::Displacement:
      return {{kViewU, unitPX}, {kViewV, unitPY}, {kViewNorm, std::sqrt(unitPY * unitPX)}};
    case FieldGroup::Hencky:
      return {{kViewH1, 1.0}, {kViewH2, 1.0}, {kViewH3, 1.0}};
    case FieldGroup::GreenLagrange:
      return {{kViewE11, 1.0}, {kViewE22, 1.0}, {kViewE12, 1.0}};
    case FieldGroup::Single:
      break;
  }
  return {{view, 1.0}};
}

// The point's title has no file name: each of its rows starts with one. The
// line's keeps the name of the member on show when the tool was armed.
std::string PickTitle(int32_t tool, const HeadContext& head) {
  switch (tool) {
    case kPickPoint:
      return head.fileTitle + FieldPart(head, true) + kEnd;
    case kPickLine:
      return head.fileTitle + ", " + head.fileName + FieldPart(head, true) + kEnd;
    case kPickRectangle:
      return head.fileTitle + ", " + head.fileName + FieldPart(head, false) + kEnd;
    case kPickSlider:
    case kPickGage:
    case kPickRosette:
      return head.fileTitle + kEnd;
    default:
      return {};
  }
}

std::string PickColumns(int32_t tool, const HeadContext& head) {
  const std::string rule(head.fileTitle.size(), '_');
  const std::string& extras = head.extrasHead;
  std::string line;
  switch (tool) {
    case kPickPoint:
      line = Joined({rule, extras, kColumnX, kColumnY});
      AddGroupColumns(line, head.view);
      return line;
    case kPickLine:
      line = Joined({extras, "    Ds    ", kColumnX, kColumnY});
      AddGroupColumns(line, head.view);
      return line;
    case kPickGage:
      return Joined({rule, extras, "    E1     ", "  Epsi11  ", "   Lamda  ", "   Lini   "});
    case kPickRosette:
      return Joined({rule, extras, "    E1    ", "    E2    ", "   Teta   ", "  Epsi11  ", "  Epsi12  ", "  Epsi22  ",
                     "  Surface ratio  "});
    case kPickSlider:
      return Joined({rule, extras, "   Lini   ", "   Lfin   ", "  Lamda   "});
    case kPickRectangle: {
      const std::string row = "X\tvalue\tvalue\tvalue\r\n";
      return "\tY\tY\tY\t\r\n" + row + row + row;
    }
    default:
      return {};
  }
}

std::string PointRow(const std::string& fileName, const std::string& extras, double x, double y,
                     const std::vector<double>& values, const std::string& format) {
  std::string row = fileName + "\t" + extras + "\t" + Format(x, format) + "\t" + Format(y, format);
  AddValues(row, values, format);
  return row;
}

std::string LineRow(const std::string& extras, double distance, double x, double y, const std::vector<double>& values,
                    const std::string& format) {
  std::string row = extras + "\t" + Format(distance, format) + "\t" + Format(x, format) + "\t" + Format(y, format);
  AddValues(row, values, format);
  return row;
}

// Each distance is a multiple of the step rather than a running sum, so
// that a line of a whole number of steps keeps its end sample. A grid
// without a step is sampled every pixel. A line from a damaged selection
// file may be far longer than any picture: its samples stop at a bound no
// picture reaches.
std::vector<double> LineSamples(double length, int32_t lpas) {
  constexpr int64_t kMostSamples = int64_t{1} << 20;
  std::vector<double> samples;
  if (!(length > 0) || !std::isfinite(length)) return samples;
  const double step = lpas > 0 ? lpas / 3.0 : 1.0;
  for (int64_t k = 0; k < kMostSamples; ++k) {
    const double t = static_cast<double>(k) * step;
    if (t > length) break;
    samples.push_back(t);
  }
  return samples;
}

RectangleGrid RectangleSamples(double x1, double y1, double x2, double y2) {
  if (x1 > x2) std::swap(x1, x2);
  if (y1 > y2) std::swap(y1, y2);
  const double stepX = std::max(1.0, Int((x2 - x1) / kRectangleSamples));
  const double stepY = std::max(1.0, Int((y2 - y1) / kRectangleSamples));
  RectangleGrid grid;
  for (double x = x1; x <= x2; x += stepX) grid.xs.push_back(x);
  for (double y = y2; y >= y1; y -= stepY) grid.ys.push_back(y);
  return grid;
}

std::string RectangleTable(const std::string& title, const RectangleGrid& grid, int32_t view, double unitPX,
                           double unitPY, const std::function<double(double x, double y)>& valueAt,
                           const std::string& format) {
  double unit = 1.0;
  if (view == kViewU) unit = unitPX;
  if (view == kViewV) unit = unitPY;
  if (view == kViewNorm) unit = std::sqrt(unitPY * unitPX);
  std::string text = title;
  for (const double y : grid.ys) text += "\t" + Format(y * unitPY, format);
  text += kEnd;
  for (const double x : grid.xs) {
    text += Format(x * unitPX, format);
    for (const double y : grid.ys) {
      const double v = valueAt(x, y);
      text += v == kFenceValue ? std::string("\t ") : "\t" + Format(v * unit, format);
    }
    text += kEnd;
  }
  return text;
}

}  // namespace tessiva
