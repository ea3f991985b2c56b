// A document, a view at 1 : 500 about (1000, 2000) on an 800 x 600 board, and a canvas
// recording what the repaint draws.
#pragma once

#include <string>
#include <vector>

#include "platform/scripted/scripted.h"
#include "recording_ui.h"
#include "view/canvas.h"
#include "view/transform.h"

namespace tavik::view {

struct CanvasFixture {
  Document doc;
  View view;
  Display display;
  ui::RecordingSurface surface;
  RecordingUi ui;
  ui::ScriptedDialogs dialogs;
  MapCanvas canvas{doc, view, display, surface, ui, dialogs};

  CanvasFixture() {
    SetDocumentName(doc, "/tmp/sample");
    doc.ScaleDenominator = 500;
    doc.ViewCentreE = 1000;
    doc.ViewCentreN = 2000;
    SetViewportSize(view, 800, 600);
    ComputeView(doc, view, ui);
    canvas.ResetClip();
    surface.width = 3200;
    surface.height = 2400;
  }

  Entity& Add(int16_t kind, int16_t code, std::vector<double> xy, const std::string& name = "") {
    Entity e;
    e.Number = static_cast<int32_t>(doc.EntityTable.size()) + 1;
    e.Kind = kind;
    e.Code = code;
    for (std::size_t i = 0; i + 1 < xy.size() && i < 6; i += 2) {
      e.X[i / 2] = xy[i];
      e.Y[i / 2] = xy[i + 1];
    }
    e.Name = name;
    doc.EntityTable.push_back(e);
    doc.EntityCount = static_cast<int32_t>(doc.EntityTable.size());
    return doc.EntityTable.back();
  }

  // Pixel of a world point on Paper1.
  std::pair<double, double> Px(double E, double N) const {
    float x, y;
    WorldToPaper(doc, view, E, N, x, y);
    return {x, y};
  }

  std::vector<ui::RecordingSurface::Op> Ops(const std::string& kind) const {
    std::vector<ui::RecordingSurface::Op> out;
    for (const auto& o : surface.ops)
      if (o.op == kind) out.push_back(o);
    return out;
  }
  std::size_t CountColour(const std::string& kind, ui::Rgb colour) const {
    std::size_t n = 0;
    for (const auto& o : surface.ops) n += o.op == kind && o.colour == colour;
    return n;
  }
  std::vector<std::string> Texts() const {
    std::vector<std::string> out;
    for (const auto& o : Ops("text")) out.push_back(o.text);
    return out;
  }
};

}  // namespace tavik::view
