// The pen on the map: what a press, a drag and a release on Paper1 mean, what the keys
// of the main window do, and the commands they run (drawing shapes, deriving new
// points, erasing and undeleting, renaming, offset copies).
//
// One text, ActionMode, says what the next pointer action means. The window turns a
// pointer event into Paper1 pixels once and hands it here; every command receives world
// coordinates. Everything the editor needs from the window and the map view around it
// (panning, zooming, repainting, status texts, popups, commands of other subsystems)
// goes through EditHost, so the whole machine runs in tests without a window.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "core/document.h"
#include "core/view_state.h"
#include "geo/area.h"
#include "geo/azimuth.h"
#include "platform/dialogs.h"
#include "platform/surface.h"

namespace tavik {
class WorkFiles;
}

namespace tavik::edit {

// Button values of the pointer events, as the surface reports them.
constexpr int LeftButton = 1;
constexpr int RightButton = 2;
constexpr int MiddleButton = 4;

enum class Cursor { Arrow, Pan, Window, Draw, Pick };

// What happens to a mode whose subsystem is built elsewhere (whole-map transforms, map
// matching, base map, stake-out, land split, station set-up, RTK base ...).
enum class PlugEvent { Press, Move, Release, RightPress };

// The window, the map view and the other subsystems as the editor sees them.
class EditHost {
 public:
  virtual ~EditHost() = default;

  // Map view. A pan starts at a press (the view before it is pushed), follows the pointer
  // by the fast path without repainting, and ends with the full tail.
  virtual void BeginPan(float x, float y) = 0;
  virtual void MovePan(float anchorX, float anchorY, float x, float y) = 0;
  virtual void EndPan() = 0;
  // ZoomW: fit the window, centre on it, push the old view, run the tail.
  virtual void ZoomWindow(double E1, double N1, double E2, double N2) = 0;
  // The fixed tail after the view moved (ComputeView, repaint, screen tables, header).
  virtual void ViewChanged() = 0;
  // Full repaint of Paper1 from the tables.
  virtual void Redraw() = 0;
  // Draws one newly added row straight onto the picture.
  virtual void DrawEntityRow(int32_t row) = 0;
  virtual void DrawPointRow(int32_t row, bool highlight) = 0;
  // A view command of Toolbar1 or a key: ZE ZP ZS ZC ZT ZoomIn ZoomOut and the toggles
  // SwitchPtName SwitchBM DispGrid SwitchEle 垂距開關 SwitchBreak SwitchSN.
  virtual void ViewCommand(const std::string& key) = 0;

  // Window.
  virtual void SetPrompt(const std::string&) {}
  virtual void SetReadout(const std::string& /*e*/, const std::string& /*n*/) {}
  virtual void SetCursor(Cursor) {}
  virtual void ShowStatus(const std::string&) {}
  // The right-click inquiry popup for the entity at that row of EntityTable.
  virtual void ShowInquiry(int32_t /*row*/, const std::string& /*text*/) {}
  // ActionMode changed ("" when no command runs): the toolbars show the mode pressed.
  virtual void ModeChanged(const std::string& /*mode*/) {}
  // The legend in force changed (the legend button shows it).
  virtual void LegendChanged(int16_t /*code*/) {}
  // The base map grew by lines drawn by hand: it is shown, and its commands are there.
  virtual void BaseMapChanged() {}

  // Commands that belong to the frame and the instruments.
  virtual void FrameCommand(const std::string& /*key*/) {}  // 開新圖, 開啟舊圖, 快速存檔, Save (F2), ...
  virtual void Measure() {}                                 // Space, 接收資料
  virtual void ShowManual() {}                               // Shift+F1
  virtual bool HasGpsFix() const { return false; }
  virtual std::string MeasureMode() const { return "TS"; }

