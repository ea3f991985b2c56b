#include "basemap/vector_import.h"

#include <cpl_conv.h>
#include <gdal_priv.h>
#include <ogr_geometry.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include "basemap/gdal_session.h"
#include "core/numbers.h"
#include "core/reference_map.h"
#include "core/text.h"

namespace tavik::basemap {

int TargetGrid::Epsg() const {
  const bool penghu = CentralMeridian < 120;
  if (Datum == "TWD67") return penghu ? 3827 : 3828;
  return penghu ? 3825 : 3826;
}

std::string TargetGrid::Name() const {
  return (Datum == "TWD67" ? std::string("TWD67") : std::string("TWD97")) + " 二度分帶 (" +
         (CentralMeridian < 120 ? "119" : "121") + ")";
}

namespace {

// A GDAL configuration option set on this thread for one reading, then put back.
class ScopedOption {
 public:
  ScopedOption(const char* key, const char* value) : key_(key) {
    if (const char* old = CPLGetThreadLocalConfigOption(key, nullptr)) had_ = true, old_ = old;
    CPLSetThreadLocalConfigOption(key, value);
  }
  ~ScopedOption() { CPLSetThreadLocalConfigOption(key_, had_ ? old_.c_str() : nullptr); }
  ScopedOption(const ScopedOption&) = delete;
  ScopedOption& operator=(const ScopedOption&) = delete;

 private:
  const char* key_;
  bool had_ = false;
  std::string old_;
};

bool IsDxf(const std::string& path) {
  std::string ext = path.size() >= 4 ? path.substr(path.size() - 4) : "";
  return text::UpperAscii(ext) == ".DXF";
}

// What a DXF says of itself in its header, and how many entities it has (group code 0
// pairs, an estimate good enough for a progress bar). One pass over the bytes.
struct DxfProbe {
  std::string Version, CodePage;
  bool Header = false;  // the file has a HEADER section
  int64_t Entities = 0;
};

DxfProbe ProbeDxf(const std::string& path) {
  DxfProbe p;
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return p;
  std::vector<char> buf(1 << 20);
  std::string carry, code, wanted;
  bool isCode = true, inHeader = true;
  auto line = [&](std::string_view l) {
    while (!l.empty() && (l.back() == '\r' || l.back() == ' ' || l.back() == '\t')) l.remove_suffix(1);
    while (!l.empty() && (l.front() == ' ' || l.front() == '\t')) l.remove_prefix(1);
    if (isCode) {
      code.assign(l);
    } else {
      if (code == "0") {
        ++p.Entities;
        if (l == "ENDSEC" && inHeader && (!p.Version.empty() || !p.CodePage.empty())) inHeader = false;
      } else if (inHeader && code == "2" && l == "HEADER") {
        p.Header = true;
      } else if (inHeader && code == "9") {
        wanted.assign(l);
      } else if (inHeader && code == "1" && wanted == "$ACADVER") {
        p.Version.assign(l);
      } else if (inHeader && code == "3" && wanted == "$DWGCODEPAGE") {
        p.CodePage.assign(l);
      }
    }
    isCode = !isCode;
  };
  for (std::size_t n; (n = std::fread(buf.data(), 1, buf.size(), f)) > 0;) {
    std::string_view chunk(buf.data(), n);
    for (std::size_t nl; (nl = chunk.find('\n')) != std::string_view::npos; chunk.remove_prefix(nl + 1)) {
      if (carry.empty()) {
        line(chunk.substr(0, nl));
      } else {
        carry.append(chunk.substr(0, nl));
        line(carry);
        carry.clear();
      }
    }
    carry.append(chunk);
  }
  std::fclose(f);
  return p;
}

// DXF spells characters outside its code page as \U+XXXX; GDAL leaves them so.
std::string DecodeDxfUnicode(std::string s) {
  std::size_t at = s.find("\\U+");
  if (at == std::string::npos) return s;
  std::string out;
  std::size_t from = 0;
  for (; at != std::string::npos; at = s.find("\\U+", from)) {
    out.append(s, from, at - from);
    unsigned cp = 0;
    std::size_t k = at + 3;
    int digits = 0;
    for (; digits < 4 && k < s.size() && std::isxdigit(static_cast<unsigned char>(s[k])); ++digits, ++k)
      cp = cp * 16 + static_cast<unsigned>(std::isdigit(static_cast<unsigned char>(s[k])) ? s[k] - '0'
                                                                                        : (s[k] | 0x20) - 'a' + 10);
    if (digits < 4) {
      out.append("\\U+");
      from = at + 3;
      continue;
    }
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6)), out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xE0 | (cp >> 12)), out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
    from = k;
  }
  out.append(s, from, std::string::npos);
  return out;
}

