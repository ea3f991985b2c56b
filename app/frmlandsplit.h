// frmLandSplit, "土地分割": the window of the land split, kept above the map at 100, 125
// so the parcel stays in sight while it is traced and cut. The logic is LandSplit's;
// this dialog shows its values and passes the controls' events on.
//
// LandSplitStation puts the split and the reference map into the program: the menu
// items 土地分割 (MainMnuSplit) and 讀入參考圖 (MainMnuReference, in the file menu), and
// the pointer modes LD, LD_Opt6, LD_Opt7 and LD_Opt8 on Paper1.
#pragma once

#include <QDialog>
#include <QObject>
#include <array>
#include <functional>
#include <memory>

#include "cadastre/land_split.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class Program;
class EditWiring;

class frmLandSplit : public QDialog {
  Q_OBJECT
 public:
  frmLandSplit(tavik::cadastre::LandSplit& logic, QWidget* parent = nullptr);
  tavik::cadastre::LandSplit& Logic() { return logic_; }
  // The controls show the logic's values again.
  void Refresh();
  QLineEdit* Text1() const { return text1_; }
  QLineEdit* Text2() const { return text2_; }
  QLineEdit* Text3() const { return text3_; }
  QRadioButton* Option(int k) const { return options_[static_cast<std::size_t>(k - 1)]; }
  // The map picture changed (a cut or a mark drawn): the window shows it.
  std::function<void()> PaperChanged;

 private:
  // Runs one action of the logic and shows its outcome.
  template <typename F>
  void Act(F f);

  tavik::cadastre::LandSplit& logic_;
  QLineEdit *text1_, *text2_, *text3_;
  QComboBox* combo1_;
  QCheckBox* check1_;
  QLabel* label1_;
  std::array<QRadioButton*, 8> options_{};
  bool refreshing_ = false;
};

class LandSplitStation : public QObject {
  Q_OBJECT
 public:
  LandSplitStation(Program& program, EditWiring& edit);
  ~LandSplitStation() override;

  // 土地分割: refused without a reference map.
  void OpenSplit();
  // 讀入參考圖: a document chosen by the file dialog becomes the reference map.
  void OpenReferenceMap();
  frmLandSplit* Dialog() const { return dialog_; }

 private:
  void PaperChanged();

  Program& program_;
  EditWiring& edit_;
  std::unique_ptr<tavik::cadastre::LandSplit> logic_;
  frmLandSplit* dialog_ = nullptr;
};
