#include "core/progress.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace tavik {
namespace {

// A library's fractions reach the window as thousandths, forward only, with the end
// told once, and the library is never told to stop.
TEST(Progress, FractionsReachTheSinkAsThousandthsForwardOnly) {
  std::vector<std::pair<int64_t, int64_t>> seen;
  {
    ProgressFraction p([&](int64_t done, int64_t total) { seen.push_back({done, total}); });
    for (double f : {0.0, 0.0004, 0.25, 0.2, std::nan(""), 0.2501, 0.5, 1.0, 1.5})
      EXPECT_EQ(ProgressFraction::Callback(f, "", &p), 1);
  }
  const std::vector<std::pair<int64_t, int64_t>> want = {{0, 1000}, {250, 1000}, {500, 1000}, {999, 1000}, {1000, 1000}};
  EXPECT_EQ(seen, want);
}

}  // namespace
}  // namespace tavik
