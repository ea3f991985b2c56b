#include "edit/map_transform.h"

#include <cmath>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/workfiles.h"
#include "view/screen_tables.h"

namespace tavik::edit {

namespace {

constexpr double Pi = 3.14159265358979;
constexpr double Degree = Pi / 180;

struct Sums {
  double mE = 0, mN = 0, mTE = 0, mTN = 0;  // centroids
  double xx = 0, xy = 0, yy = 0;            // survey, about its centroid
  double xX = 0, xY = 0, yX = 0, yY = 0;    // survey by target
  double XX = 0, XY = 0, YY = 0;            // target, about its centroid
};

// Centred sums, so that grid coordinates of millions of metres lose no digits.
Sums SumsOf(const std::vector<FitPair>& pairs) {
  Sums s;
  const double n = static_cast<double>(pairs.size());
  for (const auto& p : pairs) s.mE += p.E, s.mN += p.N, s.mTE += p.TE, s.mTN += p.TN;
  s.mE /= n, s.mN /= n, s.mTE /= n, s.mTN /= n;
  for (const auto& p : pairs) {
    const double x = p.E - s.mE, y = p.N - s.mN, X = p.TE - s.mTE, Y = p.TN - s.mTN;
    s.xx += x * x, s.xy += x * y, s.yy += y * y;
    s.xX += x * X, s.xY += x * Y, s.yX += y * X, s.yY += y * Y;
    s.XX += X * X, s.XY += X * Y, s.YY += Y * Y;
  }
  return s;
}

// Points all on one line: the spread across the line is nothing beside the spread
// along it (the smaller eigenvalue of the scatter against the larger).
bool Collinear(double xx, double xy, double yy) {
  const double tr = xx + yy, det = xx * yy - xy * xy;
  return tr <= 0 || det <= 1e-12 * tr * tr;
}

void Residuals(FitResult& r, const std::vector<FitPair>& pairs) {
  double sum = 0, worst = -1;
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    double E = pairs[i].E, N = pairs[i].N;
    r.Transform.Apply(E, N);
    const double vE = pairs[i].TE - E, vN = pairs[i].TN - N, v = std::hypot(vE, vN);
    r.ResidualE.push_back(vE), r.ResidualN.push_back(vN), r.Residual.push_back(v);
    sum += v * v;
    if (v > worst) worst = v, r.Worst = static_cast<int>(i);
  }
  r.Rms = pairs.empty() ? 0 : std::sqrt(sum / static_cast<double>(pairs.size()));
}

// Clockwise turn of the direction (dE, dN) onto (tE, tN), in degrees within (-180, 180].
double TurnDegrees(double dE, double dN, double tE, double tN) {
  // Azimuths are atan2(E, N); the turn is their difference.
  double d = std::atan2(tE, tN) - std::atan2(dE, dN);
  while (d <= -Pi) d += 2 * Pi;
  while (d > Pi) d -= 2 * Pi;
  return d / Degree;
}

void Vertices(Entity& e, const PlaneTransform& t) {
  const int used = UsedVertices(e.Kind);
  for (int k = 0; k < used; ++k) {
    t.Apply(e.X[k], e.Y[k]);
    if (e.Z[k] != NoHeight) e.Z[k] += t.DH;
  }
}

void Vertices(BaseMapLine& b, const PlaneTransform& t) {
  const int used = UsedVertices(b.Kind);
  for (int k = 0; k < used; ++k) {
    t.Apply(b.X[k], b.Y[k]);
    if (b.Z[k] != NoHeight) b.Z[k] += t.DH;
  }
}

// The extent over every row, the reference map's included.
void RecomputeExtent(Document& doc) {
  ResetExtent(doc);
  for (int32_t i = 0; i < doc.PointCount && i < static_cast<int32_t>(doc.PointTable.size()); ++i)
    if (doc.PointTable[i].Deleted == kFalse) UpdateExtent(doc, doc.PointTable[i].E, doc.PointTable[i].N);
  for (int32_t i = 0; i < doc.EntityCount && i < static_cast<int32_t>(doc.EntityTable.size()); ++i) {
    const Entity& e = doc.EntityTable[i];
    if (e.Deleted != kFalse) continue;
    for (int k = 0; k < UsedVertices(e.Kind); ++k) UpdateExtent(doc, e.X[k], e.Y[k]);
  }
}

bool Journal(Document& doc, const View& view, WorkFiles& wf, bool withBaseMap) {
  RowsChanged(doc);
  RebuildScreenPoints(doc, view);
  RebuildScreenEntities(doc, view);
  doc.MapChanged = kTrue;
  bool ok = wf.WritePointWorkFile(doc);
  ok = wf.WriteEntityWorkFile(doc) && ok;
  if (withBaseMap) ok = wf.WriteBaseMapWorkFile(doc) && ok;
  return wf.WriteRecoveryHeader(doc) && ok;
}

std::string Fixed(double v, int decimals) {
  return num::Format(v, decimals == 3 ? "0.000" : decimals == 4 ? "0.0000" : "0.000000000");
}

}  // namespace

