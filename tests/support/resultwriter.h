// Result files (.res) for known displacement fields, written as the solver
// writes them: the head of a data file and a [RESULTS] block of four lines a
// pattern, whose bilinear form reproduces the field at each pattern's corners.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tessiva::testing {

// Displacement (u, v) at a point of the reference picture.
struct Displacement {
  double u = 0.0;
  double v = 0.0;
};
using DisplacementField = std::function<Displacement(double x, double y)>;

struct ResultPattern {
  int32_t flag = -1;
  int32_t x = 0;
  int32_t y = 0;
  double d1 = 0.0;  // displacement at the centre
  double d2 = 0.0;
  std::array<double, 4> u{};  // au bu cu du
  std::array<double, 4> v{};  // av bv cv dv
  std::array<double, 3> reserved{1.0, 8.0, 0.0};
};

struct ResultHead {
  std::string picRef = "ref.bmp";
  std::string picDef = "def.bmp";
  int32_t lima = 256;
  int32_t hima = 256;
  int32_t lpatMin = 8;
  int32_t lpatMax = 8;
  int32_t lgrid = 8;
  // Sections written as they stand after [PARAMETERS] ([CLF], [GAGES], [UNIT]...).
  std::string moreSections;
};

// What the solver reports for the pattern centred at (x, y): the bilinear form
// through the field at the corners of the square of side lpatEven whose first
// corner is (x - lpatEven/2, y - lpatEven/2). Exact for an affine field.
ResultPattern PatternOf(const DisplacementField& field, int32_t x, int32_t y, int32_t lpatEven);

// Patterns at x0 + c step, y0 + r step for c < columns, r < rows, numbered
// column by column as the grid numbers them.
std::vector<ResultPattern> GridPatterns(const DisplacementField& field, int32_t x0, int32_t y0, int32_t columns,
                                        int32_t rows, int32_t step, int32_t lpatEven);

// The file's text: numbers of the first line in fixed notation (decimal text
// that must not depend on an exponent), the others in their shortest exact form.
std::string ResultFileText(const ResultHead& head, const std::vector<ResultPattern>& patterns);

// Writes the file and returns its path.
std::string WriteResultFile(const std::string& path, const ResultHead& head,
                            const std::vector<ResultPattern>& patterns);

}  // namespace tessiva::testing
