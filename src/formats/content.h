// What the data, sequence and side files hold, as plain values: the readers
// fill these from text, the writers turn them back into text, and the windows,
// the solver and the command line move them to and from their own state.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "state/appstate.h"
#include "state/gages.h"

namespace tessiva {

// The value a file gives for something unknown: a start point's displacement
// that was never found, a vertex left out.
inline constexpr int32_t kUnknownValue = -10000;

// Bounds of the lists a file names that have no fixed store (areas, vertices
// and start points are bounded by their stores in AppState).
inline constexpr int32_t kMaxGages = 999;
inline constexpr int32_t kMaxExtraValues = 999;

// Why a file, or one of its sections, can't be used.
struct ParseError {
  std::string message;
};

// A section as read, or why it couldn't be.
template <class T>
class Parsed {
 public:
  Parsed(T value) : v_(std::move(value)) {}
  Parsed(ParseError error) : v_(std::move(error)) {}
  explicit operator bool() const { return std::holds_alternative<T>(v_); }
  const T& operator*() const { return std::get<T>(v_); }
  T& operator*() { return std::get<T>(v_); }
  const T* operator->() const { return &std::get<T>(v_); }
  const ParseError& Error() const { return std::get<ParseError>(v_); }

 private:
  std::variant<T, ParseError> v_;
};

struct PictureNames {
  std::string picRef;
  std::string picDef;
  // The first picture of an incremental sequence, named by its later members.
  std::optional<std::string> picRefini;
  // The sizes a file states; 0 where it states none.
  int32_t lima = 0;
  int32_t hima = 0;
};

// The computational parameters, with the values a file without them gives.
struct Parameters {
  int32_t lpatMin = 9;
  int32_t lpatMax = 9;
  int32_t lgrid = 9;
  int32_t interpolation = 1;
  int32_t correlation = 1;
  int32_t largeStrain = 0;
  int32_t precision = 100;
};

struct Units {
  std::string nameX = "Pixel";
  std::string nameY = "Pixel";
  double px = 1.0;
  double py = 1.0;
};

// Named values the user attaches to a test, in two parallel lists.
struct ExtraValues {
  std::vector<std::string> names;
  std::vector<std::string> values;
};

struct Material {
  double young = 210000.0;
  double poisson = 0.3;
};

// The forming-limit zone; on only when both values are given.
struct FormingLimitZone {
  bool on = false;
  int32_t xstrict = -1;
  int32_t ystrict = -1;
};

// The crack: its start, its end and a radius; on only when all five are given.
struct Crack {
  bool on = false;
  double xDep = -1, yDep = -1, xArr = -1, yArr = -1, radius = -1;
};

// A vertex as read: y is absent where the file's rule stops before it.
struct OutlineVertex {
  int32_t x = 0;
  std::optional<int32_t> y;
};

// One slot of the area store as the file has it.
struct AreaSlot {
  int32_t tag = 0;       // 0 an ordinary area, else the gauge that laid it
  bool skipped = false;  // a tagged area read back: its vertices aren't read
  int32_t nbox = 0;      // the vertex count the file states
  std::vector<OutlineVertex> vertices;
};

struct Outlines {
  std::vector<AreaSlot> slots;  // slot i at index i - 1
  int32_t areas = 0;            // the slots less those skipped
};

// One start point as read: each field is absent where the reading stopped
// before it, and `current` says how it moves the current start point.
struct StartPointEntry {
  std::optional<int32_t> x, y, du, dv;
  std::optional<bool> ok;
  enum class Current { Keep, Take, TakeUnlessEarlier } current = Current::Keep;
};

struct StartPointList {
  int32_t number = 0;
  std::vector<StartPointEntry> points;  // point i at index i - 1
};

// What a data file and a named set of areas of interest both hold: the
// areas, gauges and start points, and the test's calibration.
struct AreaContent {
  GageStore gages;
  Outlines outlines;
  StartPointList startPoints;
  ExtraValues extra;
  Units units;
  Material material;
  FormingLimitZone clf;
  Crack crack;
};

// A data file (.don): the input of one correlation job.
struct DataFileContent {
  std::string version;          // written under [RELEASE], with today's date
  std::optional<int32_t> date;  // [RELEASE] date as read
  PictureNames pictures;
  Parameters parameters;
  AreaContent areas;
  std::vector<int32_t> badPatterns;  // the patterns listed under [BADPATTERN]
};

// A named set of areas of interest (-aoi.ini) is a data file's areas alone,
// independent of any picture.
using AoiSet = AreaContent;

// The analysis window's stored selection: one area, its vertices in picture pixels.
struct SelectionArea {
  int32_t NboxAOS = 0;
  std::vector<double> XAOS{0.0};  // 1-based
  std::vector<double> YAOS{0.0};
};

// A named set of areas of selection (-AOS.ini).
struct AosSet {
  SelectionArea selection;
  GageStore gages;
};

}  // namespace tessiva