int UsedVertices(int16_t kind) {
  return kind == KindPoint ? 1 : kind == KindLine || kind == KindCircle2 ? 2 : 3;
}

PlaneTransform PlaneTransform::Shift(double dE, double dN, double dH) {
  PlaneTransform t;
  t.C = dE, t.G = dN, t.DH = dH;
  return t;
}

PlaneTransform PlaneTransform::Similarity(double scale, double degrees, double shiftE, double shiftN) {
  // A clockwise turn by a: E' = E cos a + N sin a, N' = -E sin a + N cos a.
  const double c = scale * std::cos(degrees * Degree), s = scale * std::sin(degrees * Degree);
  PlaneTransform t;
  t.A = c, t.B = s, t.C = shiftE;
  t.D = -s, t.F = c, t.G = shiftN;
  return t;
}

PlaneTransform PlaneTransform::Rotation(double degrees, double aboutE, double aboutN) {
  PlaneTransform t = Similarity(1, degrees, 0, 0);
  // The centre stays where it is.
  t.C = aboutE - (t.A * aboutE + t.B * aboutN);
  t.G = aboutN - (t.D * aboutE + t.F * aboutN);
  return t;
}

FitResult FitPoints(const std::vector<FitPair>& pairs, FitModel model) {
  FitResult r;
  r.Model = model;
  const std::size_t needed = model == FitModel::Affine ? 3 : 2;
  if (pairs.size() < 2) {
    r.Message = FitTooFewMessage;
    return r;
  }
  if (pairs.size() < needed) {
    r.Message = FitTooFewAffineMessage;
    return r;
  }
  for (std::size_t i = 0; i < pairs.size(); ++i)
    for (std::size_t j = i + 1; j < pairs.size(); ++j)
      if ((pairs[i].E == pairs[j].E && pairs[i].N == pairs[j].N) ||
          (pairs[i].TE == pairs[j].TE && pairs[i].TN == pairs[j].TN)) {
        r.Message = std::string(FitCoincidentMessage) + "(第" + std::to_string(i + 1) + "對與第" +
                    std::to_string(j + 1) + "對)";
        return r;
      }

  const Sums s = SumsOf(pairs);
  if (model == FitModel::Similarity) {
    // E' = a E + b N + c, N' = -b E + a N + f: a = s cos t, b = s sin t.
    const double q = s.xx + s.yy;
    const double a = (s.xX + s.yY) / q, b = (s.yX - s.xY) / q;
    r.Transform.A = a, r.Transform.B = b, r.Transform.D = -b, r.Transform.F = a;
    r.Scale = r.ScaleN = std::hypot(a, b);
    r.RotationDegrees = std::atan2(b, a) / Degree;
  } else {
    if (Collinear(s.xx, s.xy, s.yy) || Collinear(s.XX, s.XY, s.YY)) {
      r.Message = FitCollinearMessage;
      return r;
    }
    // The normal equations of each target coordinate on the centred survey coordinates.
    const double det = s.xx * s.yy - s.xy * s.xy;
    r.Transform.A = (s.xX * s.yy - s.yX * s.xy) / det;
    r.Transform.B = (s.yX * s.xx - s.xX * s.xy) / det;
    r.Transform.D = (s.xY * s.yy - s.yY * s.xy) / det;
    r.Transform.F = (s.yY * s.xx - s.xY * s.xy) / det;
    r.Scale = std::hypot(r.Transform.A, r.Transform.D);
    r.ScaleN = std::hypot(r.Transform.B, r.Transform.F);
    // The E axis (1, 0) goes to (A, D): its azimuth was 90 degrees.
    r.RotationDegrees = TurnDegrees(1, 0, r.Transform.A, r.Transform.D);
  }
  r.Transform.C = s.mTE - (r.Transform.A * s.mE + r.Transform.B * s.mN);
  r.Transform.G = s.mTN - (r.Transform.D * s.mE + r.Transform.F * s.mN);
  r.Ok = true;
  r.Redundant = pairs.size() > needed;
  if (!r.Redundant) r.Message = model == FitModel::Affine ? FitNoResidualAffineMessage : FitNoResidualMessage;
  Residuals(r, pairs);
  return r;
}

