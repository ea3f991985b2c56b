#include "core/document.h"

namespace tavik {

void SetDocumentName(Document& doc, const std::string& name) {
  doc.DocumentName = name;
  doc.SpcPath = name + ".SPC";
  doc.SpPath = name + ".SP";
  doc.OldPath = name + ".OLD";
  doc.WayPath = name + ".WAY";
  doc.ObsPath = name + ".OBS";
  doc.GobsPath = name + ".GOBS";
  doc.TxtPath = name + ".TXT";
  doc.DxfPath = name + ".DXF";
  doc.StkPath = name + ".STK";
  doc.GstkPath = name + ".GSTK";
  doc.MacPath = name + ".MAC";
  doc.KeyPath = name + ".KEY";
  doc.StrPath = name + ".STR";
  doc.PtsPath = name + ".PTS";
}

}  // namespace tavik
