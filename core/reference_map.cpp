#include "core/reference_map.h"

#include "core/tables.h"

namespace tavik {

std::string ReferenceMapRefusal(const Document& doc) {
  if (doc.ReferenceMapLoaded != kFalse) return ReferenceMapTwiceMessage;
  if (doc.PointCount > 0 || doc.EntityCount > 0) return ReferenceMapAfterSurveyMessage;
  return "";
}

bool LoadReferenceMap(Document& doc, const View& view, WorkFiles& wf, const Document& ref, std::string& refusal) {
  refusal = ReferenceMapRefusal(doc);
  if (!refusal.empty()) return false;
  const auto points = static_cast<std::size_t>(std::max(0, ref.PointCount));
  const auto entities = static_cast<std::size_t>(std::max(0, ref.EntityCount));
  bool any = false;
  for (std::size_t i = 0; i < points && i < ref.PointTable.size(); ++i) any |= ref.PointTable[i].Deleted == kFalse;
  for (std::size_t i = 0; i < entities && i < ref.EntityTable.size(); ++i) any |= ref.EntityTable[i].Deleted == kFalse;
  if (!any) {
    refusal = ReferenceMapEmptyMessage;
    return false;
  }
  // The rows go in as a block, as a load puts them, with the journal written whole once
  // at the end: a cadastral map has thousands of lines, and a flushed append for each
  // would keep the surveyor waiting for minutes.
  doc.PointTable.resize(static_cast<std::size_t>(doc.PointCount));
  doc.EntityTable.resize(static_cast<std::size_t>(doc.EntityCount));
  doc.ScreenPointTable.resize(static_cast<std::size_t>(doc.ScreenPointCount));
  doc.ScreenEntityTable.resize(static_cast<std::size_t>(doc.ScreenEntityCount));
  for (std::size_t i = 0; i < points && i < ref.PointTable.size(); ++i) {
    Point p = ref.PointTable[i];
    if (p.Deleted != kFalse) continue;
    UpdateExtent(doc, p.E, p.N);
    p.Number = ++doc.PointCount;
    doc.PointTable.push_back(p);
    if (view.InScreen(p.E, p.N)) doc.ScreenPointTable.push_back(p), ++doc.ScreenPointCount;
  }
  for (std::size_t i = 0; i < entities && i < ref.EntityTable.size(); ++i) {
    Entity e = ref.EntityTable[i];
    if (e.Deleted != kFalse) continue;
    const int used = e.Kind == KindPoint ? 1 : e.Kind == KindLine || e.Kind == KindCircle2 ? 2 : 3;
    for (int k = 0; k < used; ++k) UpdateExtent(doc, e.X[k], e.Y[k]);
    e.Number = ++doc.EntityCount;
    doc.EntityTable.push_back(e);
    doc.ScreenEntityTable.push_back(e), ++doc.ScreenEntityCount;
  }
  wf.WritePointWorkFile(doc);
  wf.WriteEntityWorkFile(doc);
  doc.ReferenceMapLoaded = kTrue;
  doc.ReferencePointCount = doc.PointCount;
  doc.ReferenceEntityCount = doc.EntityCount;
  doc.MapChanged = kTrue;
  wf.WriteRecoveryHeader(doc);
  return true;
}

}  // namespace tavik