// GDAL reads the texts of a DXF without a header as Latin-1; its bytes are taken back
// and read as code page 950. Text that is not all Latin-1 is left alone.
std::string Latin1AsCp950(const std::string& s) {
  std::string bytes;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      bytes += static_cast<char>(c);
    } else if ((c == 0xC2 || c == 0xC3) && i + 1 < s.size()) {
      bytes += static_cast<char>(((c & 0x03) << 6) | (static_cast<unsigned char>(s[++i]) & 0x3F));
    } else {
      return s;
    }
  }
  return bytes.size() == s.size() ? s : text::FromCp950(bytes);
}

// A name as the document keeps it: at most 20 bytes once in code page 950.
std::string FitName(std::string s) {
  if (text::Cp950Length(s) <= NameBytes) return s;
  return text::FromCp950(text::CutCp950(text::ToCp950(s), NameBytes));
}

// Centre and radius of the circle through three points; false when they are collinear.
bool Circle3(double x1, double y1, double x2, double y2, double x3, double y3, double& cx, double& cy, double& r) {
  const double ax = x2 - x1, ay = y2 - y1, bx = x3 - x1, by = y3 - y1;
  const double d = 2 * (ax * by - ay * bx);
  if (d == 0 || !std::isfinite(d)) return false;
  const double a2 = ax * ax + ay * ay, b2 = bx * bx + by * by;
  const double ux = (by * a2 - ay * b2) / d, uy = (ax * b2 - bx * a2) / d;
  cx = x1 + ux, cy = y1 + uy, r = std::hypot(ux, uy);
  return std::isfinite(r) && r > 0;
}

class Reader {
 public:
  Reader(VectorDrawing& out, const VectorImportOptions& opts) : out_(out), opts_(opts) {}

  ReadResult Run(const std::string& path, std::string& message);

 private:
  void Feature(OGRFeature& f, int layerField, int textField, int subField, int nameField, const std::string& layer);
  void Geometry(const OGRGeometry* g, const std::string& name, const std::string& subclass);
  void Line(const OGRSimpleCurve& c, const std::string& subclass);
  void Segment(double x1, double y1, double z1, double x2, double y2, double z2);
  void Arc3(const double* x, const double* y, const double* z);
  int32_t LayerIndex(const std::string& name);
  void Push(BaseMapLine&& b) {
    out_.Rows.push_back(std::move(b));
    out_.LayerOfRow.push_back(layer_);
    ++out_.RowsPerLayer[static_cast<std::size_t>(layer_)];
  }

  VectorDrawing& out_;
  const VectorImportOptions& opts_;
  int32_t layer_ = 0;
  bool latin1_ = false;  // a headerless DXF: GDAL took its bytes for Latin-1
  std::map<std::string, int32_t> layerIndex_;
};

int32_t Reader::LayerIndex(const std::string& name) {
  auto [it, added] = layerIndex_.try_emplace(name, static_cast<int32_t>(out_.Layers.size()));
  if (added) out_.Layers.push_back(name), out_.RowsPerLayer.push_back(0);
  return it->second;
}

