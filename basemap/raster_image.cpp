#include "basemap/raster_image.h"

#include <gdal.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "basemap/gdal_session.h"
#include "core/numbers.h"

namespace tavik::basemap {

namespace {

GDALDatasetH Ds(void* p) { return static_cast<GDALDatasetH>(p); }

std::string WithReason(const char* what, const std::string& path, const std::string& reason) {
  std::string m = std::string(what) + "\r\n" + path;
  if (!reason.empty()) m += "\r\n" + reason;
  return m;
}

// GDAL passes over a world file whose pixel size is zero as if there were none; such a
// file is looked for here, so the surveyor learns what is wrong with it.
bool WorldFileHasZeroPixel(const std::string& path) {
  namespace fs = std::filesystem;
  const fs::path p(path);
  std::string ext = p.extension().string();
  if (ext.size() < 2) return false;
  ext = ext.substr(1);
  const std::string shortExt = std::string(1, ext.front()) + ext.back() + "w";
  for (const std::string& e : {shortExt, ext + "w", std::string("wld")}) {
    for (bool upper : {false, true}) {
      std::string x = e;
      for (char& c : x) c = static_cast<char>(upper ? std::toupper(static_cast<unsigned char>(c))
                                                    : std::tolower(static_cast<unsigned char>(c)));
      fs::path w = p;
      w.replace_extension(x);
      std::ifstream in(w);
      if (!in) continue;
      std::array<double, 6> v{};
      std::string line;
      for (double& d : v) {
        if (!std::getline(in, line)) return false;
        d = num::ParseStrict(line).value_or(NAN);
      }
      return v[0] == 0 || v[3] == 0;
    }
  }
  return false;
}

}  // namespace

RasterImage::~RasterImage() {
  if (ds_) GDALClose(Ds(ds_));
}

std::unique_ptr<RasterImage> RasterImage::Open(const std::string& path, std::string& message) {
  EnsureGdal();
  TakeGdalError();
  std::unique_ptr<RasterImage> img(new RasterImage);
  img->path_ = path;
  img->ds_ = GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, nullptr, nullptr, nullptr);
  if (!img->ds_ || GDALGetRasterCount(Ds(img->ds_)) < 1) {
    message = WithReason(ImageOpenMessage, path, TakeGdalError());
    return nullptr;
  }
  GDALDatasetH ds = Ds(img->ds_);
  img->width_ = GDALGetRasterXSize(ds);
  img->height_ = GDALGetRasterYSize(ds);
  if (GDALGetGeoTransform(ds, img->gt_) != CE_None) {
    message = WorldFileHasZeroPixel(path) ? ImageZeroPixelMessage : ImageNoGeoreferenceMessage;
    message += std::string("\r\n") + path;
    return nullptr;
  }
  const double* g = img->gt_;
  const double det = g[1] * g[5] - g[2] * g[4];
  if (!std::isfinite(det) || det == 0 || !GDALInvGeoTransform(img->gt_, img->inv_)) {
    message = std::string(ImageZeroPixelMessage) + "\r\n" + path;
    return nullptr;
  }

  const int count = GDALGetRasterCount(ds);
  GDALRasterBandH first = GDALGetRasterBand(ds, 1);
  if (count >= 3) {
    img->colours_ = Colours::Rgb;
    img->bands_ = 3;
  } else if (GDALGetRasterColorInterpretation(first) == GCI_PaletteIndex && GDALGetRasterColorTable(first)) {
    img->colours_ = Colours::Palette;
    GDALColorTableH table = GDALGetRasterColorTable(first);
    img->palette_.assign(256, 0xFF000000u);
    const int n = std::min(256, GDALGetColorEntryCount(table));
    for (int i = 0; i < n; ++i) {
      GDALColorEntry e;
      GDALGetColorEntryAsRGB(table, i, &e);
      img->palette_[static_cast<std::size_t>(i)] =
          0xFF000000u | (static_cast<uint32_t>(e.c1 & 255) << 16) | (static_cast<uint32_t>(e.c2 & 255) << 8) |
          static_cast<uint32_t>(e.c3 & 255);
    }
  }
  img->masked_ = (GDALGetMaskFlags(first) & GMF_ALL_VALID) == 0;

