// The [RESULTS] block the solver appends to a data file, four lines a pattern:
// "flag X Y d1 d2" as decimal text cut at single blanks, then the coefficients
// of u, those of v, and three numbers kept for the program, each in free form.
// Shared by the result reader and the distortion fit.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "state/files.h"

namespace tessiva {

// Reads up to and with the first line whose first nine characters are
// "[RESULTS]" in any case. False when no line is.
bool SkipToResults(LineCursor& lines);

// One turn of the block loop. A line starting with "[" after leading blanks is
// passed over alone; otherwise the four lines of a pattern, the first without
// its leading blanks.
struct PatternLines {
  bool passedOver = false;
  std::string_view first;
  std::string_view second;
  std::string_view third;
  std::string_view fourth;
};
PatternLines NextPatternLines(LineCursor& lines);

// The turns the block loop makes from the cursor to the end of the text. The
// loop tests for the end after each turn, so it makes at least one, and a
// trailing blank line is one more.
int64_t CountPatternTurns(LineCursor lines);

// The fields of a first line. A field whose bounding blank is missing, or
// whose whole number doesn't fit 32 bits, is absent.
struct FirstLineFields {
  std::optional<int32_t> flag;
  std::optional<int32_t> x;
  std::optional<int32_t> y;
  std::optional<double> d1;
  std::optional<double> d2;
};
FirstLineFields SplitFirstLine(std::string_view line);

// The first four fields of a free-form line (separated by blanks, tabs or
// commas); a field that isn't a finite number, or isn't there, is absent.
std::array<std::optional<double>, 4> FreeFormNumbers(std::string_view line);

// A value as a 32-bit integer, rounded half to even; absent when out of range.
std::optional<int32_t> WholeNumber(double value);

}  // namespace tessiva
