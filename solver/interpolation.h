// Grey-level pictures prepared for sub-pixel sampling: the coefficients are
// computed once per picture, so every subset of every thread samples the same
// read-only arrays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "largearray.h"
#include "state/appstate.h"

namespace tessiva::solver {

class WorkerPool;

using PictureArray = LargeArray<double>;

enum class Interpolant { Bilinear = 0, CubicBSpline = 1 };

// What a picture is prepared for. The reference subsets read levels and
// gradients at whole pixels only (AtPixel); the deformed side is resampled
// between pixels (ValuesAlong) and never needs a gradient. Each keeps only
// what it reads; Both serves every call.
enum class PictureUse { Reference, Deformed, Both };

// How the spline is resampled: the portable code, or AVX2 with FMA. Both
// give the same values to rounding.
enum class Sampler { Portable, Avx2 };

// AVX2 where the processor has it and TESSIVA_PORTABLE_SAMPLER isn't set in
// the environment (which measurements and tests of the fallback use).
Sampler FastestSampler();

struct PictureOptions {
  PictureUse use = PictureUse::Both;
  Sampler sampler = FastestSampler();  // taken as Portable where AVX2 is missing
  WorkerPool* pool = nullptr;          // spreads the precompute over its workers
};

// A sample and its gradient at a sub-pixel position.
struct Sample {
  double value = 0.0;
  double dx = 0.0;
  double dy = 0.0;
};

class SampledPicture {
 public:
  // Takes the width x height levels of `pixels` (column and row 0 up to
  // width - 1 and height - 1). For the B-spline the levels are prefiltered
  // so that the spline passes through them (mirror boundaries).
  SampledPicture(const GreyArray& pixels, int32_t width, int32_t height, Interpolant kind,
                 const PictureOptions& options = {});

  int32_t Width() const { return width_; }
  int32_t Height() const { return height_; }
  Interpolant Kind() const { return kind_; }
  Sampler SamplerUsed() const { return sampler_; }
  // Whether (x, y) can be sampled: the interpolant's support lies inside.
  bool Inside(double x, double y) const;
  // Value and gradient at (x, y); the caller checks Inside first. Not for a
  // spline picture prepared for Reference alone.
  Sample At(double x, double y) const;
  // The values alone at `count` points from (x, y) on, (stepX, stepY) apart:
  // one row of the warped subset of every iteration. The caller checks that
  // both ends are inside. Not for a spline picture prepared for Reference alone.
  void ValuesAlong(double x, double y, double stepX, double stepY, int32_t count, double* out) const;
  // Value and gradient at a whole pixel, computed once with the picture: the
  // reference subsets read them. Bilinear takes central differences there.
  // Not for a picture prepared for Deformed alone.
  Sample AtPixel(int32_t x, int32_t y) const {
    const size_t i = Index(x, y);
    return {levels_[i], gradX_[i], gradY_[i]};
  }
  // The bytes the picture keeps per pixel.
  double BytesPerPixel() const;

 private:
  size_t Index(int32_t x, int32_t y) const { return static_cast<size_t>(y) * static_cast<size_t>(width_) + x; }
  Sample Bilinear(double x, double y) const;
  Sample Spline(double x, double y) const;
  void ComputePixelGradients(const PictureArray& coeffs, WorkerPool* pool);

  int32_t width_;
  int32_t height_;
  Interpolant kind_;
  Sampler sampler_;
  PictureArray levels_;  // empty for a spline picture prepared for Deformed
  PictureArray coeffs_;  // B-spline coefficients; empty for bilinear and for Reference
  PictureArray gradX_, gradY_;  // empty for Deformed
};

// The two pictures of a job, each prepared for its side over the pool. Each
// grey array is released as soon as its picture is prepared, which keeps the
// peak memory of a large pair down.
struct SampledPair {
  SampledPair(GreyArray& refPixels, GreyArray& defPixels, int32_t width, int32_t height, Interpolant kind,
              WorkerPool& pool);

  SampledPicture ref, def;
};

}  // namespace tessiva::solver
