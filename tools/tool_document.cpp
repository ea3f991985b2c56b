// tavik-tool info / dump / convert: a document read exactly as the program reads it,
// shown as text or JSON, or an older .SP saved in the current format.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/docfile.h"
#include "core/numbers.h"
#include "core/text.h"
#include "platform/scripted/scripted.h"
#include "tools/tool.h"
#include "view/document_view.h"

namespace tavik::tool {
namespace {

enum class Format { Spc, Sp, Other };

Format FormatOf(const std::string& path) {
  std::string ext = text::UpperAscii(std::filesystem::path(path).extension().string());
  return ext == ".SPC" ? Format::Spc : ext == ".SP" ? Format::Sp : Format::Other;
}

std::string WithoutExtension(const std::string& path) {
  std::filesystem::path p(path);
  return (p.parent_path() / p.stem()).string();
}

int Usage(const char* text) {
  std::fprintf(stderr, "usage: tavik-tool %s\n", text);
  return 2;
}

int Fail(const std::string& message) {
  std::fprintf(stderr, "tavik-tool: %s\n", message.c_str());
  return 1;
}

std::string LastMessage(const ui::ScriptedDialogs& dialogs) {
  return dialogs.shown.empty() ? "cannot read the file" : dialogs.shown.back().text;
}

// Reads a .SPC or .SP as the program would open it. Empty string: success; else the
// reason it was refused.
std::string Read(const std::string& path, Document& doc) {
  ui::ScriptedDialogs dialogs;
  View view;
  SetDocumentName(doc, WithoutExtension(path));
  switch (FormatOf(path)) {
    case Format::Spc:
      doc.SpcPath = path;
      return LoadDocument(doc, dialogs) ? "" : LastMessage(dialogs);
    case Format::Sp:
      doc.SpPath = path;
      return LoadOldDocument(doc, view, dialogs) ? "" : LastMessage(dialogs);
    case Format::Other:
      break;
  }
  return path + ": 檔案格式或檔案型別不符 (.SPC or .SP expected)";
}

// A number as JSON: the shortest text that reads back to the same double. JSON has no
// infinity or NaN; a damaged file may hold them, and they print as null.
std::string Num(double v) { return std::isfinite(v) ? num::RoundTrip(v) : "null"; }

std::string Str(const std::string& s) {
  std::string out = "\"";
  for (unsigned char c : s) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\u%04x", c);
      out += buf;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out + "\"";
}

struct HeaderValue {
  const char* name;
  std::string text;  // for info
  std::string json;  // for dump
};

std::vector<HeaderValue> HeaderValues(const Document& d) {
  auto n = [](const char* name, double v) { return HeaderValue{name, num::RoundTrip(v), Num(v)}; };
  auto s = [](const char* name, const std::string& v) { return HeaderValue{name, v, Str(v)}; };
  return {
      s("FileVersion", d.FileVersion),
      n("MapType", d.MapType),
      n("ScaleDenominator", d.ScaleDenominator),
      s("StationName", d.StationName),
      n("InstrumentHeight", d.InstrumentHeight),
      n("TargetHeight", d.TargetHeight),
      n("StationE", d.StationE),
      n("StationN", d.StationN),
      n("StationH", d.StationH),
      n("OrientationConstant", d.OrientationConstant),
      n("ViewCentreE", d.ViewCentreE),
      n("ViewCentreN", d.ViewCentreN),
      n("MinE", d.MinE),
      n("MaxE", d.MaxE),
      n("MinN", d.MinN),
      n("MaxN", d.MaxN),
      n("ReferencePointCount", d.ReferencePointCount),
      n("ReferenceEntityCount", d.ReferenceEntityCount),
      n("SerialCounter", d.SerialCounter),
      n("SplitStakeCount", d.SplitStakeCount),
      n("BacksightE", d.BacksightE),
      n("BacksightN", d.BacksightN),
      s("BacksightName", d.BacksightName),
      n("ReferenceMapLoaded", d.ReferenceMapLoaded),
  };
}

bool Emit(const std::string& out) {
  return std::fwrite(out.data(), 1, out.size(), stdout) == out.size() && std::fflush(stdout) == 0;
}

int Info(const Args& args) {
  if (args.size() != 1) return Usage("info FILE.SPC");
  Document d;
  if (std::string why = Read(args[0], d); !why.empty()) return Fail(why);
  std::string out;
  for (const auto& h : HeaderValues(d)) out += std::string(h.name) + ": " + h.text + "\n";
  out += "points: " + std::to_string(d.PointCount) + "\n";
  out += "entities: " + std::to_string(d.EntityCount) + "\n";
  out += "basemap: " + std::to_string(d.BaseMapCount) + "\n";
  return Emit(out) ? 0 : 1;
}

template <typename Row>
void Vertices(std::string& out, const Row& r) {
  const double* arrays[3] = {r.X, r.Y, r.Z};
  const char* names[3] = {"X", "Y", "Z"};
  for (int a = 0; a < 3; ++a) {
    out += ",\"";
    out += names[a];
    out += "\":[" + Num(arrays[a][0]) + "," + Num(arrays[a][1]) + "," + Num(arrays[a][2]) + "]";
  }
}

int Dump(const Args& args) {
  if (args.size() != 1) return Usage("dump FILE.SPC");
  Document d;
  if (std::string why = Read(args[0], d); !why.empty()) return Fail(why);
  std::string out = "{\n\"header\": {";
  bool first = true;
  for (const auto& h : HeaderValues(d)) {
    out += first ? "\n  " : ",\n  ";
    first = false;
    out += Str(h.name) + ": " + h.json;
  }
  out += "\n},\n\"points\": [";
  for (int32_t i = 0; i < d.PointCount; ++i) {
    const Point& p = d.PointTable[i];
    out += i ? ",\n  " : "\n  ";
    out += "{\"Number\":" + std::to_string(p.Number) + ",\"E\":" + Num(p.E) + ",\"N\":" + Num(p.N) +
           ",\"H\":" + Num(p.H) + "}";
  }
  out += "\n],\n\"entities\": [";
  for (int32_t i = 0; i < d.EntityCount; ++i) {
    const Entity& e = d.EntityTable[i];
    out += i ? ",\n  " : "\n  ";
    out += "{\"Number\":" + std::to_string(e.Number) + ",\"Code\":" + std::to_string(e.Code) +
           ",\"Kind\":" + std::to_string(e.Kind);
    Vertices(out, e);
    out += ",\"Name\":" + Str(e.Name) + ",\"Deleted\":" + (e.Deleted ? "true" : "false") + "}";
  }
  out += "\n],\n\"basemap\": [";
  for (int32_t i = 0; i < d.BaseMapCount; ++i) {
    const BaseMapLine& b = d.BaseMapTable[i];
    out += i ? ",\n  " : "\n  ";
    out += "{\"Number\":" + std::to_string(b.Number) + ",\"Code\":" + std::to_string(b.Code) +
           ",\"Kind\":" + std::to_string(b.Kind);
    Vertices(out, b);
    out += ",\"Name\":" + Str(b.Name) + "}";
  }
  out += "\n]\n}\n";
  return Emit(out) ? 0 : 1;
}

int Convert(const Args& args) {
  if (args.size() != 2) return Usage("convert OLD.SP NEW.SPC");
  if (FormatOf(args[0]) != Format::Sp) return Fail(args[0] + ": an older document (.SP) expected");
  if (FormatOf(args[1]) != Format::Spc) return Fail(args[1] + ": the new document must end in .SPC");
  Document d;
  if (std::string why = Read(args[0], d); !why.empty()) return Fail(why);
  SetDocumentName(d, WithoutExtension(args[1]));
  d.SpcPath = args[1];
  ui::ScriptedDialogs dialogs;
  if (!WriteDocumentFile(d, dialogs)) return Fail(LastMessage(dialogs));
  std::printf("%s: %d points, %d entities, %d base-map lines\n", args[1].c_str(), d.PointCount, d.EntityCount,
              d.BaseMapCount);
  return 0;
}

const Registrar info({"info", "FILE.SPC|FILE.SP   header values and record counts", Info});
const Registrar dump({"dump", "FILE.SPC|FILE.SP   the document as JSON", Dump});
const Registrar convert({"convert", "OLD.SP NEW.SPC   save an older document in the current format", Convert});

}  // namespace

std::string ReadDocument(const std::string& path, Document& doc) { return Read(path, doc); }

int Refuse(std::string message) {
  for (char& c : message)
    if (c == '\n' || c == '\r') c = ' ';
  std::fprintf(stderr, "%s\n", message.c_str());
  return 1;
}

}  // namespace tavik::tool
