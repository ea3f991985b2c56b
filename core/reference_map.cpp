#include "core/reference_map.h"

#include "core/tables.h"

namespace tavik {

bool LoadReferenceMap(Document& doc, const View& view, WorkFiles& wf, const Document& ref, std::string& refusal) {
  if (doc.ReferenceMapLoaded != kFalse) {
    refusal = ReferenceMapTwiceMessage;
    return false;
  }
  if (doc.PointCount > 0 || doc.EntityCount > 0) {
    refusal = ReferenceMapAfterSurveyMessage;
    return false;
  }
  const auto points = static_cast<std::size_t>(std::max(0, ref.PointCount));
  const auto entities = static_cast<std::size_t>(std::max(0, ref.EntityCount));
  bool any = false;
  for (std::size_t i = 0; i < points && i < ref.PointTable.size(); ++i) any |= ref.PointTable[i].Deleted == kFalse;
  for (std::size_t i = 0; i < entities && i < ref.EntityTable.size(); ++i) any |= ref.EntityTable[i].Deleted == kFalse;
  if (!any) {
    refusal = ReferenceMapEmptyMessage;
    return false;
  }
  for (std::size_t i = 0; i < points && i < ref.PointTable.size(); ++i) {
    const Point& p = ref.PointTable[i];
    if (p.Deleted == kFalse) AddPoint(doc, view, wf, p.E, p.N, p.H);
  }
  for (std::size_t i = 0; i < entities && i < ref.EntityTable.size(); ++i) {
    const Entity& e = ref.EntityTable[i];
    if (e.Deleted != kFalse) continue;
    AddEntity(doc, view, wf, e.Code, e.Kind, e.X[0], e.Y[0], e.Z[0], e.X[1], e.Y[1], e.Z[1], e.X[2], e.Y[2], e.Z[2],
              e.Name);
  }
  doc.ReferenceMapLoaded = kTrue;
  doc.ReferencePointCount = doc.PointCount;
  doc.ReferenceEntityCount = doc.EntityCount;
  doc.MapChanged = kTrue;
  wf.WriteRecoveryHeader(doc);
  return true;
}

}  // namespace tavik