void Reader::Segment(double x1, double y1, double z1, double x2, double y2, double z2) {
  if (x1 == x2 && y1 == y2) return;  // a repeated vertex draws nothing
  BaseMapLine b;
  b.Kind = KindLine;
  b.X[0] = x1, b.Y[0] = y1, b.Z[0] = z1, b.X[1] = x2, b.Y[1] = y2, b.Z[1] = z2;
  Push(std::move(b));
}

void Reader::Arc3(const double* x, const double* y, const double* z) {
  BaseMapLine b;
  if (x[0] == x[2] && y[0] == y[2]) {
    // A closed arc of a curve string is a full circle with that chord as diameter.
    b.Kind = KindCircle2;
    b.X[0] = (x[0] + x[1]) / 2, b.Y[0] = (y[0] + y[1]) / 2, b.Z[0] = z[0];
    b.X[1] = x[0], b.Y[1] = y[0], b.Z[1] = z[0];
  } else {
    b.Kind = KindArc3;
    for (int k = 0; k < 3; ++k) b.X[k] = x[k], b.Y[k] = y[k], b.Z[k] = z[k];
  }
  Push(std::move(b));
}

// A DXF arc or circle arrives as the points of a polyline on it. When the points do lie
// on one circle the arc is kept as three of them (start, middle, end) and a circle as
// its centre and first point; otherwise (an arc stretched by a block's unequal scales)
// the pieces are kept as segments.
void Reader::Line(const OGRSimpleCurve& c, const std::string& subclass) {
  const int n = c.getNumPoints();
  const bool arc = subclass.find("AcDbArc") != std::string::npos;
  const bool circle = !arc && subclass.ends_with("AcDbCircle");
  if ((arc || circle) && n >= 4) {
    const int a = 0, b = arc ? n / 2 : n / 3, e = arc ? n - 1 : 2 * n / 3;
    double cx, cy, r;
    if (Circle3(c.getX(a), c.getY(a), c.getX(b), c.getY(b), c.getX(e), c.getY(e), cx, cy, r)) {
      bool round = true;
      const double tol = 1e-7 * std::max(1.0, r);
      for (int i = 0; i < n && round; ++i) round = std::fabs(std::hypot(c.getX(i) - cx, c.getY(i) - cy) - r) <= tol;
      if (round) {
        BaseMapLine row;
        if (arc) {
          row.Kind = KindArc3;
          const int at[3] = {a, b, e};
          for (int k = 0; k < 3; ++k) row.X[k] = c.getX(at[k]), row.Y[k] = c.getY(at[k]), row.Z[k] = c.getZ(at[k]);
        } else {
          row.Kind = KindCircle2;
          row.X[0] = cx, row.Y[0] = cy, row.Z[0] = c.getZ(0);
          row.X[1] = c.getX(0), row.Y[1] = c.getY(0), row.Z[1] = c.getZ(0);
        }
        Push(std::move(row));
        return;
      }
    }
  }
  for (int i = 1; i < n; ++i)
    Segment(c.getX(i - 1), c.getY(i - 1), c.getZ(i - 1), c.getX(i), c.getY(i), c.getZ(i));
}

