// The coordinates journal_writer gives record i, shared with the crash test so that it
// can check what came back. Thirds and sevenths make full-precision doubles.
#pragma once

namespace tavik::testing {
inline double PointE(int i) { return 280000 + i * 0.137 + 1.0 / 3; }
inline double PointN(int i) { return 2750000 + i * 0.291 + 2.0 / 3; }
inline double PointH(int i) { return i / 7.0; }
}  // namespace tavik::testing
