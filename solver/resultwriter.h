// The result file: the data file's text with PicAna added under [PICTURES],
// then the [RESULTS] block of four lines a pattern that the analysis reads.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>

#include "icgn.h"

namespace tessiva::solver {

struct PatternRecord {
  bool good = false;
  int32_t x = 0, y = 0;
  Warp warp;
  int32_t iterations = 0;
  int32_t side = 0;
  double quality = 0.0;  // the criterion of the file's Correlation switch
};

// The bilinear coefficients au bu cu du / av bv cv dv of a first-order warp
// centred on the pattern: x, y divided by lpatEven and counted from the
// pattern's first corner. The analysis lays that corner on the first corner
// of the pattern's grid cell, half a grid step `lpas` before the centre, and
// evaluates the form across the cell, so the origin is put there.
struct Bilinear {
  double u[4];
  double v[4];
};
Bilinear BilinearOf(const Warp& w, int32_t lpatEven, int32_t lpas);

class WorkerPool;

// The quality column for the file's Correlation switch: 2 (1 - ZNCC), a
// distance, for 0, and the ZNCC itself otherwise.
double QualityOf(int32_t correlationSwitch, double zncc);

// Pattern k's record, k from 1. It is asked for by the block that writes the
// pattern, on whichever worker formats that block.
using RecordOf = std::function<PatternRecord(int32_t k)>;

// Writes the whole result file of patterns 1 to `patterns` to `out`. With a
// pool, the patterns' lines are formatted in blocks on its workers and
// written in order while later blocks are formatted: the text is the same
// either way.
void WriteResult(std::ostream& out, const std::string& dataText, const std::string& picAna, int32_t patterns,
                 const RecordOf& record, int32_t lpatEven, int32_t lpas, WorkerPool* pool = nullptr);
// The same into file `path`, which is replaced only once the whole result is
// written; false, the old file left as it was, when it can't be.
bool WriteResultFile(const std::string& path, const std::string& dataText, const std::string& picAna, int32_t patterns,
                     const RecordOf& record, int32_t lpatEven, int32_t lpas, WorkerPool& pool);

}  // namespace tessiva::solver
