// The total-station link's receive path: bytes in, one at a time, through the framer,
// the family decoder, the common tail and the dispatch. An instrument at 9600 baud
// brings under 1000 bytes a second; this shows how far below the link's cost that is.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "instruments/link.h"

namespace {

class NoDialogs : public tavik::ui::Dialogs {
 public:
  tavik::ui::Answer MsgBox(const std::string&, const std::string&, tavik::ui::Buttons, tavik::ui::Icon,
                           std::optional<tavik::ui::Answer>) override {
    return tavik::ui::Answer::Ok;
  }
  std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::string OpenFileName(const std::string&, const std::string&, const std::string&) override { return ""; }
  std::string SaveFileName(const std::string&, const std::string&, const std::string&) override { return ""; }
};

void Feed(benchmark::State& st, const char* kind, const std::string& answer) {
  tavik::InstrumentState state;
  state.InstrumentKind = kind;
  state.ShotMode = "連測";
  NoDialogs dialogs;
  tavik::TotalStationLink link(state, dialogs);
  int delivered = 0;
  link.receivers.PointShot = [&] { ++delivered; };
  tavik::Channel channel = tavik::ChannelOf(tavik::FamilyOf(kind));
  for (auto _ : st) {
    state.AwaitPointShot = -1;
    for (char c : answer) link.OnByte(channel, c);
  }
  benchmark::DoNotOptimize(delivered);
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * answer.size()));
}

void BM_SetAnswer(benchmark::State& st) { Feed(st, "SET30R", "0012345 0900000 1234512\r\n"); }
void BM_LeicaAnswer(benchmark::State& st) {
  Feed(st, "FlexLine", "*31..00+0000000000012345 *21.322+0000000012345120 *22.322+0000000009000000 \r\n");
}
void BM_TrimbleAnswer(benchmark::State& st) { Feed(st, "Trimble", "\r\n7=123.4512\r\n8=90.0000\r\n9=12.345\r\n>"); }
void BM_RandomBytes(benchmark::State& st) {
  std::mt19937 rng(7);
  std::string garbage;
  for (int i = 0; i < 4096; ++i) garbage.push_back(static_cast<char>('0' + rng() % 10));  // digits, no line end
  Feed(st, "SET30R", garbage);
}

BENCHMARK(BM_SetAnswer);
BENCHMARK(BM_LeicaAnswer);
BENCHMARK(BM_TrimbleAnswer);
BENCHMARK(BM_RandomBytes);

}  // namespace

BENCHMARK_MAIN();
