// MouseDown, MouseMove and MouseUp of Paper1 and the modes they branch on.
//
// The order of the tests matters and is kept: the middle button pans in every mode, a
// plain drag with no command pans, the window commands take the press as an anchor, and
// only then does the mode decide. Rubber bands are drawn in the inverting mode, so that
// drawing the same band a second time takes it off the picture; the machine remembers
// the band on the picture and clears that memory whenever the picture is repainted.
#include <cmath>

#include "core/numbers.h"
#include "edit/editor.h"
#include "edit/modes.h"

namespace tavik::edit {

Editor::Editor(Document& d, View& v, WorkFiles& w, ui::Dialogs& dlg, ui::Surface& s, EditHost& h)
    : doc(d), view(v), work(w), dialogs(dlg), surface(s), host(h) {}

void Editor::PixelToWorld(float x, float y, double& E, double& N) const {
  PaperToWorld(view, doc.ScaleDenominator, x, y, E, N);
}

void Editor::WorldToPixel(double E, double N, float& x, float& y) const {
  WorldToPaper(view, doc.ScaleDenominator, E, N, x, y);
}

void Editor::DrawBand(float x1, float y1, float x2, float y2, bool rectangle) {
  surface.SetDrawMode(ui::DrawMode::Invert);
  surface.SetPen(ui::MakeRgb(255, 255, 0), 1, ui::LineStyle::Solid);
  if (rectangle) {
    surface.Line(x1, y1, x2, y1);
    surface.Line(x2, y1, x2, y2);
    surface.Line(x2, y2, x1, y2);
    surface.Line(x1, y2, x1, y1);
  } else {
    surface.Line(x1, y1, x2, y2);
  }
  surface.SetDrawMode(ui::DrawMode::Copy);
  Ptr.Band = {x1, y1, x2, y2};
  Ptr.BandIsRectangle = rectangle;
}

void Editor::EraseBand() {
  if (!Ptr.BandShown) return;
  DrawBand(Ptr.Band[0], Ptr.Band[1], Ptr.Band[2], Ptr.Band[3], Ptr.BandIsRectangle);
  Ptr.BandShown = false;
}

void Editor::SetMode(const std::string& mode, const std::string& prompt) {
  EraseBand();
  Ptr.ActionMode = mode;
  PickStep = 0;
  PendingRow = -1;
  host.SetPrompt(prompt);
  SetCursorForMode();
  host.ModeChanged(mode);
}

void Editor::Reset() {
  EraseBand();
  Ptr = PointerState{};
  for (auto& b : Buffers) b = ShapeBuffer{};
  Flag = MeasuredShape::None;
  PickStep = 0;
  PendingRow = -1;
  LastFoot = Foot{};  // no height carries over from another document
  EditHistory.clear();  // the rows it names are renumbered by a save or gone with the document
  host.SetPrompt("");
  host.SetCursor(Cursor::Arrow);
  host.ModeChanged("");
}

void Editor::MouseDown(int button, int shift, float x, float y) {
  (void)shift;
  Ptr.PointerX = x;
  Ptr.PointerY = y;
  const std::string& m = Ptr.ActionMode;

  if (button == MiddleButton) {
    host.SetCursor(Cursor::Pan);
    Ptr.Panning = true;
    Ptr.DragAnchorX = Ptr.DragNowX = x;
    Ptr.DragAnchorY = Ptr.DragNowY = y;
    host.BeginPan(x, y);
    return;
  }
  if (!Ptr.LineInProgress && button == LeftButton && (m.empty() || m == mode::PAN || m == mode::MapMoveFree)) {
    Ptr.DragAnchorX = Ptr.DragNowX = x;
    Ptr.DragAnchorY = Ptr.DragNowY = y;
    if (m != mode::MapMoveFree) {
      Ptr.Panning = true;
      host.SetCursor(Cursor::Pan);
      host.BeginPan(x, y);
    } else {
      double E, N;
      PixelToWorld(x, y, E, N);
      host.Plugged(m, PlugEvent::Press, E, N);
    }
    return;
  }
  if (IsWindowMode(m)) {
    if (button != LeftButton) return;
    Ptr.Windowing = true;
    Ptr.DragAnchorX = Ptr.DragNowX = x;
    Ptr.DragAnchorY = Ptr.DragNowY = y;
    return;
  }
  double E, N;
  PixelToWorld(x, y, E, N);
  if (button == RightButton) Ptr.RightPressTaken = !m.empty();
  PressInMode(button, E, N, x, y);
}

void Editor::MouseMove(int button, int shift, float x, float y) {
  (void)button;
  (void)shift;
  Ptr.PointerX = x;
  Ptr.PointerY = y;
  double E, N;
  PixelToWorld(x, y, E, N);
  host.SetReadout(num::Format(E, "#######.000"), num::Format(N, "#######.000"));

  if (Ptr.Panning) {
    Ptr.DragNowX = x;
    Ptr.DragNowY = y;
    host.MovePan(Ptr.DragAnchorX, Ptr.DragAnchorY, x, y);
    return;
  }
  if (Ptr.Windowing) {
    EraseBand();
    Ptr.DragNowX = x;
    Ptr.DragNowY = y;
    DrawBand(Ptr.DragAnchorX, Ptr.DragAnchorY, x, y, true);
    Ptr.BandShown = true;
    return;
  }
  const bool chain = Ptr.LineInProgress && Ptr.ChainCount > 0;
  const bool ring = Ptr.ActionMode == mode::QAREA && !Area.AreaRing[0].empty();
  if (chain || ring) {
    EraseBand();
    float lx, ly;
    if (chain)
      WorldToPixel(Ptr.ChainPoints[0][Ptr.ChainCount - 1], Ptr.ChainPoints[1][Ptr.ChainCount - 1], lx, ly);
    else
      WorldToPixel(Area.AreaRing[0].back(), Area.AreaRing[1].back(), lx, ly);
    DrawBand(lx, ly, x, y, false);
    Ptr.BandShown = true;
    return;
  }
  if (!Ptr.ActionMode.empty() && IsPluggedMode(Ptr.ActionMode)) host.Plugged(Ptr.ActionMode, PlugEvent::Move, E, N);
}

void Editor::MouseUp(int button, int shift, float x, float y) {
  (void)shift;
  double E, N;
  PixelToWorld(x, y, E, N);

  if (button == RightButton && Ptr.RightPressTaken) {
    Ptr.RightPressTaken = false;
    return;
  }
  if (button == RightButton && Ptr.ActionMode.empty() && !Ptr.Panning) {
    const int32_t row = NearestEntityRow(x, y);
    if (row >= 0) host.ShowInquiry(row, InquiryText(row));
    return;
  }
  if (Ptr.Panning) {
    Ptr.Panning = false;
    Ptr.DragAnchorX = Ptr.DragAnchorY = 0;
    // The tail repaints the picture, so any band on it is gone; draw it again at the
    // pointer so a chain in progress keeps its band.
    Ptr.BandShown = false;
    host.EndPan();
    SetCursorForMode();
    return;
  }
  if (Ptr.Windowing) {
    EraseBand();
    Ptr.Windowing = false;
    double E1, N1;
    PixelToWorld(Ptr.DragAnchorX, Ptr.DragAnchorY, E1, N1);
    Ptr.DragAnchorX = Ptr.DragAnchorY = 0;
    const std::string m = Ptr.ActionMode;
    if (m == mode::ZoomW) {
      SetMode("");
      host.ZoomWindow(E1, N1, E, N);
      Ptr.BandShown = false;
    } else if (m == mode::EraseWindow) {
      const ui::Answer a = dialogs.MsgBox(
          "刪除窗框內資料按'是' \r\n刪除窗框外資料,按'否'\r\n放棄動作,按'取消'", "刪除窗選資料",
          ui::Buttons::YesNoCancel, ui::Icon::Question);
      SetMode("");
      if (a == ui::Answer::Yes)
        EraseWindowArea(E1, N1, E, N, true);
      else if (a == ui::Answer::No)
        EraseWindowArea(E1, N1, E, N, false);
    } else if (m == mode::QX2Line || m == mode::QX2LineMark) {
      CrossingInWindow(m, E1, N1, E, N);
    } else {
      // BMEraseWindow: the base map's own window delete.
      host.Plugged(m, PlugEvent::Press, E1, N1);
      host.Plugged(m, PlugEvent::Release, E, N);
      SetMode("");
    }
    return;
  }
  ReleaseInMode(button, E, N, x, y);
}

void Editor::MouseDownAt(int button, double E, double N) {
  float x, y;
  WorldToPixel(E, N, x, y);
  MouseDown(button, 0, x, y);
}
void Editor::MouseMoveAt(int button, double E, double N) {
  float x, y;
  WorldToPixel(E, N, x, y);
  MouseMove(button, 0, x, y);
}
void Editor::MouseUpAt(int button, double E, double N) {
  float x, y;
  WorldToPixel(E, N, x, y);
  MouseUp(button, 0, x, y);
}
void Editor::ClickAt(int button, double E, double N) {
  MouseDownAt(button, E, N);
  MouseUpAt(button, E, N);
}

void Editor::Repaint() {
  host.Redraw();
  Ptr.BandShown = false;
}

void Editor::SetCursorForMode() {
  const std::string& m = Ptr.ActionMode;
  if (m.empty())
    host.SetCursor(Cursor::Arrow);
  else if (m == mode::PAN)
    host.SetCursor(Cursor::Pan);
  else if (IsWindowMode(m))
    host.SetCursor(Cursor::Window);
  else if (IsDrawingMode(m) || m == mode::BaseLine)
    host.SetCursor(Cursor::Draw);
  else
    host.SetCursor(Cursor::Pick);
}

// Presses that act in the modes of the command table.
void Editor::PressInMode(int button, double E, double N, float x, float y) {
  const std::string m = Ptr.ActionMode;
  if (m.empty()) return;

  if (button == RightButton) {
    if (Ptr.LineInProgress) {
      EndChain();
    } else if (m == mode::QAREA) {
      QueryAreaEnd();
    } else if (m == mode::MapMoveBmByP || m == mode::MapMoveByLine2) {
      SetMode("");
    } else if (IsPluggedMode(m)) {
      host.Plugged(m, PlugEvent::RightPress, E, N);
    }
    return;
  }
  if (button != LeftButton) return;

  if (m == mode::Line) {
    ChainPick(PickPoint(x, y, 20));
  } else if (m == mode::RECT) {
    ShapePick(Shape::Rectangle, PickPoint(x, y, 20));
  } else if (m == mode::P2C) {
    ShapePick(Shape::Circle2, PickPoint(x, y, 20));
  } else if (m == mode::P3C) {
    ShapePick(Shape::Circle3, PickPoint(x, y, 20));
  } else if (m == mode::ARC) {
    ShapePick(Shape::Arc, PickPoint(x, y, 20));
  } else if (m == mode::Text) {
    TextNote(E, N);
  } else if (m == mode::Symbol || m == mode::Label) {
    const PickHit p = PickPoint(x, y, 20);
    if (p.Found)
      NewSymbolAtPick(p.E, p.N, p.H);
    else
      NewSymbolAtPick(E, N, 0);
  } else if (m == mode::QDIS) {
    QueryDistancePick(PickPoint(x, y, 20));
  } else if (m == mode::QAREA) {
    const PickHit p = PickPoint(x, y, 20);
    if (!p.Found) return;
    if (!Area.AreaRing[0].empty() && Area.AreaRing[0].back() == p.E && Area.AreaRing[1].back() == p.N) return;
    EraseBand();
    AreaRingAdd(Area, p.E, p.N);
    if (Area.AreaRing[0].size() > 1) {
      float x1, y1, x2, y2;
      const std::size_t n = Area.AreaRing[0].size();
      WorldToPixel(Area.AreaRing[0][n - 2], Area.AreaRing[1][n - 2], x1, y1);
      WorldToPixel(Area.AreaRing[0][n - 1], Area.AreaRing[1][n - 1], x2, y2);
      surface.SetPen(ui::MakeRgb(255, 0, 0), 1, ui::LineStyle::Solid);
      surface.Line(x1, y1, x2, y2);
    }
  } else if (IsConstructionMode(m)) {
    ConstructionPick(m, x, y, E, N);
  } else if (m == mode::SS1) {
    LeadPointPick(PickPoint(x, y, 20));
  } else if (m == mode::ChangeAtt || m == mode::PtRename || m == mode::OFFSET) {
    EditPick(m, x, y, E, N);
  } else if (m == mode::LineTrim) {
    TrimPick(x, y, E, N);
  } else if (m == mode::BaseLine || m == mode::BM_MakeP || m == mode::BM_XLineMakeP) {
    BaseMapPick(m, x, y, E, N);
  } else if (m == mode::MapMoveBmByP || m == mode::MapMoveByLine2) {
    FitPairPick(x, y, E, N);
  } else if (IsPluggedMode(m)) {
    host.Plugged(m, PlugEvent::Press, E, N);
  }
}

// Releases that act: deletion of a point or an entity, and the plugged modes that take
// the release as the target (MapMoveP, BaseMoveBmByP, MapMoveFree ...).
void Editor::ReleaseInMode(int button, double E, double N, float x, float y) {
  const std::string m = Ptr.ActionMode;
  if (m.empty() || button != LeftButton) return;
  if (m == mode::EraseP) {
    EraseP(E, N, x, y);
  } else if (m == mode::EraseEntity) {
    EraseEntity(x, y);
  } else if (IsPluggedMode(m)) {
    host.Plugged(m, PlugEvent::Release, E, N);
  }
}

}  // namespace tavik::edit