  // Modes of subsystems not built here: each registers its handler under its mode key
  // (Plugs["LD"] = ...); a mode with no handler does nothing and says nothing. True when
  // the event was taken.
  using PlugHandler = std::function<bool(PlugEvent, double E, double N)>;
  std::map<std::string, PlugHandler> Plugs;
  virtual bool Plugged(const std::string& mode, PlugEvent event, double E, double N) {
    const auto it = Plugs.find(mode);
    return it != Plugs.end() && it->second && it->second(event, E, N);
  }
};

// The data of the pointer machine.
struct PointerState {
  std::string ActionMode;
  float DragAnchorX = 0, DragAnchorY = 0;
  float DragNowX = 0, DragNowY = 0;
  float PointerX = 0, PointerY = 0;
  int16_t LineInProgress = kFalse;
  std::vector<double> ChainPoints[3];  // E, N, H of the chain's vertices
  int16_t ChainCount = 0;
  double PickE = 0, PickN = 0, PickH = 0;

  // Our own bookkeeping of drags and rubber bands.
  bool Panning = false;
  bool Windowing = false;
  bool RightPressTaken = false;  // a command took the right press: its release is no inquiry
  bool BandShown = false;  // an inverted rubber band is on the picture
  bool BandIsRectangle = false;
  std::array<float, 4> Band{};
  std::vector<int32_t> ChainRows;  // EntityTable rows of the lines of the chain
};

// A few points picked towards one shape.
struct ShapeBuffer {
  double E[3] = {0, 0, 0}, N[3] = {0, 0, 0}, H[3] = {0, 0, 0};
  int16_t Count = 0;
};

enum class Shape { Rectangle, Circle2, Circle3, Arc };

// The shape the next recorded point completes (F4 to F8).
enum class MeasuredShape { None, Line, Circle2, Circle3, Arc, Rectangle };

// Point naming of NewSymbolAtPick: the base of the next automatic name.
struct Naming {
  bool AutoNaming = false;
  std::string Prefix;
  int16_t Number = 0;
  int16_t Width = 1;
  std::string NextName() const;  // prefix and the next number, zero-padded to the width
};

// A point or an entity vertex found by a pick.
struct PickHit {
  bool Found = false;
  double E = 0, N = 0, H = 0;
};

class Editor {
 public:
  Editor(Document& doc, View& view, WorkFiles& work, ui::Dialogs& dialogs, ui::Surface& surface,
         EditHost& host);

  // Pointer events in pixels of Paper1.
  void MouseDown(int button, int shift, float x, float y);
  void MouseMove(int button, int shift, float x, float y);
  void MouseUp(int button, int shift, float x, float y);
  // The same with world coordinates, converted to pixels of the present view.
  void MouseDownAt(int button, double E, double N);
  void MouseMoveAt(int button, double E, double N);
  void MouseUpAt(int button, double E, double N);
  void ClickAt(int button, double E, double N);  // press and release at one place

  // Keys of the main window: KeyDown with the key code (letters and digits as their
  // upper-case character, the others as below, the classic virtual-key values), KeyPress
  // with the character typed.
  bool KeyDown(int key, bool shift);
  bool KeyPress(char c);

  // Toolbar buttons by their key text, and the menu commands that set a mode.
  void Toolbar1Click(const std::string& key);
  void Toolbar2Click(const std::string& key);
  void StartCommand(const std::string& mode);  // menu and popup commands
  // Esc, or a second press of the running command's button: ends the command (a chain
  // ends as a right press ends it) and leaves no mode. The pick modes of the dialogs
  // are theirs to end. True when something was running.
  bool EndCommand();
  // New, Open and Close end every command.
  void Reset();

  // Shapes with their points given (the pick path and the measured path both end here).
  bool MakeRectangle(double AE, double AN, double AH, double BE, double BN, double BH, double CE,
                     double CN, double CH);
  bool MakeCircle2(double AE, double AN, double AH, double BE, double BN, double BH);
  bool MakeCircle3(double AE, double AN, double AH, double BE, double BN, double BH, double CE,
                   double CN, double CH);
  bool MakeArc(double AE, double AN, double AH, double BE, double BN, double BH, double CE, double CN,
               double CH);
  bool AddLine(double E1, double N1, double H1, double E2, double N2, double H2);
  // A measured point arrived: completes the shape of an F4 to F8 flag from the last
  // recorded points (newest last), then the flag falls.
  void MeasuredPointAdded();

  // Adds a new point made by a construction (view follows, mark, AddPoint). False when
  // not made (E or N exactly 0).
  bool AddNewPoint(double E, double N, double H);
  // "輸入座標": a point typed as E,N or E,N,H becomes a new point.
  void KeyinCoordinate();

