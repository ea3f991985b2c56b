// Vector backgrounds read through GDAL's vector drivers (DXF, Shapefile, GeoPackage,
// GML, KML and whatever else the installed GDAL reads) into rows of the document's own
// shape: a segment per straight piece (Kind 21), arcs and circles kept whole where the
// file holds them as such (Kind 76, 71), a text or a point as Kind 11 with its string.
//
// Reading never touches the document: the rows are gathered in a VectorDrawing first,
// so that a cancel or a damaged file leaves the map as it was. Putting them in is one
// short step afterwards (AddToBaseMap, or ImportReferenceMap for an empty survey).
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/document.h"
#include "core/progress.h"
#include "core/view_state.h"
#include "core/workfiles.h"

namespace tavik::basemap {

// Messages shown to the user.
inline constexpr const char* ImportTitle = "匯入底圖";
inline constexpr const char* ReferenceImportTitle = "匯入參考圖";
inline constexpr const char* UnreadableMessage = "無法讀取這個檔案:";  // + path and GDAL's reason
inline constexpr const char* NothingToImportMessage = "檔案中沒有可匯入的線、弧、圓或文字";
inline constexpr const char* ImportCancelledMessage = "已取消匯入,底圖未變更";

// The grid the document's coordinates are in: TWD97 or TWD67, two-degree transverse
// Mercator about 121 (main island) or 119 (Penghu) degrees east.
struct TargetGrid {
  std::string Datum = "TWD97";
  double CentralMeridian = 121;
  // The EPSG code of that grid (3826, 3825, 3828 or 3827).
  int Epsg() const;
  // Its name as the user reads it, "TWD97 二度分帶 (121)".
  std::string Name() const;
};

struct VectorImportOptions {
  TargetGrid Grid;
  // Told records read out of an estimate of the file's total.
  ProgressSink Progress;
  // Asked every few thousand records; true abandons the reading.
  std::function<bool()> Cancelled;
};

struct VectorDrawing {
  // Code 0 on lines and texts, 12 on points, until the layers are given codes; Number
  // is set when the rows are put in.
  std::vector<BaseMapLine> Rows;
  std::vector<int32_t> LayerOfRow;  // index into Layers, one per row
  std::vector<std::string> Layers;  // DXF layer, or the GIS layer's name, as first met
  std::vector<int64_t> RowsPerLayer;
  // Not empty when the coordinates were converted: the sentence that tells the user so.
  std::string Converted;
  int64_t Skipped = 0;  // features with no geometry this program can keep
};

enum class ReadResult { Read, Failed, Cancelled };

// Reads every layer of the file at `path`. Failed puts the user's message in `message`.
// DXF: blocks are exploded into their entities, code page 950 texts are read by the
// file's $DWGCODEPAGE (a file that claims the Western code page but is older than the
// Unicode DXF versions is read as code page 950, as drawings made in Taiwan are).
// Coordinates are converted to opts.Grid when the layer declares a different
// coordinate system, and kept as they are when it declares none.
ReadResult ReadVectorFile(const std::string& path, const VectorImportOptions& opts, VectorDrawing& out,
                          std::string& message);

// What a layer becomes: the code given to its lines, arcs and circles and to its texts.
struct LayerCode {
  int16_t Line = 0;
  int16_t Text = 0;
};
using LayerCodes = std::map<std::string, LayerCode>;

// The codes a layer gets when nobody chooses: a layer named by a legend number (1 to
// 999) takes that number for everything; otherwise a base map keeps 0, and a reference
// map takes 231 (a cadastral line) for lines and 235 (a parcel number) for texts.
LayerCode DefaultLayerCode(const std::string& layer, bool reference);

// Parses "LAYER=CODE" (CODE 1 to 999, lines and texts alike). False on a bad form.
bool ParseLayerCode(const std::string& arg, std::string& layer, int16_t& code);

// Gives every row its layer's code (`codes`, else the default). Points keep 12.
void ApplyLayerCodes(VectorDrawing& d, const LayerCodes& codes, bool reference);

// Appends the rows to the base map (numbered on), writes TEMPBM whole once and the
// recovery header, sets MapChanged. The rows are moved out of `d`.
void AddToBaseMap(Document& doc, WorkFiles& wf, VectorDrawing& d);

// The live entities of another document, as base-map rows (for an .SPC laid under).
VectorDrawing DocumentAsBaseMap(const Document& src);

// Makes the rows the reference map of an empty survey through LoadReferenceMap: lines,
// arcs, circles and texts become entities, points become points. Refused as that is
// (`refusal` set, doc untouched).
bool ImportReferenceMap(Document& doc, const View& view, WorkFiles& wf, VectorDrawing& d, std::string& refusal);

// The whole base map removed; TEMPBM emptied.
void RemoveBaseMap(Document& doc, WorkFiles& wf);

// Removes the base-map rows lying wholly inside the rectangle of the two corners and
// numbers the rest again; TEMPBM rewritten. Returns how many went.
int64_t EraseBaseMapWindow(Document& doc, WorkFiles& wf, double E1, double N1, double E2, double N2);

}  // namespace tavik::basemap
