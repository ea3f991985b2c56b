// FormSkyPlot: the satellites in view on a polar plot, zenith at the centre and the
// horizon on the outer ring, north up. Markers are placed in the form's own units (a
// plot 333.333 across) and drawn scaled to the window; green for a satellite with a
// signal, white for one without, with its PRN beside the centre. Beside the plot: the
// counts in view and usable, the three DOPs, and four lists (PRN, elevation, azimuth,
// signal-to-noise) where satellites with a signal stand on a white background.
#pragma once

#include <QWidget>

#include "instruments/gps_panels.h"

class QLabel;
class QListWidget;

class SkyPlotCanvas : public QWidget {
  Q_OBJECT
 public:
  explicit SkyPlotCanvas(QWidget* parent = nullptr);
  void SetPlot(const tavik::SkyPlot& plot);
  // A point of the form's units in the widget's pixels.
  QPointF ToPixels(double x, double y) const;
  QSize sizeHint() const override { return {360, 360}; }

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  tavik::SkyPlot plot_;
};

class FormSkyPlot : public QWidget {
  Q_OBJECT
 public:
  explicit FormSkyPlot(QWidget* parent = nullptr);
  void ShowSkyPlot(const tavik::SkyPlot& plot);

  SkyPlotCanvas* Canvas() const { return canvas_; }
  QListWidget* List(int index) const { return lists_[index]; }  // 0 PRN, 1 elevation, 2 azimuth, 3 SNR

 private:
  SkyPlotCanvas* canvas_ = nullptr;
  QLabel* inView_ = nullptr;   // Label4(2) 現有衛星
  QLabel* usable_ = nullptr;   // Label4(3) 可用衛星
  QLabel* pdop_ = nullptr;
  QLabel* hdop_ = nullptr;
  QLabel* vdop_ = nullptr;
  QListWidget* lists_[4] = {};
};