void Reader::Geometry(const OGRGeometry* g, const std::string& name, const std::string& subclass) {
  if (g == nullptr || g->IsEmpty()) return;
  switch (wkbFlatten(g->getGeometryType())) {
    case wkbPoint: {
      const auto* p = g->toPoint();
      BaseMapLine b;
      b.Kind = KindPoint;
      b.Code = name.empty() ? 12 : 0;  // a bare point, or a text until the layers get codes
      b.X[0] = p->getX(), b.Y[0] = p->getY(), b.Z[0] = p->getZ();
      b.Name = FitName(name);
      Push(std::move(b));
      return;
    }
    case wkbLineString:
    case wkbLinearRing:
      Line(*g->toSimpleCurve(), subclass);
      return;
    case wkbCircularString: {
      const auto* c = g->toCircularString();
      for (int i = 2; i < c->getNumPoints(); i += 2) {
        const double x[3] = {c->getX(i - 2), c->getX(i - 1), c->getX(i)};
        const double y[3] = {c->getY(i - 2), c->getY(i - 1), c->getY(i)};
        const double z[3] = {c->getZ(i - 2), c->getZ(i - 1), c->getZ(i)};
        Arc3(x, y, z);
      }
      return;
    }
    case wkbCompoundCurve:
      for (const OGRCurve* part : *g->toCompoundCurve()) Geometry(part, name, "");
      return;
    case wkbPolygon:
    case wkbCurvePolygon:
    case wkbTriangle:
      for (const OGRCurve* ring : *g->toCurvePolygon()) Geometry(ring, name, "");
      return;
    case wkbMultiPoint:
    case wkbMultiLineString:
    case wkbMultiPolygon:
    case wkbMultiCurve:
    case wkbMultiSurface:
    case wkbGeometryCollection:
      for (const OGRGeometry* part : *g->toGeometryCollection()) Geometry(part, name, subclass);
      return;
    default:
      ++out_.Skipped;
      return;
  }
}

void Reader::Feature(OGRFeature& f, int layerField, int textField, int subField, int nameField,
                     const std::string& layer) {
  if (layerField >= 0 && f.IsFieldSetAndNotNull(layerField)) {
    const std::string name = DecodeDxfUnicode(f.GetFieldAsString(layerField));
    layer_ = LayerIndex(latin1_ ? Latin1AsCp950(name) : name);
  } else {
    layer_ = LayerIndex(layer);
  }
  std::string name;
  if (textField >= 0 && f.IsFieldSetAndNotNull(textField)) name = DecodeDxfUnicode(f.GetFieldAsString(textField));
  if (latin1_) name = Latin1AsCp950(name);
  if (name.empty() && nameField >= 0 && f.IsFieldSetAndNotNull(nameField)) name = f.GetFieldAsString(nameField);
  const std::string subclass = subField >= 0 && f.IsFieldSetAndNotNull(subField) ? f.GetFieldAsString(subField) : "";
  const OGRGeometry* g = f.GetGeometryRef();
  if (g == nullptr) {
    ++out_.Skipped;
    return;
  }
  Geometry(g, name, subclass);
}

