// The 匯出 menu: the DXF drawing, the two CSV side tables, the document's text report,
// the profile and cross-section drawings.
#pragma once

#include <QObject>

#include "export/dxf_output.h"

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

 private:
  int16_t& AreaUnit();
  Program& program_;
  tavik::dxf::DxfOutputMemory memory_;
  int16_t areaUnitAlone_ = 1;  // the area unit while no editor shares its own
};