  // Entity editing.
  bool EraseP(double E, double N, float x, float y);
  bool EraseEntity(float x, float y);
  bool EraseEntityRow(int32_t row);
  int EraseWindowArea(double E1, double N1, double E2, double N2, bool inside);
  bool Undelete();
  bool DeleteLastPoint();
  std::string InquiryText(int32_t row) const;

  // Pairwise trimming: both lines cut or extended to the crossing of their lines, each
  // keeping the part on the side where it was picked. False (nothing changed) for a line
  // of the reference map, parallel lines (each with its message) or lines already
  // meeting at their ends.
  bool TrimLines(int32_t rowA, double pickAE, double pickAN, int32_t rowB, double pickBE, double pickBN);
  // The line-edit popup: the values of a line as text, and the typed values applied.
  // The start stays: a new length moves the end along the line, a new azimuth turns
  // the line about its start. "" when done (or nothing changed), else the refusal.
  struct LineEditValues {
    std::string Length, Azimuth, Name, Code;
  };
  LineEditValues LineEditText(int32_t row) const;
  std::string EditLine(int32_t row, const LineEditValues& typed);
  // One step back over the last trim or line edit.
  bool UndoEdit();
  // What each trim or line edit replaced, newest last.
  std::vector<std::vector<Entity>> EditHistory;

  // The hand-drawn base map: a line of BaseMapTable (Code 299) appended and journalled.
  void AddBaseMapLine(double E1, double N1, double E2, double N2);
  // OFFSET from the inquiry popup: asks the distance for the copy of that line, then the
  // next click gives the side.
  void StartOffset(int32_t row);

  // The legend hot keys A..Z; 0 when the letter has none.
  static int16_t HotKeyLegend(char letter);
  // The rows of the window "快捷鍵速覽": key, legend code (empty for the other keys),
  // name or action.
  static std::vector<std::array<std::string, 3>> HotKeyTable();

  // State, open for the window and for tests.
  PointerState Ptr;
  ShapeBuffer Buffers[4];
  MeasuredShape Flag = MeasuredShape::None;
  bool AutoJoin = false;  // F9 / F10
  Naming Names;
  AreaRingState Area;  // QAREA's ring and the unit of area labels
  double NewPointE = 0, NewPointN = 0, NewPointH = 0;
  // The foot of the last perpendicular. Its height is only worked out where heights are
  // kept (MapType 1); elsewhere it keeps what it held, as the midpoint's height does.
  Foot LastFoot;
  double OffsetDistance = 0;
  // MapMoveBmByP and MapMoveByLine2: each pick for the fitting dialog. Step counts the
  // picks of the command from 0: survey point and target by turns, or the survey line's
  // head and tail and then the target line's. Snapped is false for a target taken where
  // the pen touched, with nothing to snap to.
  struct FitPick {
    int Step = 0;
    double E = 0, N = 0;
    std::string Label;
    bool Snapped = false;
  };
  std::function<void(const FitPick&)> OnFitPick;
  int32_t PendingRow = -1;  // the entity of a two-pick command (NP_Extend, OFFSET ...)
  int PickStep = 0;         // which pick of a multi-pick command comes next

  // Key codes for KeyDown.
  enum Key : int {
    KeyEscape = 0x1B,
    KeyDelete = 0x2E,
    KeySpace = 0x20,
    KeyF1 = 0x70,
    KeyF2,
    KeyF3,
    KeyF4,
    KeyF5,
    KeyF6,
    KeyF7,
    KeyF8,
    KeyF9,
    KeyF10,
    KeyF11,
    KeyF12,
  };

  Document& doc;
  View& view;
  WorkFiles& work;
  ui::Dialogs& dialogs;
  ui::Surface& surface;
  EditHost& host;

 private:
  // pointer_machine.cpp
  void PixelToWorld(float x, float y, double& E, double& N) const;
  void WorldToPixel(double E, double N, float& x, float& y) const;
  void DrawBand(float x1, float y1, float x2, float y2, bool rectangle);
  void EraseBand();
  void PressInMode(int button, double E, double N, float x, float y);
  void ReleaseInMode(int button, double E, double N, float x, float y);
  void EndChain();
  void CloseChain();
  void SetMode(const std::string& mode, const std::string& prompt = "");
  void SetCursorForMode();
  // A full repaint; the picture then carries no rubber band.
  void Repaint();
  void ViewKey(const std::string& key);