ReadResult Reader::Run(const std::string& path, std::string& message) {
  EnsureGdal();
  TakeGdalError();
  const bool dxf = IsDxf(path);
  DxfProbe probe;
  if (dxf) probe = ProbeDxf(path);
  latin1_ = dxf && !probe.Header;
  // Blocks exploded into their entities, each entity a feature of its own, so that an
  // arc or a text inside a block is known as one.
  ScopedOption inlineBlocks("DXF_INLINE_BLOCKS", "TRUE");
  ScopedOption mergeBlocks("DXF_MERGE_BLOCK_GEOMETRIES", "FALSE");
  // Drawings made in Taiwan often say "ANSI_1252" (or nothing) and hold Big5 texts;
  // the Unicode DXF versions (AC1021 on) are UTF-8 whatever code page they name.
  const std::string cp = text::UpperAscii(probe.CodePage);
  const bool unicodeVersion = probe.Version >= "AC1021";
  const bool westernOrNone = cp.empty() || cp == "ANSI_1252";
  // GDAL itself goes by the code page alone, so both cases are said outright.
  ScopedOption encoding("DXF_ENCODING", !dxf ? nullptr : unicodeVersion ? "UTF-8" : westernOrNone ? "CP950" : nullptr);

  std::unique_ptr<GDALDataset> ds(
      GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR, nullptr, nullptr, nullptr));
  if (!ds || ds->GetLayerCount() == 0) {
    const std::string why = TakeGdalError();
    message = std::string(UnreadableMessage) + path + (why.empty() ? "" : "\n" + why);
    return ReadResult::Failed;
  }

  int64_t total = 0;
  for (OGRLayer* l : ds->GetLayers()) {
    if (dxf) break;
    const GIntBig n = l->GetFeatureCount(TRUE);
    total += n > 0 ? n : 0;
  }
  if (dxf) total = probe.Entities;
  total = std::max<int64_t>(total, 1);

  OGRSpatialReference target;
  target.importFromEPSG(opts_.Grid.Epsg());
  target.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);

  ProgressCount count(opts_.Progress, total);
  int64_t read = 0;
  for (OGRLayer* l : ds->GetLayers()) {
    OGRFeatureDefn* defn = l->GetLayerDefn();
    const int layerField = dxf ? defn->GetFieldIndex("Layer") : -1;
    const int textField = defn->GetFieldIndex("Text");
    const int subField = dxf ? defn->GetFieldIndex("SubClasses") : -1;
    int nameField = -1;
    for (const char* f : {"Name", "name", "NAME", "Label", "label"})
      if (nameField < 0) nameField = defn->GetFieldIndex(f);
    std::unique_ptr<OGRCoordinateTransformation> ct;
    if (const OGRSpatialReference* srs = l->GetSpatialRef(); srs != nullptr && !srs->IsSame(&target)) {
      OGRSpatialReference source(*srs);
      source.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
      ct.reset(OGRCreateCoordinateTransformation(&source, &target));
      if (!ct) {
        message = std::string(UnreadableMessage) + path + "\n" + "無法將座標由 " +
                  (source.GetName() ? source.GetName() : "?") + " 轉換為 " + opts_.Grid.Name();
        return ReadResult::Failed;
      }
      if (out_.Converted.empty())
        out_.Converted = std::string("檔案座標系統為 ") + (source.GetName() ? source.GetName() : "?") +
                         ",已轉換為 " + opts_.Grid.Name();
    }
    l->ResetReading();
    const std::string layerName = l->GetName();
    for (std::unique_ptr<OGRFeature> f(l->GetNextFeature()); f; f.reset(l->GetNextFeature())) {
      if (ct) {
        if (OGRGeometry* g = f->GetGeometryRef(); g != nullptr && g->transform(ct.get()) != OGRERR_NONE) {
          ++out_.Skipped;
          continue;
        }
      }
      Feature(*f, layerField, textField, subField, nameField, layerName);
      if (++read < total) count.Add();
      if ((read & 4095) == 0 && opts_.Cancelled && opts_.Cancelled()) return ReadResult::Cancelled;
    }
    if (const std::string why = TakeGdalError(); !why.empty() && out_.Rows.empty()) {
      message = std::string(UnreadableMessage) + path + "\n" + why;
      return ReadResult::Failed;
    }
  }
  if (opts_.Cancelled && opts_.Cancelled()) return ReadResult::Cancelled;
  if (out_.Rows.empty()) {
    message = NothingToImportMessage;
    return ReadResult::Failed;
  }
  return ReadResult::Read;
}

int32_t UsedVertices(int16_t kind) { return kind == KindPoint ? 1 : kind == KindLine || kind == KindCircle2 ? 2 : 3; }

}  // namespace

ReadResult ReadVectorFile(const std::string& path, const VectorImportOptions& opts, VectorDrawing& out,
                          std::string& message) {
  out = VectorDrawing{};
  Reader r(out, opts);
  const ReadResult result = r.Run(path, message);
  if (result != ReadResult::Read) out = VectorDrawing{};
  return result;
}

LayerCode DefaultLayerCode(const std::string& layer, bool reference) {
  if (const auto n = num::ParseStrict(text::Trim(layer)); n && *n >= 1 && *n <= 999 && *n == std::floor(*n)) {
    const auto c = static_cast<int16_t>(*n);
    return {c, c};
  }
  return reference ? LayerCode{231, 235} : LayerCode{0, 0};
}

