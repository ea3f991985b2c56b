// The repaint through the spatial index against the walk of every row, on Paper1's own
// picture (Qt's raster engine): pixel for pixel, and the same messages.
#include <QGuiApplication>
#include <QImage>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "platform/qt/image_surface.h"
#include "platform/scripted/scripted.h"
#include "view/canvas.h"
#include "view/legends.h"
#include "view/offset_surface.h"
#include "view/render.h"
#include "view/transform.h"

namespace tavik::view {
namespace {

void NeedGui() {
  static int argc = 1;
  static char name[] = "render_index_test";
  static char* argv[] = {name, nullptr};
  if (QGuiApplication::instance() == nullptr) static QGuiApplication app(argc, argv);
}

// One picture of the document: either the visible area only, as the program keeps it,
// or the whole four-by-four paper.
struct Picture {
  Display display;
  ui::ImageSurface image;
  OffsetSurface offset;
  ui::ScriptedDialogs dialogs;
  MapCanvas canvas;
  Picture(Document& doc, View& view, bool visibleOnly, int w, int h)
      : image(visibleOnly ? w : 4 * w, visibleOnly ? h : 4 * h),
        offset(image, visibleOnly ? -1.5f * static_cast<float>(w) : 0, visibleOnly ? -1.5f * static_cast<float>(h) : 0),
        canvas(doc, view, display, offset, SilentUi(), dialogs) {
    canvas.visibleOnly = visibleOnly;
    display.GridOn = display.CodesOn = display.VerticalOn = true;
  }
};

// A survey of 1000 by 750 metres with every kind, the codes with symbols, names, world
// styles, decorations and break lines, and the awkward rows: collinear arcs (a message
// at every repaint, wherever they lie), circles larger than the survey, long names that
// reach in from off the screen, deleted rows, a reference part, strays far off.
Document RandomSurvey(std::mt19937& rng) {
  std::uniform_real_distribution<double> u(0, 1);
  auto E = [&] { return 250000 + 1000 * u(rng); };
  auto N = [&] { return 2650000 + 750 * u(rng); };
  const auto& glyphs = SymbolGlyphCodes();
  const int16_t lineCodes[] = {301, 201, 407, 813, 266, 905, 921, 211, 412, 510, 603, 613, 520, 513, 723, 817};
  const int16_t pointCodes[] = {13, 168, 99, 266, 267, 12, 235, 301};
  Document d;
  SetDocumentName(d, "/tmp/render-index");
  d.MapType = 1;
  for (int i = 0; i < 12000; ++i) {
    Entity x;
    x.Number = i + 1;
    const double e = u(rng) < 0.002 ? 0 : E(), n = N(), r = u(rng) < 0.005 ? 3000 * u(rng) : 12 * u(rng);
    switch (i % 6) {
      case 0:
      case 1:
        x.Kind = KindLine;
        x.Code = lineCodes[static_cast<std::size_t>(u(rng) * 16)];
        x.X[0] = e, x.Y[0] = n, x.X[1] = e + 80 * (u(rng) - 0.5), x.Y[1] = n + 80 * (u(rng) - 0.5);
        break;
      case 2:
        x.Kind = u(rng) < 0.5 ? KindCircle2 : KindCircle3;
        x.Code = u(rng) < 0.5 ? 407 : 813;
        if (x.Kind == KindCircle2)
          x.X[0] = e, x.Y[0] = n, x.X[1] = e + r, x.Y[1] = n;
        else
          x.X[0] = e - r, x.Y[0] = n, x.X[1] = e, x.Y[1] = n + r, x.X[2] = e + r, x.Y[2] = n;
        break;
      case 3: {
        x.Kind = KindArc3;
        const int16_t codes[] = {510, 813, 407, 905, 301};
        x.Code = codes[static_cast<std::size_t>(u(rng) * 5)];
        const bool collinear = u(rng) < 0.001;
        x.X[0] = e - r, x.Y[0] = n, x.X[1] = e, x.Y[1] = collinear ? n : n + r, x.X[2] = e + r, x.Y[2] = n;
        break;
      }
      default:
        x.Kind = KindPoint;
        x.Code = u(rng) < 0.5 ? static_cast<int16_t>(glyphs[static_cast<std::size_t>(u(rng) * glyphs.size())])
                              : pointCodes[static_cast<std::size_t>(u(rng) * 8)];
        x.X[0] = e, x.Y[0] = n, x.Z[0] = 12.5;
        break;
    }
    if (u(rng) < 0.3) x.Name = (x.Code == 266 || x.Code == 267 ? "EP" : "") + std::string(1 + static_cast<std::size_t>(u(rng) * 40), 'A' + i % 26);
    if (x.Code == 168) x.Name = "34.5";
    x.Deleted = u(rng) < 0.05 ? kTrue : kFalse;
    d.EntityTable.push_back(x);
  }
  d.EntityCount = static_cast<int32_t>(d.EntityTable.size());
  d.ReferenceEntityCount = 300;
  for (int i = 0; i < 3000; ++i)
    d.PointTable.push_back({i + 1, u(rng) < 0.002 ? 0.0 : E(), N(), u(rng) < 0.1 ? NoHeight : 20 * u(rng),
                            u(rng) < 0.05 ? kTrue : kFalse});
  d.PointCount = static_cast<int32_t>(d.PointTable.size());
  d.StationName = "S1", d.StationSet = kTrue, d.StationE = 250500, d.StationN = 2650400, d.StationH = 10;
  return d;
}

TEST(RenderIndex, PictureThroughTheIndexIsTheWalkOfEveryRow) {
  NeedGui();
  std::mt19937 rng(23);
  std::uniform_real_distribution<double> u(0, 1);
  Document doc = RandomSurvey(rng);
  for (const bool visibleOnly : {true, false}) {
    const int w = visibleOnly ? 320 : 120, h = visibleOnly ? 240 : 90;
    View view;
    SetViewportSize(view, static_cast<float>(w), static_cast<float>(h));
    Picture every(doc, view, visibleOnly, w, h), indexed(doc, view, visibleOnly, w, h);
    for (int k = 0; k < 40; ++k) {
      // From 1 : 2 to the whole survey and beyond, over it, at its edge or off it.
      doc.ScaleDenominator = std::pow(10, 0.3 + 3.7 * u(rng));
      doc.ViewCentreE = 249900 + 1200 * u(rng), doc.ViewCentreN = 2649900 + 950 * u(rng);
      ComputeView(doc, view);
      for (Picture* p : {&every, &indexed}) {
        p->canvas.ResetClip();
        p->display.ShowBreakLines = k % 3 != 0;
        p->dialogs.shown.clear();
      }
      RedrawAll(every.canvas, RowWalk::Every);
      RedrawAll(indexed.canvas, RowWalk::Indexed);
      ASSERT_TRUE(every.image.Image() == indexed.image.Image())
          << "view " << k << " at 1 : " << doc.ScaleDenominator << (visibleOnly ? " visible area" : " whole paper");
      ASSERT_EQ(every.dialogs.Messages(), indexed.dialogs.Messages()) << "view " << k;
      // Rows appended past the index (a merge, new shots) are drawn too.
      if (k % 10 == 9) {
        Entity x = doc.EntityTable[static_cast<std::size_t>(k)];
        x.Number = ++doc.EntityCount;
        x.X[0] = x.X[1] = doc.ViewCentreE;
        doc.EntityTable.push_back(x);
        doc.PointTable.push_back({++doc.PointCount, doc.ViewCentreE, doc.ViewCentreN, 3, kFalse});
      }
    }
  }
}

}  // namespace
}  // namespace tavik::view
