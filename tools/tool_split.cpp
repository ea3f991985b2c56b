// tavik-tool split: the land split on the parcel stored in a saved document, for the
// office before going to the field. The same code as the dialog runs: the document's
// boundary edges (code 266) are the parcel, the mode and the area are given as options
// instead of clicks, and the result is the cut, the stake-out file and, when asked, a
// new document with the cut committed. The input document is never changed.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <random>
#include <string>

#include "cadastre/land_split.h"
#include "core/docfile.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "platform/scripted/scripted.h"
#include "tools/tool.h"
#include "view/document_view.h"

namespace tavik::tool {
namespace {

constexpr const char* SplitUsage =
    "split DOC.SPC --mode N (--area A | --half) [--azimuth DEG] [--line NUMBER] [--point NUMBER] "
    "[--points N1,N2] [--stakes FILE] [--apply OUT.SPC]";

int Usage(const std::string& why) {
  std::fprintf(stderr, "tavik-tool split: %s\nusage: tavik-tool %s\n", why.c_str(), SplitUsage);
  return 2;
}

std::optional<int32_t> WholeNumber(const std::string& text) {
  const auto v = num::ParseStrict(text);
  if (!v || *v != std::floor(*v) || *v < 1 || *v > 2147483647.0) return std::nullopt;
  return static_cast<int32_t>(*v);
}

std::string WithoutExtension(const std::string& path) {
  std::filesystem::path p(path);
  return (p.parent_path() / p.stem()).string();
}

// A folder of its own for the journal that adding rows writes; gone when done.
struct ScratchHome {
  std::filesystem::path path;
  ScratchHome() {
    std::random_device rd;
    path = std::filesystem::temp_directory_path() / ("tavik-split-" + std::to_string(rd()));
    std::filesystem::create_directories(path);
  }
  ~ScratchHome() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

struct Options {
  std::string doc;
  int mode = 0;
  std::optional<std::string> area, azimuth, stakes, apply;
  bool half = false;
  std::optional<int32_t> line, point, point1, point2;
};

// Empty when the arguments make a request; else why not.
std::string Parse(const Args& args, Options& o) {
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::string& out) {
      if (i + 1 >= args.size()) return false;
      out = args[++i];
      return true;
    };
    std::string v;
    if (a == "--half") {
      o.half = true;
    } else if (a == "--mode" || a == "--area" || a == "--azimuth" || a == "--line" || a == "--point" ||
               a == "--points" || a == "--stakes" || a == "--apply") {
      if (!value(v)) return a + " needs a value";
      if (a == "--mode") {
        const auto m = WholeNumber(v);
        if (!m || *m > 8) return "--mode is 1 to 8";
        o.mode = *m;
      } else if (a == "--area") {
        o.area = v;
      } else if (a == "--azimuth") {
        o.azimuth = v;
      } else if (a == "--stakes") {
        o.stakes = v;
      } else if (a == "--apply") {
        o.apply = v;
      } else if (a == "--line" || a == "--point") {
        const auto n = WholeNumber(v);
        if (!n) return a + " takes a Number";
        (a == "--line" ? o.line : o.point) = n;
      } else {
        const auto comma = v.find(',');
        if (comma == std::string::npos) return "--points takes two Numbers: N1,N2";
        o.point1 = WholeNumber(v.substr(0, comma));
        o.point2 = WholeNumber(v.substr(comma + 1));
        if (!o.point1 || !o.point2) return "--points takes two Numbers: N1,N2";
      }
    } else if (!a.empty() && a[0] == '-') {
      return "unknown option " + a;
    } else if (o.doc.empty()) {
      o.doc = a;
    } else {
      return "one document only";
    }
  }
  if (o.doc.empty()) return "no document";
  if (o.mode == 0) return "--mode is required";
  if (o.area && o.half) return "--area or --half, not both";
  if (!o.area && !o.half && o.mode != 8) return "--area or --half is required";
  if (o.mode == 6 && !o.line) return "mode 6 needs --line NUMBER";
  if (o.mode == 7 && !o.point) return "mode 7 needs --point NUMBER";
  if (o.mode == 8 && !o.point1) return "mode 8 needs --points N1,N2";
  if (o.apply && text::UpperAscii(std::filesystem::path(*o.apply).extension().string()) != ".SPC")
    return "--apply writes a .SPC";
  if (o.apply && std::filesystem::absolute(*o.apply).lexically_normal() ==
                     std::filesystem::absolute(o.doc).lexically_normal())
    return "--apply must name another file: the input document is never changed";
  return "";
}

// The last message a step showed, if it showed one since `before`.
std::optional<std::string> NewMessage(const ui::ScriptedDialogs& d, std::size_t before) {
  if (d.shown.size() > before) return d.shown.back().text;
  return std::nullopt;
}

int Split(const Args& args) {
  Options o;
  if (const std::string why = Parse(args, o); !why.empty()) return Usage(why);

  ui::ScriptedDialogs dialogs;
  Document doc;
  View view;
  SetDocumentName(doc, WithoutExtension(o.doc));
  const std::string ext = text::UpperAscii(std::filesystem::path(o.doc).extension().string());
  bool read = false;
  if (ext == ".SPC") {
    doc.SpcPath = o.doc;
    read = std::filesystem::is_regular_file(o.doc) && LoadDocument(doc, dialogs);
  } else if (ext == ".SP") {
    doc.SpPath = o.doc;
    read = std::filesystem::is_regular_file(o.doc) && LoadOldDocument(doc, view, dialogs);
  } else {
    return Usage(o.doc + ": a document (.SPC or .SP) expected");
  }
  if (!read) return Refuse(dialogs.shown.empty() ? o.doc + ": 無法讀取" : dialogs.shown.back().text);

  ScratchHome scratch;
  WorkFiles work{AppPaths{scratch.path}};
  cadastre::LandSplit split(doc, view, work, dialogs);
  if (!cadastre::LandSplit::CanOpen(doc, dialogs)) return Refuse(dialogs.shown.back().text);
  split.Open();
  if (split.SplitTotalArea == 0) return Refuse("請圈選分割土地範圍");

  std::size_t before = dialogs.shown.size();
  if (o.half) {
    split.Check1Click(true);
  } else if (o.area) {
    split.form.Text1 = *o.area;
    split.Text1Done();
    // A text that reads as no number is refused as an area of 0.
    if (split.form.Text1.empty() && !NewMessage(dialogs, before)) return Refuse(cadastre::AreaRangeMessage);
  }
  if (auto m = NewMessage(dialogs, before)) return Refuse(*m);
  if (o.azimuth) split.form.Text2 = *o.azimuth;

  before = dialogs.shown.size();
  split.ChooseOption(o.mode);
  if (auto m = NewMessage(dialogs, before)) return Refuse(*m);
  auto pointAt = [&](int32_t number, double& E, double& N) {
    const int32_t row = PointRow(doc, number);
    if (row < 0 || doc.PointTable[static_cast<std::size_t>(row)].Deleted != kFalse) return false;
    E = doc.PointTable[static_cast<std::size_t>(row)].E, N = doc.PointTable[static_cast<std::size_t>(row)].N;
    return true;
  };
  if (o.mode == 6 && !split.SplitParallel(*o.line))
    return Refuse("沒有編號 " + std::to_string(*o.line) + " 的線");
  if (o.mode == 7) {
    double E = 0, N = 0;
    if (!pointAt(*o.point, E, N)) return Refuse("沒有編號 " + std::to_string(*o.point) + " 的點");
    if (!split.SplitThroughPointAt(E, N))
      return Refuse("點 " + std::to_string(*o.point) + " 在土地範圍線上沒有垂足");
  }
  if (o.mode == 8) {
    double E1 = 0, N1 = 0, E2 = 0, N2 = 0;
    if (!pointAt(*o.point1, E1, N1)) return Refuse("沒有編號 " + std::to_string(*o.point1) + " 的點");
    if (!pointAt(*o.point2, E2, N2)) return Refuse("沒有編號 " + std::to_string(*o.point2) + " 的點");
    split.SplitTwoPointsAt(E1, N1, E2, N2);
  }

  if (o.stakes && !split.WriteStakeFile(*o.stakes)) return Refuse(*o.stakes + " 無法寫入");
  if (o.apply) {
    work.CreateEmpty();
    split.cmdApply();
    SetDocumentName(doc, WithoutExtension(*o.apply));
    doc.SpcPath = *o.apply;
    before = dialogs.shown.size();
    if (!WriteDocumentFile(doc, dialogs))
      return Refuse(NewMessage(dialogs, before).value_or(*o.apply + " 無法寫入"));
  }
  const double* a = doc.SplitLine;
  std::printf("A1 %s %s\nA2 %s %s\narea %s\nazimuth %s\n", num::RoundTrip(a[0]).c_str(), num::RoundTrip(a[1]).c_str(),
              num::RoundTrip(a[2]).c_str(), num::RoundTrip(a[3]).c_str(), num::RoundTrip(split.SplitCutArea).c_str(),
              split.form.Text2.c_str());
  return 0;
}

const Registrar split({"split", SplitUsage + 6, Split});

}  // namespace
}  // namespace tavik::tool