  // Overviews are used only where every band read has them.
  int overviews = GDALGetOverviewCount(first);
  for (int b = 2; b <= img->bands_; ++b) overviews = std::min(overviews, GDALGetOverviewCount(GDALGetRasterBand(ds, b)));
  img->levels_.push_back({img->width_, img->height_, 1.0, 1.0});
  for (int k = 0; k < overviews; ++k) {
    GDALRasterBandH o = GDALGetOverview(first, k);
    if (!o) continue;
    const int w = GDALGetRasterBandXSize(o), h = GDALGetRasterBandYSize(o);
    if (w < 1 || h < 1) continue;
    img->levels_.push_back({w, h, static_cast<double>(img->width_) / w, static_cast<double>(img->height_) / h});
  }
  if (img->levels_.size() == 1 &&
      static_cast<double>(img->width_) * static_cast<double>(img->height_) > MaxPixelsWithoutOverviews) {
    message = std::string(ImageNoOverviewsMessage) + "\r\n" + path + "\r\n" + std::to_string(img->width_) + " x " +
              std::to_string(img->height_);
    return nullptr;
  }
  return img;
}

void RasterImage::Extent(double& minE, double& minN, double& maxE, double& maxN) const {
  minE = minN = INFINITY;
  maxE = maxN = -INFINITY;
  for (const auto& [c, r] : {std::pair{0, 0}, {width_, 0}, {0, height_}, {width_, height_}}) {
    const double E = gt_[0] + c * gt_[1] + r * gt_[2], N = gt_[3] + c * gt_[4] + r * gt_[5];
    minE = std::min(minE, E), maxE = std::max(maxE, E);
    minN = std::min(minN, N), maxN = std::max(maxN, N);
  }
}

int RasterImage::ChooseLevel(double ratio) const {
  int best = 0;
  for (int k = 1; k < Levels(); ++k) {
    const double f = std::min(levels_[k].factorX, levels_[k].factorY);
    if (f <= ratio * (1 + 1e-9) && f > std::min(levels_[best].factorX, levels_[best].factorY)) best = k;
  }
  return best;
}

bool RasterImage::Read(int level, int x0, int y0, int w, int h, int bw, int bh, std::string& message) {
  GDALDatasetH ds = Ds(ds_);
  cache_.assign(static_cast<std::size_t>(bw) * static_cast<std::size_t>(bh) * 4, 255);
  cacheLevel_ = -1;
  ++reads_;
  auto at = [level](GDALRasterBandH b) { return level == 0 ? b : GDALGetOverview(b, level - 1); };
  auto read = [&](GDALRasterBandH b, int offset) {
    return b && GDALRasterIO(b, GF_Read, x0, y0, w, h, cache_.data() + offset, bw, bh, GDT_Byte, 4, 4 * bw) == CE_None;
  };
  TakeGdalError();
  bool ok = true;
  for (int b = 0; b < bands_ && ok; ++b) ok = read(at(GDALGetRasterBand(ds, b + 1)), b);
  if (ok && masked_) ok = read(GDALGetMaskBand(at(GDALGetRasterBand(ds, 1))), 3);
  if (!ok) {
    message = WithReason(ImageReadMessage, path_, TakeGdalError());
    return false;
  }
  cacheLevel_ = level, cx_ = x0, cy_ = y0, cw_ = w, ch_ = h, cbw_ = bw, cbh_ = bh;
  return true;
}

