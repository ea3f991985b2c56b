// tavik-tool transform: the whole-map shift, rotation or fit of a saved document, by the
// same code the program runs, written to a new document. The parameters (and for a fit
// the residual of every pair) go to standard output. The input document is never
// changed.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <sstream>
#include <string>

#include "core/docfile.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "edit/map_transform.h"
#include "platform/scripted/scripted.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

constexpr const char* TransformUsage =
    "transform DOC.SPC OUT.SPC (--shift DE,DN[,DH] | --rotate DEG --about E,N | --fit PAIRS.CSV "
    "[--model similarity|affine]) [--basemap]\n"
    "      --rotate: decimal degrees, clockwise (every azimuth grows by DEG)\n"
    "      PAIRS.CSV: one pair a line, survey E,N then target E,N (a fifth column names the pair),\n"
    "                 or a point Number of DOC then target E,N; other lines are skipped\n"
    "      --basemap: the base map moves with the survey";

int Usage(const std::string& why) {
  std::fprintf(stderr, "tavik-tool transform: %s\nusage: tavik-tool %s\n", why.c_str(), TransformUsage);
  return 2;
}

std::string WithoutExtension(const std::string& path) {
  std::filesystem::path p(path);
  return (p.parent_path() / p.stem()).string();
}

// Numbers separated by commas, strictly read; nullopt unless there are `count`.
std::optional<std::vector<double>> Numbers(const std::string& text, std::size_t min, std::size_t max) {
  std::vector<double> v;
  std::stringstream in(text);
  for (std::string part; std::getline(in, part, ',');) {
    const auto x = num::ParseStrict(part);
    if (!x) return std::nullopt;
    v.push_back(*x);
  }
  if (v.size() < min || v.size() > max) return std::nullopt;
  return v;
}

// A folder of its own for the journal that the transform rewrites; gone when done.
struct ScratchHome {
  std::filesystem::path path;
  ScratchHome() {
    std::random_device rd;
    path = std::filesystem::temp_directory_path() / ("tavik-transform-" + std::to_string(rd()));
    std::filesystem::create_directories(path);
  }
  ~ScratchHome() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

// The pairs of a CSV file in code page 950. Empty string when read; else why not.
std::string ReadPairs(const std::string& path, const Document& doc, std::vector<edit::FitPair>& pairs) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return path + " 無法讀取";
  int lineNo = 0;
  for (std::string raw; std::getline(in, raw);) {
    ++lineNo;
    const std::string line = text::Trim(text::FromCp950(raw));
    std::vector<std::string> f;
    std::stringstream ss(line);
    for (std::string part; std::getline(ss, part, ',');) f.push_back(text::Trim(part));
    if (f.size() < 3) continue;
    std::vector<double> v;
    const std::size_t numeric = f.size() == 3 ? 3 : 4;
    for (std::size_t i = 0; i < numeric; ++i)
      if (const auto x = num::ParseStrict(f[i])) v.push_back(*x);
    if (v.size() != numeric) continue;  // a heading or a note
    edit::FitPair p;
    if (numeric == 3) {
      const double n = v[0];
      const int32_t row = n >= 1 && n <= 2147483647.0 && n == static_cast<int32_t>(n)
                              ? PointRow(doc, static_cast<int32_t>(n))
                              : -1;
      if (row < 0 || doc.PointTable[static_cast<std::size_t>(row)].Deleted != kFalse)
        return path + " 第" + std::to_string(lineNo) + "行: 沒有編號 " + f[0] + " 的點";
      p.E = doc.PointTable[static_cast<std::size_t>(row)].E, p.N = doc.PointTable[static_cast<std::size_t>(row)].N;
      p.TE = v[1], p.TN = v[2], p.Label = f[0];
    } else {
      p.E = v[0], p.N = v[1], p.TE = v[2], p.TN = v[3];
      p.Label = f.size() > 4 ? f[4] : std::to_string(pairs.size() + 1);
    }
    pairs.push_back(p);
  }
  return "";
}

