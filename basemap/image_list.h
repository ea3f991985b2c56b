// The images a document shows under its map, remembered beside the document: NAME.IML
// next to NAME.SPC, a short text in code page 950 of "key=value" lines:
//
//   [影像底圖]
//   顯示=1
//   亮度=0
//   透明度=30
//   影像=1,D:\測量\航照\0412.tif
//
// one 影像 line per image, drawn in that order (the first at the bottom), each with its
// own shown flag. A relative path is taken from the document's folder. Unknown lines
// are passed over, so a later version may add its own.
#pragma once

#include <string>
#include <vector>

#include "basemap/raster_image.h"

namespace tavik::basemap {

struct ImageEntry {
  std::string Path;  // UTF-8
  bool Shown = true;
};

struct ImageSettings {
  bool Shown = true;  // all images at once: the 底圖 menu's toggle
  ImageLook Look;
  std::vector<ImageEntry> Images;
};

// NAME.IML for a document named NAME (its path up to the first dot).
std::string ImageListPath(const std::string& documentName);

// Reads the side file; a missing file gives empty settings and true. False with
// `message` when the file is there but cannot be read.
bool ReadImageList(const std::string& path, ImageSettings& out, std::string& message);
// Writes the side file (removes it when there are no images). False with `message`.
bool WriteImageList(const std::string& path, const ImageSettings& s, std::string& message);

inline constexpr const char* ImageListWriteMessage = "影像底圖設定檔寫入失敗";  // + the path

}  // namespace tavik::basemap
