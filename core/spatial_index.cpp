#include "core/spatial_index.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace tavik {

namespace {

// About this many rows per cell: few enough that a query looks at little more than the
// screen, enough that a short segment or a small circle falls into one or two cells.
constexpr double RowsPerCell = 4;
constexpr int32_t MaxCellsPerAxis = 4096;
// A box over more cells than this is looked at by every query instead.
constexpr int64_t MaxCellsPerBox = 64;

bool Finite(const Box& b) {
  return std::isfinite(b.MinE) && std::isfinite(b.MinN) && std::isfinite(b.MaxE) && std::isfinite(b.MaxN);
}

bool Overlaps(const Box& b, const Box& r) {
  return b.MinE <= r.MaxE && b.MaxE >= r.MinE && b.MinN <= r.MaxN && b.MaxN >= r.MinN;
}

bool Inside(const Box& b, const Box& r) {
  return b.MinE >= r.MinE && b.MaxE <= r.MaxE && b.MinN >= r.MinN && b.MaxN <= r.MaxN;
}

}  // namespace

// Floor of the offset in cells, clamped to the grid. Monotonic in its argument, so a
// coordinate between two others falls in a cell between theirs.
int32_t RowGrid::CellE(double E) const {
  const double c = std::floor((E - extent_.MinE) / cellE_);
  return c <= 0 ? 0 : c >= nE_ - 1 ? nE_ - 1 : static_cast<int32_t>(c);
}

int32_t RowGrid::CellN(double N) const {
  const double c = std::floor((N - extent_.MinN) / cellN_);
  return c <= 0 ? 0 : c >= nN_ - 1 ? nN_ - 1 : static_cast<int32_t>(c);
}

void RowGrid::Build(int32_t rows, const Box& extent, const BoxesOf& boxesOf) {
  rows_ = std::max(rows, 0);
  extent_ = extent;
  loosePoints_.clear();
  looseBoxes_.clear();
  const double w = extent.MaxE - extent.MinE, h = extent.MaxN - extent.MinN;
  const bool usable = Finite(extent) && w > 0 && h > 0;
  if (usable) {
    const double cells = std::max(1.0, rows_ / RowsPerCell);
    const double side = std::sqrt(w * h / cells);
    nE_ = static_cast<int32_t>(std::clamp(std::ceil(w / side), 1.0, double(MaxCellsPerAxis)));
    nN_ = static_cast<int32_t>(std::clamp(std::ceil(h / side), 1.0, double(MaxCellsPerAxis)));
    cellE_ = w / nE_;
    cellN_ = h / nN_;
  } else {
    nE_ = nN_ = 1;
    cellE_ = cellN_ = 1;
  }

  // Pass one collects (cell, row) entries, then a counting sort lays them out by cell.
  struct Entry {
    uint32_t cell;
    int32_t row;
  };
  std::vector<Entry> entries;
  entries.reserve(static_cast<std::size_t>(rows_) * 2);
  std::vector<Box> boxes;
  for (int32_t row = 0; row < rows_; ++row) {
    boxes.clear();
    boxesOf(row, boxes);
    uint32_t lastCell = UINT32_MAX;
    for (const Box& b : boxes) {
      // A coordinate that is not a number is on no screen; one without bound may be.
      if (std::isnan(b.MinE) || std::isnan(b.MinN) || std::isnan(b.MaxE) || std::isnan(b.MaxN)) continue;
      const bool point = b.MinE == b.MaxE && b.MinN == b.MaxN;
      if (!usable || !Inside(b, extent_)) {
        (point ? loosePoints_ : looseBoxes_).push_back({b, row});
        continue;
      }
      const int32_t e0 = CellE(b.MinE), e1 = CellE(b.MaxE), n0 = CellN(b.MinN), n1 = CellN(b.MaxN);
      if (int64_t(e1 - e0 + 1) * (n1 - n0 + 1) > MaxCellsPerBox) {
        looseBoxes_.push_back({b, row});
        continue;
      }
      for (int32_t n = n0; n <= n1; ++n)
        for (int32_t e = e0; e <= e1; ++e) {
          const uint32_t cell = static_cast<uint32_t>(n) * static_cast<uint32_t>(nE_) + static_cast<uint32_t>(e);
          if (cell == lastCell) continue;  // the vertices of one short segment, mostly
          entries.push_back({cell, row});
          lastCell = cell;
        }
    }
  }
  const std::size_t cellCount = static_cast<std::size_t>(nE_) * static_cast<std::size_t>(nN_);
  cellStart_.assign(cellCount + 1, 0);
  for (const Entry& en : entries) ++cellStart_[en.cell + 1];
  for (std::size_t c = 0; c < cellCount; ++c) cellStart_[c + 1] += cellStart_[c];
  cellRows_.resize(entries.size());
  std::vector<uint32_t> fill(cellStart_.begin(), cellStart_.end() - 1);
  for (const Entry& en : entries) cellRows_[fill[en.cell]++] = en.row;
  std::sort(loosePoints_.begin(), loosePoints_.end(),
            [](const auto& a, const auto& b) { return a.first.MinE < b.first.MinE; });
  marks_.assign((static_cast<std::size_t>(rows_) + 63) / 64, 0);
  built_ = true;
}

bool RowGrid::Query(const Box& rect, std::vector<int32_t>& out) const {
  out.clear();
  if (!built_) return false;
  std::size_t lo = marks_.size(), hi = 0;
  auto mark = [&](int32_t row) {
    const std::size_t w = static_cast<std::size_t>(row) >> 6;
    marks_[w] |= uint64_t{1} << (row & 63);
    lo = std::min(lo, w);
    hi = std::max(hi, w);
  };
  const Box clipped{std::max(rect.MinE, extent_.MinE), std::max(rect.MinN, extent_.MinN),
                    std::min(rect.MaxE, extent_.MaxE), std::min(rect.MaxN, extent_.MaxN)};
  if (clipped.MinE <= clipped.MaxE && clipped.MinN <= clipped.MaxN) {
    const int32_t e0 = CellE(clipped.MinE), e1 = CellE(clipped.MaxE);
    const int32_t n0 = CellN(clipped.MinN), n1 = CellN(clipped.MaxN);
    // Over a quarter of the grid, the plain walk costs less than gathering the rows.
    if (int64_t(e1 - e0 + 1) * (n1 - n0 + 1) * 4 > int64_t(nE_) * nN_ && rows_ > 4096) return false;
    for (int32_t n = n0; n <= n1; ++n) {
      const std::size_t row0 = static_cast<std::size_t>(n) * static_cast<std::size_t>(nE_);
      for (uint32_t i = cellStart_[row0 + e0]; i < cellStart_[row0 + e1 + 1]; ++i) mark(cellRows_[i]);
    }
  }
  auto first = std::lower_bound(loosePoints_.begin(), loosePoints_.end(), rect.MinE,
                                [](const auto& a, double e) { return a.first.MinE < e; });
  for (auto it = first; it != loosePoints_.end() && it->first.MinE <= rect.MaxE; ++it)
    if (Overlaps(it->first, rect)) mark(it->second);
  for (const auto& [b, row] : looseBoxes_)
    if (Overlaps(b, rect)) mark(row);
  for (std::size_t w = lo; w <= hi && w < marks_.size(); ++w) {
    uint64_t bits = marks_[w];
    marks_[w] = 0;
    while (bits) {
      out.push_back(static_cast<int32_t>(w * 64 + static_cast<std::size_t>(std::countr_zero(bits))));
      bits &= bits - 1;
    }
  }
  return true;
}

}  // namespace tavik