bool ParseLayerCode(const std::string& arg, std::string& layer, int16_t& code) {
  const std::size_t eq = arg.rfind('=');
  if (eq == std::string::npos || eq == 0) return false;
  const auto n = num::ParseStrict(arg.substr(eq + 1));
  if (!n || *n < 1 || *n > 999 || *n != std::floor(*n)) return false;
  layer = arg.substr(0, eq);
  code = static_cast<int16_t>(*n);
  return true;
}

void ApplyLayerCodes(VectorDrawing& d, const LayerCodes& codes, bool reference) {
  std::vector<LayerCode> byIndex;
  for (const auto& name : d.Layers) {
    const auto it = codes.find(name);
    byIndex.push_back(it != codes.end() ? it->second : DefaultLayerCode(name, reference));
  }
  for (std::size_t i = 0; i < d.Rows.size(); ++i) {
    BaseMapLine& b = d.Rows[i];
    const LayerCode& c = byIndex[static_cast<std::size_t>(d.LayerOfRow[i])];
    if (b.Kind != KindPoint)
      b.Code = c.Line;
    else if (!b.Name.empty())
      b.Code = c.Text;
    else
      b.Code = 12;
  }
}

void AddToBaseMap(Document& doc, WorkFiles& wf, VectorDrawing& d) {
  doc.BaseMapTable.resize(static_cast<std::size_t>(std::max(0, doc.BaseMapCount)));
  if (doc.BaseMapTable.empty()) {
    doc.BaseMapTable = std::move(d.Rows);
  } else {
    doc.BaseMapTable.reserve(doc.BaseMapTable.size() + d.Rows.size());
    std::move(d.Rows.begin(), d.Rows.end(), std::back_inserter(doc.BaseMapTable));
  }
  d.Rows.clear();
  d.LayerOfRow.clear();
  for (std::size_t i = 0; i < doc.BaseMapTable.size(); ++i) doc.BaseMapTable[i].Number = static_cast<int32_t>(i + 1);
  doc.BaseMapCount = static_cast<int32_t>(doc.BaseMapTable.size());
  wf.WriteBaseMapWorkFile(doc);
  doc.MapChanged = kTrue;
  wf.WriteRecoveryHeader(doc);
}

VectorDrawing DocumentAsBaseMap(const Document& src) {
  VectorDrawing d;
  d.Layers = {""};
  d.RowsPerLayer = {0};
  const auto n = std::min<std::size_t>(src.EntityTable.size(), static_cast<std::size_t>(std::max(0, src.EntityCount)));
  for (std::size_t i = 0; i < n; ++i) {
    const Entity& e = src.EntityTable[i];
    if (e.Deleted != kFalse) continue;
    BaseMapLine b;
    b.Code = e.Code, b.Kind = e.Kind, b.Name = e.Name;
    for (int k = 0; k < 3; ++k) b.X[k] = e.X[k], b.Y[k] = e.Y[k], b.Z[k] = e.Z[k];
    d.Rows.push_back(std::move(b));
    d.LayerOfRow.push_back(0);
    ++d.RowsPerLayer[0];
  }
  return d;
}

bool ImportReferenceMap(Document& doc, const View& view, WorkFiles& wf, VectorDrawing& d, std::string& refusal) {
  refusal = ReferenceMapRefusal(doc);
  if (!refusal.empty()) return false;
  Document ref;
  for (const BaseMapLine& b : d.Rows) {
    if (b.Kind == KindPoint && b.Name.empty()) {
      Point p;
      p.Number = ++ref.PointCount;
      p.E = b.X[0], p.N = b.Y[0], p.H = b.Z[0];
      ref.PointTable.push_back(p);
      continue;
    }
    Entity e;
    e.Number = ++ref.EntityCount;
    e.Code = b.Code, e.Kind = b.Kind, e.Name = b.Name;
    for (int k = 0; k < UsedVertices(b.Kind); ++k) e.X[k] = b.X[k], e.Y[k] = b.Y[k], e.Z[k] = b.Z[k];
    ref.EntityTable.push_back(std::move(e));
  }
  return LoadReferenceMap(doc, view, wf, ref, refusal);
}