FitResult FitLines(double E1, double N1, double E2, double N2, double TE1, double TN1, double TE2, double TN2,
                   bool scale) {
  FitResult r;
  const double length = std::hypot(E2 - E1, N2 - N1), target = std::hypot(TE2 - TE1, TN2 - TN1);
  if (length == 0 || target == 0) {
    r.Message = FitLineTooShortMessage;
    return r;
  }
  r.RotationDegrees = TurnDegrees(E2 - E1, N2 - N1, TE2 - TE1, TN2 - TN1);
  r.Scale = r.ScaleN = scale ? target / length : 1;
  r.Transform = PlaneTransform::Similarity(r.Scale, r.RotationDegrees, 0, 0);
  double hE = E1, hN = N1;
  r.Transform.Apply(hE, hN);
  r.Transform.C = TE1 - hE, r.Transform.G = TN1 - hN;
  r.Ok = true;
  Residuals(r, {{E1, N1, TE1, TN1, "1"}, {E2, N2, TE2, TN2, "2"}});
  return r;
}

bool ApplyMapTransform(Document& doc, const View& view, WorkFiles& wf, const PlaneTransform& t, bool withBaseMap,
                       MapTransformUndo* undo, std::string& message) {
  message.clear();
  if (!doc.IsOpen()) {
    message = TransformNoDocumentMessage;
    return false;
  }
  doc.PointTable.resize(static_cast<std::size_t>(doc.PointCount));
  doc.EntityTable.resize(static_cast<std::size_t>(doc.EntityCount));
  doc.BaseMapTable.resize(static_cast<std::size_t>(doc.BaseMapCount));
  const int32_t firstPoint = std::min(doc.ReferencePointCount, doc.PointCount);
  const int32_t firstEntity = std::min(doc.ReferenceEntityCount, doc.EntityCount);
  const bool baseMap = withBaseMap && doc.BaseMapCount > 0;
  if (firstPoint == doc.PointCount && firstEntity == doc.EntityCount && !baseMap) {
    message = TransformEmptyMessage;
    return false;
  }

  if (undo != nullptr) {
    MapTransformUndo& u = *undo;
    u = MapTransformUndo{};
    u.Valid = true;
    u.DocumentName = doc.DocumentName;
    u.PointCount = doc.PointCount, u.EntityCount = doc.EntityCount, u.BaseMapCount = doc.BaseMapCount;
    u.FirstPoint = firstPoint, u.FirstEntity = firstEntity, u.WithBaseMap = baseMap;
    u.Points.assign(doc.PointTable.begin() + firstPoint, doc.PointTable.end());
    u.Entities.assign(doc.EntityTable.begin() + firstEntity, doc.EntityTable.end());
    if (baseMap) u.BaseMap = doc.BaseMapTable;
    u.MinE = doc.MinE, u.MaxE = doc.MaxE, u.MinN = doc.MinN, u.MaxN = doc.MaxN;
    u.StationE = doc.StationE, u.StationN = doc.StationN, u.StationH = doc.StationH;
    u.BacksightE = doc.BacksightE, u.BacksightN = doc.BacksightN;
    u.BacksightAzimuth = doc.BacksightAzimuth, u.OrientationConstant = doc.OrientationConstant;
    u.MapChanged = doc.MapChanged;
  }

  for (int32_t i = firstPoint; i < doc.PointCount; ++i) {
    Point& p = doc.PointTable[i];
    t.Apply(p.E, p.N);
    if (p.H != NoHeight) p.H += t.DH;
  }
  for (int32_t i = firstEntity; i < doc.EntityCount; ++i) Vertices(doc.EntityTable[i], t);
  if (baseMap)
    for (auto& b : doc.BaseMapTable) Vertices(b, t);

  // The set-up moves with the survey, and the orientation turns as the backsight's
  // azimuth does, so that the next observation lands on the moved map.
  if (doc.StationSet != kFalse) {
    const double dE = doc.BacksightE - doc.StationE, dN = doc.BacksightN - doc.StationN;
    t.Apply(doc.StationE, doc.StationN);
    if (doc.StationH != NoHeight) doc.StationH += t.DH;
    t.Apply(doc.BacksightE, doc.BacksightN);
    ComputeBacksightAzimuth(doc);
    if (dE != 0 || dN != 0)
      doc.OrientationConstant +=
          TurnDegrees(dE, dN, doc.BacksightE - doc.StationE, doc.BacksightN - doc.StationN) * Degree;
    while (doc.OrientationConstant < 0) doc.OrientationConstant += 2 * Pi;
    while (doc.OrientationConstant >= 2 * Pi) doc.OrientationConstant -= 2 * Pi;
  }
  RecomputeExtent(doc);
  if (!Journal(doc, view, wf, baseMap)) message = TransformJournalMessage;
  return true;
}

