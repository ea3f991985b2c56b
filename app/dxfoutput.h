// DXFOutput, "輸出 DXF 圖檔": the Qt face of DXFOutputLogic.
#pragma once

#include <QDialog>
#include <filesystem>

#include "export/dxf_output.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;

class DXFOutput : public QDialog {
  Q_OBJECT
 public:
  DXFOutput(const tavik::Document& doc, tavik::dxf::DxfOutputMemory& memory, int16_t& areaUnit,
            tavik::ui::Dialogs& dialogs, std::filesystem::path workFolder, std::filesystem::path symbolDir,
            QWidget* parent = nullptr);
  tavik::dxf::DXFOutputLogic& Logic() { return logic_; }
  // After a finished export: Label4's text, for the main window to keep showing.
  QString Outcome() const;

 private:
  void Pull();
  void Push();

  tavik::dxf::DXFOutputLogic logic_;
  std::filesystem::path workFolder_, symbolDir_;
  QLineEdit* txtScale_;
  QRadioButton *option1_, *option2_, *option3_, *option4_, *option5_, *option6_, *option7_;
  QRadioButton *option8_, *option9_, *option10_;
  QComboBox* combo1_;
  QCheckBox* check5_;
  QLabel *label6_, *label4_;
};