void RemoveBaseMap(Document& doc, WorkFiles& wf) {
  doc.BaseMapTable.clear();
  doc.BaseMapTable.shrink_to_fit();
  doc.BaseMapCount = 0;
  wf.WriteBaseMapWorkFile(doc);
  doc.MapChanged = kTrue;
  wf.WriteRecoveryHeader(doc);
}

int64_t EraseBaseMapWindow(Document& doc, WorkFiles& wf, double E1, double N1, double E2, double N2) {
  const double minE = std::min(E1, E2), maxE = std::max(E1, E2), minN = std::min(N1, N2), maxN = std::max(N1, N2);
  auto inside = [&](const BaseMapLine& b) {
    double lo[2] = {b.X[0], b.Y[0]}, hi[2] = {b.X[0], b.Y[0]};
    const int used = UsedVertices(b.Kind);
    for (int k = 1; k < used; ++k) {
      lo[0] = std::min(lo[0], b.X[k]), hi[0] = std::max(hi[0], b.X[k]);
      lo[1] = std::min(lo[1], b.Y[k]), hi[1] = std::max(hi[1], b.Y[k]);
    }
    if (b.Kind == KindCircle2) {
      // The whole circle, not only its centre and rim point, must lie in the window.
      const double r = std::hypot(b.X[1] - b.X[0], b.Y[1] - b.Y[0]);
      lo[0] = b.X[0] - r, hi[0] = b.X[0] + r, lo[1] = b.Y[0] - r, hi[1] = b.Y[0] + r;
    }
    double cx, cy, r;
    if (b.Kind == KindArc3 && Circle3(b.X[0], b.Y[0], b.X[1], b.Y[1], b.X[2], b.Y[2], cx, cy, r)) {
      // An arc may bulge past its three points: its sweep is walked in small steps.
      constexpr double TwoPi = 2 * 3.14159265358979;
      auto turn = [&](int k) {
        const double a = std::atan2(b.Y[k] - cy, b.X[k] - cx) - std::atan2(b.Y[0] - cy, b.X[0] - cx);
        return a < 0 ? a + TwoPi : a;
      };
      const double a0 = std::atan2(b.Y[0] - cy, b.X[0] - cx), toEnd = turn(2);
      const double sweep = turn(1) < toEnd ? toEnd : toEnd - TwoPi;
      for (int i = 1; i < 64; ++i) {
        const double a = a0 + sweep * i / 64;
        const double x = cx + r * std::cos(a), y = cy + r * std::sin(a);
        lo[0] = std::min(lo[0], x), hi[0] = std::max(hi[0], x), lo[1] = std::min(lo[1], y), hi[1] = std::max(hi[1], y);
      }
    }
    return lo[0] >= minE && hi[0] <= maxE && lo[1] >= minN && hi[1] <= maxN;
  };
  doc.BaseMapTable.resize(static_cast<std::size_t>(std::max(0, doc.BaseMapCount)));
  const std::size_t before = doc.BaseMapTable.size();
  std::erase_if(doc.BaseMapTable, inside);
  const auto gone = static_cast<int64_t>(before - doc.BaseMapTable.size());
  if (gone == 0) return 0;
  for (std::size_t i = 0; i < doc.BaseMapTable.size(); ++i) doc.BaseMapTable[i].Number = static_cast<int32_t>(i + 1);
  doc.BaseMapCount = static_cast<int32_t>(doc.BaseMapTable.size());
  wf.WriteBaseMapWorkFile(doc);
  doc.MapChanged = kTrue;
  wf.WriteRecoveryHeader(doc);
  return gone;
}

}  // namespace tavik::basemap
