#include "view/document_view.h"

#include "core/docfile.h"
#include "view/extent.h"
#include "view/screen_tables.h"
#include "view/transform.h"

namespace tavik {

bool LoadOldDocument(Document& doc, View& view, ui::Dialogs& dialogs, const ProgressSink& progress) {
  if (!ReadOldDocument(doc, dialogs, progress)) return false;
  view::FitWholeExtent(doc, view);
  return true;
}

bool MergeDocument(Document& doc, View& view, WorkFiles& wf, const std::string& path, ui::Dialogs& dialogs,
                   const ProgressSink& progress) {
  if (!MergeDocumentRecords(doc, wf, path, dialogs, progress)) return false;
  view::PushView(view, doc.ScaleDenominator, doc.ViewCentreE, doc.ViewCentreN);
  view::FitWholeExtent(doc, view);
  RebuildScreenPoints(doc, view);
  RebuildScreenEntities(doc, view);
  wf.WriteRecoveryHeader(doc);
  return true;
}

}  // namespace tavik
