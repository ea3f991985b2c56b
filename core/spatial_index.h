// A spatial index beside the point and entity tables, so that the screen tables of a
// large survey are rebuilt from the rows near the screen instead of a walk over every
// row. It is only ever a list of candidates: the rebuild applies its exact test to each
// candidate row as it stands in the table, in row order, so the screen tables come out
// row for row as a plain walk would make them.
//
// Each table has a uniform grid over the middle of its data. A row is entered under the
// cells of its boxes (a vertex is a box of no size; a sampled curve the box of its
// samples); a box that lies outside the grid or spans many cells goes to a short list
// that every query looks through. The grid covers the rows [0, BuiltRows()) of its
// table; rows appended after the build are walked plainly by the rebuild, and once
// there are many of them the grid is built again.
//
// Keeping it right. The index never reads the table by itself: whoever writes rows says
// so, and the rebuild checks a few rows before trusting it.
//  - Appending a row (AddPoint, AddEntity, a merge, a push_back of one's own) needs
//    nothing: appended rows are past the built ones.
//  - Writing a row that may already be indexed (moving a vertex, a whole-map shift,
//    rotation or raise, overwriting rows after a save shrank the counts) calls
//    RowWritten(row) for each such row, or RowsChanged(doc) (core/tables.h) once for
//    many. Name, Code or Deleted changes need nothing: the index looks at coordinates
//    only, and the rebuild reads the rest from the table.
//  - Replacing, clearing, truncating or inserting rows anywhere but at the end (a load,
//    ClearTables, a reference map put in front) calls RowsChanged(doc). Should a writer
//    forget, the rebuild still notices a table shorter than the index or a first or
//    last indexed row that is not the one the index was built on, and builds again.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace tavik {

struct Box {
  double MinE = 0, MinN = 0, MaxE = 0, MaxN = 0;
  static Box At(double E, double N) { return {E, N, E, N}; }
};

class RowGrid {
 public:
  // The boxes a row is to be found by; a row with none is found by no query.
  using BoxesOf = std::function<void(int32_t row, std::vector<Box>& boxes)>;

  // Indexes the rows [0, rows). extent is where most of the data lies (the grid is laid
  // over it); boxes outside it are still found, only more slowly.
  void Build(int32_t rows, const Box& extent, const BoxesOf& boxesOf);
  bool Built() const { return built_; }
  int32_t BuiltRows() const { return built_ ? rows_ : 0; }
  // Forgets the index; the next rebuild of the screen tables builds it again.
  void Invalidate() { built_ = false; }
  // Row `row` was written: the index is forgotten when that row is one it holds.
  void RowWritten(int32_t row) {
    if (built_ && row < rows_) built_ = false;
  }

  // The indexed rows that may reach into rect (bounds included), ascending, each once.
  // False, with out empty, when rect covers so much of the grid that a plain walk of
  // the table is the cheaper way.
  bool Query(const Box& rect, std::vector<int32_t>& out) const;

  // A check value of the builder's own (a few rows' keys), kept with the index.
  uint64_t Check = 0;

 private:
  int32_t CellE(double E) const;
  int32_t CellN(double N) const;

  bool built_ = false;
  int32_t rows_ = 0;
  Box extent_;
  double cellE_ = 1, cellN_ = 1;
  int32_t nE_ = 1, nN_ = 1;
  std::vector<uint32_t> cellStart_;  // per cell, where its rows begin in cellRows_
  std::vector<int32_t> cellRows_;
  // Vertices outside the grid, ordered by E; boxes outside it or too wide for it.
  std::vector<std::pair<Box, int32_t>> loosePoints_, looseBoxes_;
  mutable std::vector<uint64_t> marks_;  // one bit per row, clear between queries
};

// The index of both tables of a document; see the notes above on keeping it right.
struct TableIndex {
  RowGrid Points, Entities;
  void Invalidate() {
    Points.Invalidate();
    Entities.Invalidate();
  }
};

}  // namespace tavik