bool RasterImage::Render(const RasterView& v, const ImageLook& look, uint32_t* pixels, int stride,
                         std::string& message) {
  if (v.Width <= 0 || v.Height <= 0 || !(v.MetresPerPixel > 0) || !pixels) return true;
  const double m = v.MetresPerPixel;
  const double* inv = inv_;
  auto toImage = [inv](double E, double N, double& c, double& r) {
    c = inv[0] + inv[1] * E + inv[2] * N;
    r = inv[3] + inv[4] * E + inv[5] * N;
  };

  // The full-image pixels under the view.
  double c0 = INFINITY, r0 = INFINITY, c1 = -INFINITY, r1 = -INFINITY;
  for (const auto& [x, y] : {std::pair{0, 0}, {v.Width, 0}, {0, v.Height}, {v.Width, v.Height}}) {
    double c, r;
    toImage(v.LeftE + x * m, v.TopN - y * m, c, r);
    c0 = std::min(c0, c), c1 = std::max(c1, c), r0 = std::min(r0, r), r1 = std::max(r1, r);
  }
  if (!std::isfinite(c0 + c1 + r0 + r1)) return true;
  c0 = std::max(c0, 0.0), r0 = std::max(r0, 0.0);
  c1 = std::min(c1, static_cast<double>(width_)), r1 = std::min(r1, static_cast<double>(height_));
  if (c0 >= c1 || r0 >= r1) return true;

  const double ratio = m / std::sqrt(std::fabs(gt_[1] * gt_[5] - gt_[2] * gt_[4]));
  const int level = ChooseLevel(ratio);
  const Level& L = levels_[static_cast<std::size_t>(level)];
  const int lx0 = std::max(0, static_cast<int>(std::floor(c0 / L.factorX)));
  const int ly0 = std::max(0, static_cast<int>(std::floor(r0 / L.factorY)));
  const int lx1 = std::min(L.width, static_cast<int>(std::ceil(c1 / L.factorX)));
  const int ly1 = std::min(L.height, static_cast<int>(std::ceil(r1 / L.factorY)));
  if (lx0 >= lx1 || ly0 >= ly1) return true;

  const bool cached = cacheLevel_ == level && lx0 >= cx_ && ly0 >= cy_ && lx1 <= cx_ + cw_ && ly1 <= cy_ + ch_;
  if (!cached) {
    // A quarter of the window more on each side, so that a short pan reads nothing.
    const int mx = (lx1 - lx0) / 4, my = (ly1 - ly0) / 4;
    const int x0 = std::max(0, lx0 - mx), y0 = std::max(0, ly0 - my);
    const int w = std::min(L.width, lx1 + mx) - x0, h = std::min(L.height, ly1 + my) - y0;
    // Without an overview coarse enough, GDAL thins the window as it reads; the buffer
    // never holds much more than the screen would show of it.
    const int bw = std::min(w, std::max(256, 3 * v.Width)), bh = std::min(h, std::max(256, 3 * v.Height));
    if (!Read(level, x0, y0, w, h, bw, bh, message)) return false;
  }
  lastLevel_ = level;

  // Screen pixel centre to a sample of the cache: an affine map, stepped along each row.
  const double sx = static_cast<double>(cbw_) / cw_ / L.factorX, sy = static_cast<double>(cbh_) / ch_ / L.factorY;
  double colO, rowO;
  toImage(v.LeftE + 0.5 * m, v.TopN - 0.5 * m, colO, rowO);
  const double ax = inv[1] * m * sx, ay = -inv[2] * m * sx;
  const double bx = inv[4] * m * sy, by = -inv[5] * m * sy;
  const double a0 = (colO - cx_ * L.factorX) * sx, b0 = (rowO - cy_ * L.factorY) * sy;

  std::array<uint8_t, 256> lut;
  const int bright = std::clamp(look.Brightness, -100, 100);
  for (int i = 0; i < 256; ++i)
    lut[static_cast<std::size_t>(i)] =
        static_cast<uint8_t>(bright >= 0 ? i + (255 - i) * bright / 100 : i * (100 + bright) / 100);
  const int opacity = 255 * (100 - std::clamp(look.Transparency, 0, 100)) / 100;
  if (opacity == 0) return true;

  const uint8_t* cache = cache_.data();
  for (int py = 0; py < v.Height; ++py) {
    uint32_t* row = pixels + static_cast<std::ptrdiff_t>(py) * stride;
    double fx = a0 + ay * py, fy = b0 + by * py;
    for (int px = 0; px < v.Width; ++px, fx += ax, fy += bx) {
      if (fx < 0 || fy < 0) continue;
      const int ix = static_cast<int>(fx), iy = static_cast<int>(fy);
      if (ix >= cbw_ || iy >= cbh_) continue;
      const uint8_t* s = cache + (static_cast<std::size_t>(iy) * static_cast<std::size_t>(cbw_) + static_cast<std::size_t>(ix)) * 4;
      uint32_t r, g, b;
      if (colours_ == Colours::Rgb) {
        r = s[0], g = s[1], b = s[2];
      } else if (colours_ == Colours::Palette) {
        const uint32_t p = palette_[s[0]];
        r = (p >> 16) & 255, g = (p >> 8) & 255, b = p & 255;
      } else {
        r = g = b = s[0];
      }
      r = lut[r], g = lut[g], b = lut[b];
      const uint32_t a = static_cast<uint32_t>(s[3] == 255 ? opacity : s[3] * opacity / 255);
      if (a == 0) continue;
      if (a < 255) {
        const uint32_t d = row[px];
        r = (r * a + ((d >> 16) & 255) * (255 - a)) / 255;
        g = (g * a + ((d >> 8) & 255) * (255 - a)) / 255;
        b = (b * a + (d & 255) * (255 - a)) / 255;
      }
      row[px] = 0xFF000000u | (r << 16) | (g << 8) | b;
    }
  }
  return true;
}

}  // namespace tavik::basemap