bool UndoMapTransform(Document& doc, const View& view, WorkFiles& wf, MapTransformUndo& u, std::string& message) {
  message.clear();
  if (!u.Valid || u.DocumentName != doc.DocumentName) {
    message = TransformUndoNoneMessage;
    return false;
  }
  if (u.PointCount != doc.PointCount || u.EntityCount != doc.EntityCount ||
      (u.WithBaseMap && u.BaseMapCount != doc.BaseMapCount) ||
      static_cast<int32_t>(doc.PointTable.size()) < doc.PointCount ||
      static_cast<int32_t>(doc.EntityTable.size()) < doc.EntityCount) {
    message = TransformUndoChangedMessage;
    return false;
  }
  // Coordinates only: flags set since (a deletion, an undelete) stay as they are.
  for (std::size_t i = 0; i < u.Points.size(); ++i) {
    Point& p = doc.PointTable[u.FirstPoint + i];
    p.E = u.Points[i].E, p.N = u.Points[i].N, p.H = u.Points[i].H;
  }
  for (std::size_t i = 0; i < u.Entities.size(); ++i) {
    Entity& e = doc.EntityTable[u.FirstEntity + i];
    for (int k = 0; k < 3; ++k) e.X[k] = u.Entities[i].X[k], e.Y[k] = u.Entities[i].Y[k], e.Z[k] = u.Entities[i].Z[k];
  }
  if (u.WithBaseMap)
    for (std::size_t i = 0; i < u.BaseMap.size() && i < doc.BaseMapTable.size(); ++i) {
      BaseMapLine& b = doc.BaseMapTable[i];
      for (int k = 0; k < 3; ++k) b.X[k] = u.BaseMap[i].X[k], b.Y[k] = u.BaseMap[i].Y[k], b.Z[k] = u.BaseMap[i].Z[k];
    }
  doc.MinE = u.MinE, doc.MaxE = u.MaxE, doc.MinN = u.MinN, doc.MaxN = u.MaxN;
  doc.StationE = u.StationE, doc.StationN = u.StationN, doc.StationH = u.StationH;
  doc.BacksightE = u.BacksightE, doc.BacksightN = u.BacksightN;
  doc.BacksightAzimuth = u.BacksightAzimuth, doc.OrientationConstant = u.OrientationConstant;
  const bool baseMap = u.WithBaseMap;
  u = MapTransformUndo{};
  if (!Journal(doc, view, wf, baseMap)) message = TransformJournalMessage;
  return true;
}

std::vector<std::string> FitReport(const FitResult& r, const std::vector<FitPair>& pairs) {
  std::vector<std::string> lines;
  const auto& t = r.Transform;
  const std::string params = "  E'=A*E+B*N+C  N'=D*E+F*N+G  A " + Fixed(t.A, 9) + "  B " + Fixed(t.B, 9) + "  C " +
                             Fixed(t.C, 4) + "  D " + Fixed(t.D, 9) + "  F " + Fixed(t.F, 9) + "  G " + Fixed(t.G, 4);
  if (r.Model == FitModel::Affine)
    lines.push_back("仿射轉換 E向比例 " + Fixed(r.Scale, 9) + "  N向比例 " + Fixed(r.ScaleN, 9) + "  旋轉 " +
                    Fixed(r.RotationDegrees, 9) + "度(順時針)" + params);
  else
    lines.push_back("相似轉換 比例 " + Fixed(r.Scale, 9) + "  旋轉 " + Fixed(r.RotationDegrees, 9) + "度(順時針)" + params);
  for (std::size_t i = 0; i < r.Residual.size() && i < pairs.size(); ++i) {
    const std::string label = pairs[i].Label.empty() ? std::to_string(i + 1) : pairs[i].Label;
    lines.push_back(label + "  dE " + Fixed(r.ResidualE[i], 3) + "  dN " + Fixed(r.ResidualN[i], 3) + "  殘差 " +
                    Fixed(r.Residual[i], 3) + (static_cast<int>(i) == r.Worst && r.Redundant ? "  *最大" : ""));
  }
  lines.push_back("RMS " + Fixed(r.Rms, 3));
  if (!r.Message.empty()) lines.push_back(r.Message);
  return lines;
}

}  // namespace tavik::edit