  // pick.cpp
  PickHit PickPoint(float x, float y, float side) const;
  // The base-map record under a box of half-side `half` pixels, from the first row; -1
  // for none.
  int32_t PickBaseMapRow(float x, float y, float half, std::initializer_list<int16_t> kinds) const;
  // A vertex of a base-map line within a square of `side` pixels.
  PickHit PickBaseMapVertex(float x, float y, float side) const;
  // The entity under a box of half-side `half` pixels about the pointer, newest first,
  // then the base map when asked: its row, or -1. `kinds` lists the kinds that count
  // (empty: all).
  int32_t PickEntityRow(float x, float y, float half, std::initializer_list<int16_t> kinds, bool withBaseMap,
                        bool* onBaseMap, int32_t skipRow = -1, bool skipOnBaseMap = false) const;
  int32_t NearestEntityRow(float x, float y) const;

  // shapes.cpp
  void ShapePick(Shape shape, const PickHit& p);
  bool ShapeChecks(ShapeBuffer& b);
  void MarkPick(double E, double N);
  void ChainPick(const PickHit& p);
  // A line of the chain: an entity of the legend in force, or in BaseLine a base-map line.
  void ChainLine(double E1, double N1, double H1, double E2, double N2, double H2);
  int32_t NewEntity(int16_t code, int16_t kind, double X1, double Y1, double Z1, double X2, double Y2,
                    double Z2, double X3, double Y3, double Z3, const std::string& name);
  void AreaLabel(double E, double N, double area);
  bool AskSectionName(std::string& name, const std::vector<int32_t>& ownRows);
  bool NameInUse(const std::string& name, const std::vector<int32_t>& ownRows) const;
  void JournalWarning(bool ok);

  // symbols.cpp
  void NewSymbolAtPick(double E, double N, double H);
  void TextNote(double E, double N);

  // constructions.cpp
  void ConstructionPick(const std::string& mode, float x, float y, double E, double N);
  // The line picked for a construction: entity or base-map record, as plain vertices.
  struct PickedLine {
    bool Found = false;
    bool OnBaseMap = false;
    int32_t Row = -1;
    int16_t Code = 0, Kind = 0;
    double X[3] = {0, 0, 0}, Y[3] = {0, 0, 0}, Z[3] = {0, 0, 0};
  };
  // `skip`: a line already picked, passed over.
  PickedLine PickLine(float x, float y, float half, std::initializer_list<int16_t> kinds,
                      const PickedLine* skip = nullptr) const;
  PickHit FirstPick;  // the point of a two-pick command
  PickedLine FirstLine;
  // The lines (Kind 21) that cross a window, on the screen newest first, then the base map.
  std::vector<PickedLine> LinesInWindow(double E1, double N1, double E2, double N2) const;
  // QX2Line shows where two lines in the window cross; QX2LineMark makes a point there.
  void CrossingInWindow(const std::string& mode, double E1, double N1, double E2, double N2);
  // SS1: a new point led off the picked one by a typed bearing and distance.
  void LeadPointPick(const PickHit& p);
  void QueryDistancePick(const PickHit& p);
  void QueryAreaEnd();

  // line_edit.cpp
  bool EditableLine(int32_t row) const;
  void RowsEdited(const std::vector<Entity>& before);
  void TrimPick(float x, float y, double E, double N);

  // base_map.cpp
  void BaseMapPick(const std::string& mode, float x, float y, double E, double N);

  // fit_pick.cpp
  void FitPairPick(float x, float y, double E, double N);
  // The survey point (or, with entityVertices, entity vertex) or base-map vertex nearest
  // the pointer within the pick square.
  FitPick NearestVertex(float x, float y, bool entityVertices, bool baseMap) const;

  // entity_edit.cpp
  void EditPick(const std::string& mode, float x, float y, double E, double N);
  void RewriteEntities();
  void RewritePoints();
  void Changed();
};

}  // namespace tavik::edit
