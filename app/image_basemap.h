// Georeferenced images under the map in the window: 匯入影像底圖... under 匯入 adds one,
// 底圖顯示設定... under 底圖 lists them with their brightness, transparency and whether
// they are shown, and 顯示影像底圖 shows or hides them all. Each repaint of Paper1 draws
// the shown images first, straight into its picture, under the survey.
//
// The list belongs to the document: it is read from the side file beside the .SPC when
// a document is opened or made, and written back whenever it changes.
#pragma once

#include <QObject>
#include <memory>
#include <string>
#include <vector>

#include "basemap/image_list.h"
#include "basemap/raster_image.h"

class Program;
class EditWiring;
class QAction;
class QDialog;

class ImageBaseMap : public QObject {
  Q_OBJECT
 public:
  ImageBaseMap(Program& program, EditWiring& edit);

  // Adds the image at `path` (asked for when empty) to the open document, and brings it
  // into view when none of it is on the screen. False with the message shown when it
  // cannot be shown.
  bool Import(std::string path = "");
  // The window 底圖顯示設定...
  void ShowSettings();
  // Shows or hides all images.
  void SetShown(bool shown);

  const tavik::basemap::ImageSettings& Settings() const { return settings_; }
  // The image opened for row i of the list, nullptr when it could not be.
  tavik::basemap::RasterImage* Image(std::size_t i) const { return i < images_.size() ? images_[i].get() : nullptr; }

 private:
  // Loads the document's list when another document is open than last time.
  void Follow();
  void Draw();
  void Save();
  void Redraw();
  // A message shown after the present event (never inside a repaint).
  void Later(const std::string& message);
  void ZoomTo(std::size_t row);
  // 顯示影像底圖 as the list stands: checked when shown, enabled when there are images.
  void ShowToggle();

  Program& program_;
  EditWiring& edit_;
  std::string loadedFor_;
  bool savingAs_ = false;  // the name changes under a Save As: the list stays
  tavik::basemap::ImageSettings settings_;
  std::vector<std::unique_ptr<tavik::basemap::RasterImage>> images_;  // one per row of the list
  QAction* show_ = nullptr;
};
