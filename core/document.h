// The survey document: the tables of points and entities and the header values of the
// one open map, as plain data. Everything that reads or changes the map takes a
// Document by reference; the application object holds the only live one, and tests
// make fresh ones.
//
// A surveyed point is a bare triple of coordinates. Anything drawn with a meaning (a
// named point, a line, a circle, an arc, a note) is an entity of at most three vertices
// that keeps its own copy of the coordinates and refers to no point, so an entity
// survives the deletion of the points under it and moving a point moves no line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/spatial_index.h"

namespace tavik {

// Booleans in tables are 16-bit: 0 false, -1 true.
constexpr int16_t kTrue = -1;
constexpr int16_t kFalse = 0;

// Geometry kinds of an entity; no other value is drawn.
constexpr int16_t KindPoint = 11;    // a point feature at vertex 1
constexpr int16_t KindLine = 21;     // a segment from vertex 1 to vertex 2
constexpr int16_t KindCircle2 = 71;  // centre vertex 1, through vertex 2
constexpr int16_t KindCircle3 = 73;  // circle through three vertices
constexpr int16_t KindArc3 = 76;     // arc from vertex 1 through vertex 2 to vertex 3

// Legend codes that the document itself looks at.
constexpr int16_t CodeNamedPoint = 99;     // surveyed named point, Name is the point name
constexpr int16_t CodeSplitBoundary = 266; // 範圍線: boundary edge of the land to split
constexpr int16_t CodeSplitLine = 267;     // 分割線: the split line, or (Kind 11) its area label

// Marker values.
constexpr double NoTargetHeight = -99;  // target height: no height wanted
constexpr double NoHeight = -9999;      // stored H: no height

// Width in bytes (code page 950) of the fixed text fields of the document file.
constexpr std::size_t NameBytes = 20;
constexpr std::size_t StationNameBytes = 20;
constexpr std::size_t BacksightNameBytes = 40;

struct Point {
  int32_t Number = 0;
  double E = 0, N = 0, H = 0;
  int16_t Deleted = kFalse;
};

struct Entity {
  int32_t Number = 0;
  int16_t Code = 0;
  int16_t Kind = 0;
  double X[3] = {0, 0, 0};  // E of vertices 1..3
  double Y[3] = {0, 0, 0};  // N of vertices 1..3
  double Z[3] = {0, 0, 0};  // H of vertices 1..3
  std::string Name;         // UTF-8, at most 20 bytes once in code page 950
  int16_t Deleted = kFalse;
};

// A base-map record: an entity without a deletion flag.
struct BaseMapLine {
  int32_t Number = 0;
  int16_t Code = 0;
  int16_t Kind = 0;
  double X[3] = {0, 0, 0};
  double Y[3] = {0, 0, 0};
  double Z[3] = {0, 0, 0};
  std::string Name;
};

struct UndeleteEntry {
  char Type = 'P';  // 'P' a point, 'S' an entity
  int32_t Number = 0;
};

// Starting values of the survey extent: any first point replaces them.
constexpr double StartMinE = 999999, StartMaxE = -999999;
constexpr double StartMinN = 9999999, StartMaxN = -9999999;
// View centre of a new document when no earlier position is known.
constexpr double DefaultCentreE = 280850, DefaultCentreN = 2752650;

struct Document {
  // Tables. Each count is kept beside its table; normally the table is exactly as long
  // as its count. Save shrinks the counts without compacting the rows, and the reload
  // that always follows a save rebuilds the tables.
  std::vector<Point> PointTable;
  int32_t PointCount = 0;
  int32_t DeletedPointCount = 0;
  std::vector<Entity> EntityTable;
  int32_t EntityCount = 0;
  int32_t DeletedEntityCount = 0;
  std::vector<Point> ScreenPointTable;
  int32_t ScreenPointCount = 0;
  std::vector<Entity> ScreenEntityTable;
  int32_t ScreenEntityCount = 0;
  std::vector<BaseMapLine> BaseMapTable;
  int32_t BaseMapCount = 0;
  std::vector<UndeleteEntry> UndeleteStack;

  // Header values.
  std::string FileVersion;  // as read from the last loaded file
  int16_t MapType = 1;      // 1 topographic (heights kept), 2 plan
  double ScaleDenominator = 100;
  double ViewCentreE = DefaultCentreE, ViewCentreN = DefaultCentreN;
  double MinE = StartMinE, MaxE = StartMaxE;
  double MinN = StartMinN, MaxN = StartMaxN;
  std::string StationName;
  int16_t StationSet = kFalse;
  double StationE = 0, StationN = 0, StationH = 0;
  std::string BacksightName;
  double BacksightE = 0, BacksightN = 0;
  double BacksightAzimuth = 0;  // not stored: recomputed at each load
  double OrientationConstant = 0;
  double InstrumentHeight = 0;
  double TargetHeight = 0;
  int16_t ReferenceMapLoaded = kFalse;
  int32_t ReferencePointCount = 0, ReferenceEntityCount = 0;
  int32_t SerialCounter = 0;
  int16_t SplitStakeCount = 0;

  // Derived from the entity table at load, for the land split.
  std::vector<double> SplitBoundaryEdges[4];     // E1, N1, E2, N2 per boundary edge
  std::vector<double> SplitBoundaryVertices[2];  // E, N; one row more than edges
  double SplitLine[4] = {0, 0, 0, 0};
  double SplitLineLabelled[4] = {0, 0, 0, 0};
  double SplitAreaValue = 0;
  double SplitAreaAt[2] = {0, 0};

  // State not stored in the file.
  std::string DocumentName;  // full path without extension; empty: no document open
  std::string SpcPath, SpPath, OldPath, WayPath, ObsPath, GobsPath, TxtPath, DxfPath, StkPath,
      GstkPath, MacPath, KeyPath, StrPath, PtsPath;
  int16_t MapChanged = kFalse;
  int16_t CurrentLegend = 301;

  // Where the rows lie, for rebuilding the screen tables; core/spatial_index.h says
  // what code that writes rows must do to keep it right.
  TableIndex Index;

  bool IsOpen() const { return !DocumentName.empty(); }
};

// Sets DocumentName and builds every path from it at once.
void SetDocumentName(Document& doc, const std::string& name);

}  // namespace tavik
