// 土地分割: one parcel of the reference map divided in two by a straight line, so that
// one piece has the area the surveyor asks for.
//
// The parcel is traced by picking its corners on the reference map (each edge becomes an
// entity of the boundary code 266), the surveyor types the area or ticks 平分, and
// choosing one of the eight modes runs the cut. The two ends of the cut become new
// stakes: 確定 commits them to the document, 分割點輸出 writes them with the corners to
// a stake-out text file.
//
// This is the logic of the dialog frmLandSplit without its window: the controls are
// the plain values of SplitForm, which the window shows and writes back; messages go
// through ui::Dialogs, the cut is drawn on Paper1 when one is given, and the pointer
// modes (LD, LD_Opt6, LD_Opt7, LD_Opt8) are handed to the pointer machine through
// SetActionMode. The command-line tool runs the same class on a saved document.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "cadastre/split_geometry.h"
#include "core/document.h"
#include "core/view_state.h"
#include "core/workfiles.h"
#include "platform/dialogs.h"
#include "platform/surface.h"

namespace tavik::cadastre {

// The pointer modes of the dialog.
inline constexpr const char* ModeTrace = "LD";
inline constexpr const char* ModeParallel = "LD_Opt6";
inline constexpr const char* ModeThroughPoint = "LD_Opt7";
inline constexpr const char* ModeTwoPoints = "LD_Opt8";

inline constexpr const char* NoReferenceMapMessage = "請先將地籍圖讀入成參考圖";
inline constexpr const char* AreaRangeMessage = "分割面積不可大於總面積,也不可為0";

// The controls of the dialog as values.
struct SplitForm {
  std::string Text1;   // area to cut
  std::string Text2;   // azimuth of the cut, decimal degrees
  std::string Text3;   // area left over
  std::string Label1;  // the parcel: stakes and area
  std::string Combo1 = "100";  // 面積步進值
  bool Check1 = false;         // 平分
  bool AreaBoxesEnabled = true;
  int Option = 0;  // the mode chosen, 1..8; 0 none
};

class LandSplit {
 public:
  LandSplit(Document& doc, const View& view, WorkFiles& wf, ui::Dialogs& dialogs);

  // Where the cut, its label and the traced edges are drawn; none when headless.
  ui::Surface* Paper = nullptr;
  int16_t AreaUnit = 1;     // unit of the area label
  std::string WorkFolder;   // where the stake-out file dialog starts
  // The pointer machine's mode ("" ends it); the window shows the dialog again when
  // the trace closes (ShowDialog), repaints the map (Redraw), shows the counts and
  // closes the dialog (Close).
  std::function<void(const std::string& mode)> SetActionMode;
  std::function<void()> ShowDialog, Redraw, ShowCounts, Close;

  // The menu command refuses without a reference map: "請先將地籍圖讀入成參考圖".
  static bool CanOpen(const Document& doc, ui::Dialogs& dialogs);
  // The dialog opens: the step is 100, and a parcel already in the document is measured.
  void Open();

  // 圈選土地: the next picks trace the parcel (legend 266, mode LD).
  void Command1();
  // A press at pixel (x, y) of Paper1 in mode LD: snaps to the nearest corner of a line
  // or arc on the screen within 30 pixels. True when it took a corner.
  bool TracePick(double x, double y);
  // The shoelace area of the traced corners.
  double ParcelArea() const;

  // Text1 or Text3 left (or Enter pressed in it): checked and mirrored into the other.
  void Text1Done();
  void Text3Done();
  // Typing in Text1 or Text3 clears the modes; typing in Text2 clears mode 5.
  void AreaTyped();
  void AzimuthTyped();
  void Check1Click(bool ticked);
  void Command3();  // one step more
  void Command4();  // one step less

  // An option button chosen: the guards, then the cut (modes 1 to 5) or the pick that
  // leads to it (6 to 8).
  void ChooseOption(int option);
  // The picks of modes 6, 7, 8 at pixel (x, y). True when something was picked.
  bool PickParallelLine(double x, double y);
  bool PickPivotPoint(double x, double y);
  bool PickTwoPoints(double x, double y);

  // Modes 1 to 5: the turn, the slide and the turn back.
  void SplitByDirection(int option);
  // Mode 6 with the line of that Number; false when there is no such line.
  bool SplitParallel(int32_t number);
  // Mode 7 about the point at that row of ScreenPointTable, or at (E, N). False when
  // no boundary edge has the point's foot on it.
  bool SplitThroughPoint(int32_t row);
  bool SplitThroughPointAt(double E, double N);
  // Mode 8 through A1 and A2 (doc.SplitLine); SplitTwoPointsAt sets them first.
  void SplitTwoPoints();
  void SplitTwoPointsAt(double E1, double N1, double E2, double N2);

  // The pivot of mode 7: the foot of the point on the nearest edge, left in A1.
  bool NearestEdgeFoot(double E, double N, int32_t& edgeNumber);
  void EraseSplitMark();

  void cmdApply();   // 確定
  void cmdCancel();  // 清除重來
  void Command2();   // 放棄離開
  // 分割點輸出: asks for the file, writes it and says so.
  void cmdOutput();
  // The stake-out file itself, in code page 950. False when it cannot be written.
  bool WriteStakeFile(const std::string& path) const;

  // The number of boundary edges the split works on: SplitStakeCount, or fewer when the
  // document holds fewer boundary edges.
  int32_t EdgeCount() const;

  Document& doc;
  const View& view;
  WorkFiles& wf;
  ui::Dialogs& dialogs;
  SplitForm form;

  double SplitTotalArea = 0;
  double SplitTargetArea = 0;
  double SplitRemainArea = 0;
  double SplitCutArea = 0;
  double SplitStep = 100;
  int32_t SplitParallelEntity = 0;
  int32_t SplitPointRow = 0;
  int16_t SplitSecondPoint = kFalse;
  Cut cut;

 private:
  bool Guards(int option);
  void AreaDone(bool first);
  void RunAgain();
  void ShowAreas(const char* picture);
  void SetLabel1(const char* picture);
  // After any cut: A1, A2 into SplitLine, Text2, the mark and its label.
  void FinishCut(bool showAzimuth, const char* azimuthPicture);
  void Mode(const std::string& m);
  void DrawSegment(double E1, double N1, double E2, double N2, ui::Rgb colour, ui::LineStyle style);
  void Message(const std::string& text, const std::string& title);
  void Step(bool up);
};

}  // namespace tavik::cadastre
