// A georeferenced photo or scan under the map: a GeoTIFF, or a JPEG, PNG or TIFF with
// its world file (.jgw, .pgw, .tfw), which GDAL finds beside the image by itself.
//
// Such images run to 20,000 pixels a side and more, so nothing is read whole. For each
// view the image level is chosen whose pixels are just finer than the screen's (the
// full image or one of its overviews), and only the window of that level under the
// screen is read. The window last read is kept, a little wider than the screen, so a
// repaint of the same view or a short pan reads nothing; GDAL's own block cache keeps
// the tiles around it. The picture is resampled to the screen by nearest pixel, which
// also turns an image whose world file carries a rotation.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavik::basemap {

// The screen to fill: the world position of the upper-left corner of its pixel (0, 0),
// the ground size of one pixel, and its size in pixels.
struct RasterView {
  double LeftE = 0, TopN = 0;
  double MetresPerPixel = 1;
  int Width = 0, Height = 0;
};

// Brightness from -100 (black) to 100 (white), 0 as the image is; transparency in
// percent, 0 opaque, 100 not seen.
struct ImageLook {
  int Brightness = 0;
  int Transparency = 0;
};

// The messages of opening and reading an image.
inline constexpr const char* ImageOpenMessage = "無法開啟影像底圖";  // + the file and GDAL's reason
inline constexpr const char* ImageNoGeoreferenceMessage =
    "影像沒有地理坐標:請用 GeoTIFF,或在影像旁放同名的世界檔(.jgw、.pgw、.tfw)";
inline constexpr const char* ImageZeroPixelMessage = "影像的世界檔像素大小為零,無法定位";
inline constexpr const char* ImageNoOverviewsMessage =
    "影像太大又沒有縮圖層,無法流暢顯示;請先為影像建立縮圖層(例如 gdaladdo)再匯入";
inline constexpr const char* ImageReadMessage = "影像底圖讀取失敗";  // + the file and GDAL's reason

// Above this many pixels an image must bring overviews: without them a view of the
// whole would read every pixel.
inline constexpr double MaxPixelsWithoutOverviews = 10000.0 * 10000.0;

class RasterImage {
 public:
  ~RasterImage();
  RasterImage(const RasterImage&) = delete;
  RasterImage& operator=(const RasterImage&) = delete;

  // Opens the image; nullptr with `message` when it cannot be shown under the map.
  static std::unique_ptr<RasterImage> Open(const std::string& path, std::string& message);

  int Width() const { return width_; }
  int Height() const { return height_; }
  // The full image and its overviews.
  int Levels() const { return static_cast<int>(levels_.size()); }
  // GDAL's geotransform: E = g[0] + col*g[1] + row*g[2], N = g[3] + col*g[4] + row*g[5].
  const double* GeoTransform() const { return gt_; }
  // The world box the image covers.
  void Extent(double& minE, double& minN, double& maxE, double& maxN) const;

  // Draws the image under the view onto `pixels` (0xFFRRGGBB, `stride` pixels a row,
  // at least view.Width by view.Height), blended with what is there by the image's own
  // transparency and the look. False with `message` when GDAL failed to read.
  bool Render(const RasterView& view, const ImageLook& look, uint32_t* pixels, int stride, std::string& message);

  // The level the last Render read or reused (0 the full image), and the number of
  // reads made so far: what the cache saves is visible to tests and benchmarks.
  int LastLevel() const { return lastLevel_; }
  int ReadCount() const { return reads_; }

 private:
  RasterImage() = default;
  struct Level {
    int width, height;
    double factorX, factorY;  // full-image pixels per pixel of this level
  };
  // The level whose pixels are just finer than `imagePixelsPerScreenPixel`.
  int ChooseLevel(double imagePixelsPerScreenPixel) const;
  bool Read(int level, int x0, int y0, int w, int h, int bw, int bh, std::string& message);

  void* ds_ = nullptr;  // GDALDatasetH
  std::string path_;
  int width_ = 0, height_ = 0;
  double gt_[6] = {0, 1, 0, 0, 0, -1};
  double inv_[6] = {0, 1, 0, 0, 0, -1};  // world to full-image pixel
  std::vector<Level> levels_;
  enum class Colours { Grey, Palette, Rgb } colours_ = Colours::Grey;
  int bands_ = 1;     // bands read into the cache: 1 grey or palette index, 3 RGB
  bool masked_ = false;  // an alpha band or a no-data value says where the image is
  std::vector<uint32_t> palette_;

  // The window last read: level, its pixels x0, y0, w, h, held as bw by bh samples of
  // R, G, B, A bytes.
  int cacheLevel_ = -1, cx_ = 0, cy_ = 0, cw_ = 0, ch_ = 0, cbw_ = 0, cbh_ = 0;
  std::vector<uint8_t> cache_;
  int lastLevel_ = -1;
  int reads_ = 0;
};

}  // namespace tavik::basemap
