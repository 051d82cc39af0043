// A result of 250,000 patterns (a 2048 x 2048 picture at grid step 4) of a
// smooth field, written as the solver writes it, for the benchmarks of
// reading and painting results.
#pragma once

#include <cstdio>
#include <fstream>
#include <string>

namespace tessiva::bench {

inline constexpr int kSide = 500;  // patterns a row and a column
inline constexpr int kStep = 4;
inline constexpr int kFirst = 12;  // clear of the first grid lines

// A smooth field with some curvature, so that no cell is trivially alike.
inline void Field(double x, double y, double& u, double& v) {
  u = 1.0 + 0.01 * x + 0.002 * y + 1e-6 * x * y;
  v = -0.5 - 0.005 * y + 2e-6 * x * x;
}

// The file a solver writes: a data file's head and four lines a pattern,
// whose bilinear form passes through the field at the pattern's corners.
inline void WriteResultFile(const std::string& path) {
  std::ofstream out(path, std::ios::binary);
  out << "; Tessiva RESULTS\n[RELEASE]\n  date=20240611\n[PICTURES]\n  PicRef=ref.bmp\n  PicDef=def.bmp\n"
         "  Lima =02048\n  Hima =02048\n[PARAMETERS]\n  LpatMin=04  \n  LpatMax=08  \n  Lgrid=04  \n"
         "  Interpolation=01  \n  Correlation=01  \n  LargeStrain=00  \n  Precision=0100  \n"
         "[OUTLINES]\n  Number=01  \n  Nbox1=05\n[UNIT]\n  UnitNameX=mm\n  UnitPX=0,01\n  UnitNameY=mm\n"
         "  UnitPY=0,01\n[MATERIAL]\n  YOUNG= 210000\n  POISSON= .3\n[RESULTS]\n";
  char line[256];
  const double l = kStep;
  for (int c = 0; c < kSide; ++c) {
    for (int r = 0; r < kSide; ++r) {
      const int x = kFirst + c * kStep, y = kFirst + r * kStep;
      const double x0 = x - l / 2, y0 = y - l / 2;
      double u00, v00, u10, v10, u01, v01, u11, v11, uc, vc;
      Field(x0, y0, u00, v00);
      Field(x0 + l, y0, u10, v10);
      Field(x0, y0 + l, u01, v01);
      Field(x0 + l, y0 + l, u11, v11);
      Field(x, y, uc, vc);
      std::snprintf(line, sizeof line, "-1 %d %d %.6f %.6f\n", x, y, uc, vc);
      out << line;
      std::snprintf(line, sizeof line, " %.9g %.9g %.9g %.9g\n", u10 - u00, u01 - u00, u11 - u10 - u01 + u00, u00);
      out << line;
      std::snprintf(line, sizeof line, " %.9g %.9g %.9g %.9g\n", v10 - v00, v01 - v00, v11 - v10 - v01 + v00, v00);
      out << line << " 1 8 0.0123\n";
    }
  }
}

}  // namespace tessiva::bench
