// The texts the picking tools write into the data collector: the title and
// column heads of each tool, the rows of a point and of a line, and the
// rectangle table sent to the clipboard; with the sampling of a line and of
// a rectangle. Lines end in CR LF and fields are separated by one tab.
// Nothing here reads a field: the caller hands in the values.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/fieldlist.h"

namespace tessiva {

// The armed tool (PickTool). Idle at the window's start and after the
// collector closes; the section tool serves the forming-limit and crack analyses.
inline constexpr int32_t kPickIdle = -9999, kPickSection = -1, kPickPoint = 0, kPickSlider = 1, kPickGage = 2,
                         kPickRosette = 3, kPickLine = 4, kPickRectangle = 5;
// The kind of the stored selection (NboxAOS), which is also its vertex count.
inline constexpr int32_t kAosNone = 0, kAosPoint = 1, kAosLine = 2, kAosCrack = 3, kAosRectangle = 5;

// A picking tool of the tool bar: its key, tooltip, PickTool code and the
// index of its button on Toolbar1.
struct PickToolKey {
  std::string_view key;
  std::string_view tip;
  int32_t tool;
  int button;
};
const std::array<PickToolKey, 6>& PickToolKeys();
// The tool of a key or a code; none for another key or code.
const PickToolKey* PickToolOfKey(std::string_view key);
const PickToolKey* PickToolOfCode(int32_t tool);

// The groups of fields a row writes together: the two displacements and
// their norm, the three Hencky strains, the three Green Lagrange terms;
// every other field is written alone.
enum class FieldGroup { Displacement, Hencky, GreenLagrange, Single };
FieldGroup FieldGroupOf(int32_t view);

// A field a row reads, and the factor that takes it to the user's unit.
struct RowField {
  int32_t view;
  double factor;
};
// What a row writes for the field on show: for a group its three fields
// (displacements in the user's units), else the field alone as it is.
std::vector<RowField> RowFields(int32_t view, double unitPX, double unitPY);

// What the head of a tool's table names.
struct HeadContext {
  std::string fileTitle;  // the sequence file's title
  std::string fileName;   // the member on show
  int32_t view = 0;       // the field on show
  UnitNames units;
  std::string extrasHead;  // the names of the extra values, tab separated
};
// TitreInfo and ColonnesInfo of `tool`, each a line ending in CR LF; empty
// for the idle and section tools, whose heads are not the picking's.
std::string PickTitle(int32_t tool, const HeadContext& head);
std::string PickColumns(int32_t tool, const HeadContext& head);

// The row of a point: file name, extras, x and y in the user's units, the
// values; numbers in `format`.
std::string PointRow(const std::string& fileName, const std::string& extras, double x, double y,
                     const std::vector<double>& values, const std::string& format);
// The row of a line sample: extras, the distance from the line's start, x
// and y, all in the user's units, the values. No file name.
std::string LineRow(const std::string& extras, double distance, double x, double y, const std::vector<double>& values,
                    const std::string& format);

// The distances along a line of `length` pixels where it is sampled: from 0
// every lpas/3 pixels, the last not beyond the end; none for a line without length.
std::vector<double> LineSamples(double length, int32_t lpas);

// The grid of a rectangle table over the box spanned by two corners: x from
// the left side to the right every Int(width/30) pixels, y from the bottom
// side up to the top every Int(height/30) pixels, a step of 0 taken as 1;
// so a table has about 30 rows and columns at most.
struct RectangleGrid {
  std::vector<double> xs;
  std::vector<double> ys;
};
RectangleGrid RectangleSamples(double x1, double y1, double x2, double y2);

// The rectangle table: the title, a head row of the y positions, then a row
// for each x: its position and the value at each y. `valueAt` gives the
// value of `view` in pixels; the fence value (no pattern there) becomes one
// blank, so the columns stay aligned; displacements are taken to the user's units.
std::string RectangleTable(const std::string& title, const RectangleGrid& grid, int32_t view, double unitPX,
                           double unitPY, const std::function<double(double x, double y)>& valueAt,
                           const std::string& format);

}  // namespace tessiva
