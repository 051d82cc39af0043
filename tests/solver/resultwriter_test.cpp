// The result file's text: the same whether the patterns' lines are formatted
// on one thread or in blocks on a pool, each pattern's four lines in the
// place of its number, across block boundaries.
#include "resultwriter.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "workerpool.h"

namespace tessiva::solver {
namespace {

// Pattern k at (k, 2k), displaced by (k / 64, -k / 32): values the six
// decimals of the file hold exactly.
std::vector<PatternRecord> Records(int32_t count) {
  std::vector<PatternRecord> records;
  for (int32_t k = 1; k <= count; ++k) {
    Warp w;
    w.u = k / 64.0;
    w.v = -k / 32.0;
    records.push_back({k % 3 != 0, k, 2 * k, w, 3, 21, 0.99});
  }
  return records;
}

// The first line of each pattern in the [RESULTS] block, read back.
void ExpectPatternsInOrder(const std::string& text, int32_t count) {
  std::istringstream in(text.substr(text.find("[RESULTS]\n") + 10));
  std::string line;
  int32_t lines = 0;
  for (int32_t k = 1; std::getline(in, line); ++lines) {
    if (lines % 4 != 0) continue;
    std::istringstream fields(line);
    int32_t flag = 0, x = 0, y = 0;
    double u = 0.0, v = 0.0;
    ASSERT_TRUE(fields >> flag >> x >> y >> u >> v) << line;
    EXPECT_EQ(flag, k % 3 != 0 ? -1 : 0) << line;
    EXPECT_EQ(x, k);
    EXPECT_EQ(y, 2 * k);
    EXPECT_DOUBLE_EQ(u, k / 64.0);
    EXPECT_DOUBLE_EQ(v, -k / 32.0);
    ++k;
  }
  EXPECT_EQ(lines, 4 * count);
}

std::string ResultText(const std::vector<PatternRecord>& records, WorkerPool* pool) {
  std::ostringstream out;
  const auto record = [&](int32_t k) { return records[static_cast<size_t>(k - 1)]; };
  WriteResult(out, "[PICTURES]\n  PicRef=a.bmp\n", "a.bmp", static_cast<int32_t>(records.size()), record, 20, 4, pool);
  return out.str();
}

TEST(WriteResult, BlocksOnAPoolGoOutInPatternOrderAsOnOneThread) {
  WorkerPool pool(3);
  // No pattern, one, a block's worth, one over, and many blocks.
  for (int32_t count : {0, 1, 512, 513, 7000}) {
    SCOPED_TRACE(std::to_string(count) + " patterns");
    const std::vector<PatternRecord> records = Records(count);
    const std::string alone = ResultText(records, nullptr);
    ASSERT_EQ(ResultText(records, &pool), alone);
    EXPECT_EQ(alone.find("[PICTURES]\n  PicAna=a.bmp\n  PicRef=a.bmp\n[RESULTS]\n"), 0u);
    ExpectPatternsInOrder(alone, count);
  }
}

}  // namespace
}  // namespace tessiva::solver
