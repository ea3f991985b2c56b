#include "view/document_view.h"

#include "core/docfile.h"
#include "view/extent.h"

namespace tavik {

bool LoadOldDocument(Document& doc, View& view, ui::Dialogs& dialogs) {
  if (!ReadOldDocument(doc, dialogs)) return false;
  view::FitWholeExtent(doc, view);
  return true;
}

}  // namespace tavik
