// Progress of a long file operation (a load, merge, save or import), told to whoever
// shows it as records done out of a total. The file routines report every few thousand
// records, so the cost on a small file is nil; the window decides from the time passed
// whether a bar is worth showing, and uses the call to let a repaint through.
#pragma once

#include <cstdint>
#include <functional>

namespace tavik {

// done out of total, with done == total once at the end. A sink must not change the
// document: it is called in the middle of filling or writing the tables.
using ProgressSink = std::function<void(int64_t done, int64_t total)>;

// Counts records for one operation and passes the count to the sink at most once per
// Step records, and once more at the end.
class ProgressCount {
 public:
  static constexpr int64_t Step = 16384;

  ProgressCount(const ProgressSink& sink, int64_t total) : sink_(sink), total_(total) {
    if (sink_) sink_(0, total_);
  }
  ~ProgressCount() { Finish(); }
  ProgressCount(const ProgressCount&) = delete;
  ProgressCount& operator=(const ProgressCount&) = delete;

  // n more records done.
  void Add(int64_t n = 1) {
    done_ += n;
    if (done_ >= next_) {
      next_ = done_ + Step;
      if (sink_ && done_ < total_) sink_(done_, total_);
    }
  }
  // The operation is over, whatever was counted (also on leaving early).
  void Finish() {
    if (sink_ && !finished_) sink_(total_, total_);
    finished_ = true;
  }

 private:
  const ProgressSink& sink_;
  int64_t total_;
  int64_t done_ = 0;
  int64_t next_ = Step;
  bool finished_ = false;
};

}  // namespace tavik
