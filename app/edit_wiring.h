// The pen on the window: Paper1's pointer events and MainFrm's keys go to the editor,
// Toolbar1 and Toolbar2 carry their keys, the construction and inquiry commands sit in
// the edit menu, and the map is painted through the map view.
//
// The map view draws in the pixels of Paper1, a picture four viewports wide and high
// whose visible part starts 1.5 viewports in; Paper1's widget shows only that part. So
// pointer positions are shifted by 1.5 viewports once, here, and drawing is shifted
// back by PaperSurface.
#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "app/program.h"
#include "edit/editor.h"
#include "edit/map_host.h"
#include "view/canvas.h"
#include "view/display.h"
#include "view/view_ui.h"

class QPainter;
class QToolBar;

// Paper1's coordinates onto the visible image.
class PaperSurface : public tavik::ui::Surface {
 public:
  PaperSurface(tavik::ui::Surface& image, const tavik::View& view) : image_(image), view_(view) {}
  void Clear(tavik::ui::Rgb background) override { image_.Clear(background); }
  void SetPen(tavik::ui::Rgb colour, int width, tavik::ui::LineStyle style) override {
    image_.SetPen(colour, width, style);
  }
  // Figures drawn in the inverting mode are rubber bands: they never enter the picture,
  // the window draws the band over it instead (EditWiring::DrawRubberBand).
  void SetDrawMode(tavik::ui::DrawMode mode) override {
    banding_ = mode == tavik::ui::DrawMode::Invert;
    image_.SetDrawMode(tavik::ui::DrawMode::Copy);
  }
  void SetFill(bool filled, tavik::ui::Rgb colour) override { image_.SetFill(filled, colour); }
  void Line(float x1, float y1, float x2, float y2) override {
    if (!banding_) image_.Line(x1 - Dx(), y1 - Dy(), x2 - Dx(), y2 - Dy());
  }
  void Circle(float cx, float cy, float r) override {
    if (!banding_) image_.Circle(cx - Dx(), cy - Dy(), r);
  }
  void Arc(float cx, float cy, float r, double a1, double a2) override {
    if (!banding_) image_.Arc(cx - Dx(), cy - Dy(), r, a1, a2);
  }
  void SetPixel(float x, float y, tavik::ui::Rgb colour) override {
    if (!banding_) image_.SetPixel(x - Dx(), y - Dy(), colour);
  }
  void Text(float x, float y, const std::string& utf8, tavik::ui::Rgb colour, int pixelSize) override {
    if (!banding_) image_.Text(x - Dx(), y - Dy(), utf8, colour, pixelSize);
  }
  float Width() const override { return 4 * view_.ViewWidthPixels; }
  float Height() const override { return 4 * view_.ViewHeightPixels; }
  float Dx() const { return 1.5f * view_.ViewWidthPixels; }
  float Dy() const { return 1.5f * view_.ViewHeightPixels; }

 private:
  tavik::ui::Surface& image_;
  const tavik::View& view_;
  bool banding_ = false;
};

class EditWiring : public QObject {
  Q_OBJECT
 public:
  explicit EditWiring(Program& program);
  ~EditWiring() override;

  tavik::edit::Editor& Editor() { return *editor_; }
  tavik::edit::EditHost& Host();
  tavik::view::MapCanvas& Canvas() { return *canvas_; }
  QToolBar* Toolbar1() const { return toolbar1_; }
  QToolBar* Toolbar2() const { return toolbar2_; }
  // The window "快捷鍵速覽".
  void ShowHotKeys();
  // The line-edit popup "編輯線段" for the line at that row of EntityTable.
  void ShowLineEdit(int32_t row);
  // What the Toolbar1 buttons of other parts of the program do, by key ("連接COM1",
  // "接收資料", "輸入座標" ...), and "Measure" for the Space key. New, Open and the quick
  // save are set here; a key with no entry does nothing.
  std::map<std::string, std::function<void()>> FrameCommands;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class WindowHost;
  void BuildToolbars();
  void BuildMenus();
  // The Toolbar1 toggles shown pressed as their display switches stand.
  void ShowToggles();
  // The rubber band of the command in progress, in yellow over the picture.
  void DrawRubberBand(QPainter& p) const;

  Program& program_;
  tavik::view::Display display_;
  PaperSurface paper_;
  std::unique_ptr<tavik::view::MapCanvas> canvas_;
  std::unique_ptr<WindowHost> host_;
  std::unique_ptr<tavik::edit::Editor> editor_;
  QToolBar* toolbar1_ = nullptr;
  QToolBar* toolbar2_ = nullptr;
  bool documentChanged_ = true;  // New, Open or Close since the last repaint of a document
  int wheelDelta_ = 0;           // wheel turn not yet taken, in eighths of a degree
};
