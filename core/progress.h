// Progress of a long file operation (a load, merge, save or import), told to whoever
// shows it as records done out of a total. The file routines report every few thousand
// records, so the cost on a small file is nil; the window decides from the time passed
// whether a bar is worth showing, and uses the call to paint its windows again.
//
// A reader takes a ProgressSink (the window's is FrameHooks::Progress; empty: nothing
// shown) and counts with ProgressCount when it knows its records, or hands
// ProgressFraction::Callback to a library that reports fractions. Sinks are called on
// the user-interface thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

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

// Progress told as a fraction from 0 to 1, as a library reports it, passed on to a sink
// as thousandths, each only when it moves on, and done == total once at the end.
// Callback has the form of GDAL's progress function (GDALProgressFunc: the fraction, a
// message, and the data pointer, here the ProgressFraction) and always answers that the
// work goes on: nothing started is left half done.
class ProgressFraction {
 public:
  static constexpr int64_t Total = 1000;

  explicit ProgressFraction(ProgressSink sink) : sink_(std::move(sink)) {
    if (sink_) sink_(0, Total);
  }
  ~ProgressFraction() { Finish(); }
  ProgressFraction(const ProgressFraction&) = delete;
  ProgressFraction& operator=(const ProgressFraction&) = delete;

  void Set(double fraction) {
    if (!(fraction > 0)) return;  // not a number too
    const int64_t done = fraction >= 1 ? Total - 1 : static_cast<int64_t>(fraction * Total);
    if (done <= done_) return;
    done_ = done;
    if (sink_) sink_(done_, Total);
  }
  void Finish() {
    if (sink_ && !finished_) sink_(Total, Total);
    finished_ = true;
  }
  static int Callback(double fraction, const char* /*message*/, void* data) {
    if (data != nullptr) static_cast<ProgressFraction*>(data)->Set(fraction);
    return 1;
  }

 private:
  ProgressSink sink_;
  int64_t done_ = 0;
  bool finished_ = false;
};

}  // namespace tavik