int Transform(const Args& args) {
  std::vector<std::string> files;
  std::optional<std::string> shift, rotate, about, fit, model;
  bool baseMap = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--basemap") {
      baseMap = true;
    } else if (a == "--shift" || a == "--rotate" || a == "--about" || a == "--fit" || a == "--model") {
      if (i + 1 >= args.size()) return Usage(a + " needs a value");
      const std::string& v = args[++i];
      (a == "--shift" ? shift : a == "--rotate" ? rotate : a == "--about" ? about : a == "--fit" ? fit : model) = v;
    } else if (!a.empty() && a[0] == '-' && a.size() > 1) {
      return Usage("unknown option " + a);
    } else {
      files.push_back(a);
    }
  }
  if (files.size() != 2) return Usage("DOC.SPC and OUT.SPC expected");
  if ((shift ? 1 : 0) + (rotate ? 1 : 0) + (fit ? 1 : 0) != 1) return Usage("one of --shift, --rotate, --fit");
  if (rotate.has_value() != about.has_value()) return Usage("--rotate and --about go together");
  if (model && !fit) return Usage("--model goes with --fit");
  if (model && *model != "similarity" && *model != "affine") return Usage("--model is similarity or affine");
  if (text::UpperAscii(std::filesystem::path(files[1]).extension().string()) != ".SPC")
    return Usage("OUT.SPC must end in .SPC");
  if (std::filesystem::absolute(files[1]).lexically_normal() == std::filesystem::absolute(files[0]).lexically_normal())
    return Usage("OUT.SPC must name another file: the input document is never changed");

  edit::PlaneTransform t;
  std::vector<std::string> report;
  if (shift) {
    const auto v = Numbers(*shift, 2, 3);
    if (!v) return Usage("--shift takes DE,DN or DE,DN,DH");
    t = edit::PlaneTransform::Shift((*v)[0], (*v)[1], v->size() > 2 ? (*v)[2] : 0);
  } else if (rotate) {
    const auto deg = num::ParseStrict(*rotate);
    const auto c = Numbers(*about, 2, 2);
    if (!deg || !c) return Usage("--rotate takes degrees and --about E,N");
    t = edit::PlaneTransform::Rotation(*deg, (*c)[0], (*c)[1]);
  }

  Document doc;
  if (std::string why = ReadDocument(files[0], doc); !why.empty()) return Refuse(why);

  if (fit) {
    std::vector<edit::FitPair> pairs;
    if (std::string why = ReadPairs(*fit, doc, pairs); !why.empty()) return Refuse(why);
    const auto r = edit::FitPoints(pairs, model && *model == "affine" ? edit::FitModel::Affine
                                                                      : edit::FitModel::Similarity);
    if (!r.Ok) return Refuse(r.Message);
    t = r.Transform;
    report = edit::FitReport(r, pairs);
  }

  ScratchHome scratch;
  WorkFiles work{AppPaths{scratch.path}};
  work.CreateEmpty();
  View view;
  SetDocumentName(doc, WithoutExtension(files[1]));
  doc.SpcPath = files[1];
  std::string message;
  if (!edit::ApplyMapTransform(doc, view, work, t, baseMap, nullptr, message)) return Refuse(message);
  ui::ScriptedDialogs dialogs;
  if (!WriteDocumentFile(doc, dialogs))
    return Refuse(dialogs.shown.empty() ? files[1] + " 無法寫入" : dialogs.shown.back().text);

  if (report.empty())
    std::printf("E'=A*E+B*N+C  N'=D*E+F*N+G  H'=H+DH\n");
  for (const auto& l : report) std::printf("%s\n", l.c_str());
  std::printf("A %s\nB %s\nC %s\nD %s\nF %s\nG %s\nDH %s\n", num::RoundTrip(t.A).c_str(), num::RoundTrip(t.B).c_str(),
              num::RoundTrip(t.C).c_str(), num::RoundTrip(t.D).c_str(), num::RoundTrip(t.F).c_str(),
              num::RoundTrip(t.G).c_str(), num::RoundTrip(t.DH).c_str());
  return 0;
}

const Registrar transform({"transform", TransformUsage + 10, Transform});

}  // namespace
}  // namespace tavik::tool
