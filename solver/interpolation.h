// Grey-level pictures prepared for sub-pixel sampling: the coefficients are
// computed once per picture, so every subset of every thread samples the same
// read-only arrays.
#pragma once

#include <cstdint>
#include <vector>

#include "state/appstate.h"

namespace tessiva::solver {

enum class Interpolant { Bilinear = 0, CubicBSpline = 1 };

// A grey value and its gradient at a sub-pixel position.
struct Sample {
  double value = 0.0;
  double dx = 0.0;
  double dy = 0.0;
};

class SampledPicture {
 public:
  // Takes the width x height levels of `pixels` (column and row 0 up to
  // width - 1 and height - 1). For the B-spline the levels are prefiltered so
  // that the spline passes through them (mirror boundaries).
  SampledPicture(const GreyArray& pixels, int32_t width, int32_t height, Interpolant kind);

  int32_t Width() const { return width_; }
  int32_t Height() const { return height_; }
  Interpolant Kind() const { return kind_; }
  // The level at a whole pixel, as read.
  double Level(int32_t x, int32_t y) const { return levels_[Index(x, y)]; }
  // Whether (x, y) can be sampled: the interpolant's support lies inside.
  bool Inside(double x, double y) const;
  // Value and gradient at (x, y); the caller checks Inside first.
  Sample At(double x, double y) const;
  // The values alone at `count` points from (x, y) on, (stepX, stepY) apart:
  // one row of the warped subset of every iteration. The caller checks that
  // both ends are inside.
  void ValuesAlong(double x, double y, double stepX, double stepY, int32_t count, double* out) const;
  // Value and gradient at a whole pixel, computed once with the picture: the
  // reference subsets read them. Bilinear takes central differences there.
  Sample AtPixel(int32_t x, int32_t y) const {
    const size_t i = Index(x, y);
    return {levels_[i], gradX_[i], gradY_[i]};
  }

 private:
  size_t Index(int32_t x, int32_t y) const { return static_cast<size_t>(y) * static_cast<size_t>(width_) + x; }
  Sample Bilinear(double x, double y) const;
  Sample Spline(double x, double y) const;
  void ComputePixelGradients();

  int32_t width_;
  int32_t height_;
  Interpolant kind_;
  std::vector<double> levels_;
  std::vector<double> coeffs_;  // B-spline coefficients; empty for bilinear
  std::vector<double> gradX_, gradY_;
};

}  // namespace tessiva::solver
