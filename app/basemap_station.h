// Backgrounds in the window. The 匯入 menu reads a CAD or GIS drawing (DXF, Shapefile,
// GeoPackage, GML, KML) into the base map or, for a survey not yet begun, as the
// reference map, and lays another .SPC under the map as base map; the 底圖 menu removes
// the base map whole or by a window dragged on the map.
//
// A large drawing is read behind a progress dialog with a cancel button. The reading
// gathers the rows apart from the document, so the surveyor may cancel at any moment
// and find the map as it was.
#pragma once

#include <QDialog>
#include <QObject>
#include <string>

#include "basemap/vector_import.h"

class EditWiring;
class Program;
class QTableWidget;

// The codes a drawing's layers are to take: one row per layer with its number of rows,
// the code for its lines and the code for its texts.
class LayerCodeDlg : public QDialog {
  Q_OBJECT
 public:
  LayerCodeDlg(const tavik::basemap::VectorDrawing& d, bool reference, QWidget* parent = nullptr);
  tavik::basemap::LayerCodes Codes() const;
  QTableWidget* Table() const { return table_; }

 private:
  QTableWidget* table_;
};

class BaseMapStation : public QObject {
  Q_OBJECT
 public:
  BaseMapStation(Program& program, EditWiring& edit);

  // 匯入底圖: a drawing chosen by the file dialog added to the base map.
  void ImportBaseMap();
  // 匯入參考圖: a drawing made the reference map of an empty survey, layers given codes.
  void ImportReference();
  // SPC 檔作為底圖: the entities of another document added to the base map.
  void ImportSpcBaseMap();
  // 移除底圖, after a question.
  void RemoveAll();

  // Chooses the codes of the layers (the dialog; tests replace it). False: cancelled.
  std::function<bool(tavik::basemap::VectorDrawing&, bool reference)> ChooseLayerCodes;

 private:
  // Reads `path` behind the progress dialog. False when it failed (the user was told)
  // or was cancelled.
  bool Read(const std::string& path, const char* title, tavik::basemap::VectorDrawing& d);
  void BaseMapChanged();
  std::string AskFile(const char* title) const;

  Program& program_;
  EditWiring& edit_;
  double cornerE_ = 0, cornerN_ = 0;
};
