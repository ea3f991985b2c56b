// The 匯出 menu: the DXF drawing, the two CSV side tables, the document's text report,
// the profile and cross-section drawings, the observation and stake-out books.
#pragma once

#include <QObject>

#include "export/dxf_output.h"
#include "export/field_book_sheet.h"

class Program;

class ExportMenu : public QObject {
  Q_OBJECT
 public:
  // Adds the commands to the program's 匯出 menu.
  explicit ExportMenu(Program& program);

  void OpenDXFOutput();
  void PointTable();
  void ClassTable();
  void Report();
  void Profile();
  void Sections();
  void ObservationBook();
  void StakeBook();

 private:
  int16_t& AreaUnit();
  void FieldBook(tavik::sheet::Book book, const char* suffix);
  Program& program_;
  tavik::dxf::DxfOutputMemory memory_;
  int16_t areaUnitAlone_ = 1;  // the area unit while no editor shares its own
};
