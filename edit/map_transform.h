// Whole-map transforms: shifting, turning and raising every surveyed row at once, and
// fitting the survey onto known points (a base map, control points) by least squares.
//
// A transform works on the survey's own rows: the points and entities after the
// reference map's rows (which are read-only), deleted rows included so that an undelete
// brings them back where the rest went, and the base map too when asked. The station
// and backsight move with the survey so that the next observation lands in the new
// frame. The journals are written whole afterwards, so a start-up after a crash finds
// either the old map or the new one, never rows lost. One step undoes it, restoring
// the coordinates as they were, bit for bit.
//
// Fitting never changes the document: it gives the parameters and the residuals, and
// the caller applies the transform only when the user accepts it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/document.h"
#include "core/view_state.h"

namespace tavik {
class WorkFiles;
}

namespace tavik::edit {

// E' = A*E + B*N + C, N' = D*E + F*N + G, H' = H + DH (heights of -9999 stay unknown).
struct PlaneTransform {
  double A = 1, B = 0, C = 0;
  double D = 0, F = 1, G = 0;
  double DH = 0;

  void Apply(double& E, double& N) const {
    const double e = A * E + B * N + C;
    N = D * E + F * N + G;
    E = e;
  }
  static PlaneTransform Shift(double dE, double dN, double dH = 0);
  // Turns by `degrees` about (E, N), clockwise as azimuths grow: every bearing on the
  // map grows by the angle.
  static PlaneTransform Rotation(double degrees, double aboutE, double aboutN);
  // The similarity with scale s and clockwise turn `degrees`, then the shift.
  static PlaneTransform Similarity(double scale, double degrees, double shiftE, double shiftN);
};

// A pair for fitting: a point of the survey and where it should be.
struct FitPair {
  double E = 0, N = 0;    // on the survey
  double TE = 0, TN = 0;  // the target (base map, control)
  std::string Label;      // shown with its residual (point names when known)
};

enum class FitModel { Similarity, Affine };

struct FitResult {
  bool Ok = false;
  std::string Message;  // the refusal when not Ok; otherwise a note on the residuals, or ""
  FitModel Model = FitModel::Similarity;
  PlaneTransform Transform;
  // Similarity: scale and clockwise turn. Affine: the scales along E and N and the turn
  // of the E axis, as a surveyor reads them.
  double Scale = 1, ScaleN = 1, RotationDegrees = 0;
  // Per pair: target minus the transformed survey point, and its length.
  std::vector<double> ResidualE, ResidualN, Residual;
  double Rms = 0;  // root mean square of the residual lengths
  int Worst = -1;  // the pair with the largest residual
  // More pairs than the model needs: the residuals say something about the fit.
  bool Redundant = false;
};

// Least squares over the pairs. Refused (Ok false, Message): fewer pairs than the model
// needs, two survey points or two targets in one place, and for the affine model
// survey points or targets all on one line.
FitResult FitPoints(const std::vector<FitPair>& pairs, FitModel model);

// A survey line (E1,N1)-(E2,N2) onto a target line: the head onto the head and the line
// turned along the target. With `scale` the tail lands on the tail (a similarity);
// without, the length is kept and the tail lies on the target line. The residual of
// the tails is given as pair 2.
FitResult FitLines(double E1, double N1, double E2, double N2, double TE1, double TN1, double TE2, double TN2,
                   bool scale);

// The messages.
inline constexpr const char* FitTooFewMessage = "至少需要兩對點位才能計算";
inline constexpr const char* FitTooFewAffineMessage = "仿射轉換至少需要三對點位";
inline constexpr const char* FitCoincidentMessage = "點位重合,無法計算";  // + the pair numbers
inline constexpr const char* FitCollinearMessage = "點位都在一直線上,無法以仿射轉換計算";
inline constexpr const char* FitNoResidualMessage = "點位對數剛好足夠,殘差沒有檢核意義;要檢核請用三對以上的點位";
inline constexpr const char* FitNoResidualAffineMessage =
    "點位對數剛好足夠,殘差沒有檢核意義;仿射轉換要檢核請用四對以上的點位";
inline constexpr const char* FitLineTooShortMessage = "線段長度為零,無法計算";
inline constexpr const char* TransformUndoNoneMessage = "沒有可以復原的整圖轉換";
inline constexpr const char* TransformUndoChangedMessage = "整圖轉換之後圖面又有變動,無法復原";
inline constexpr const char* TransformNoDocumentMessage = "沒有開啟的圖檔";
inline constexpr const char* TransformEmptyMessage = "圖面沒有可以轉換的測點或圖元";
inline constexpr const char* TransformJournalMessage = "工作檔寫入失敗,當機時可能無法救回轉換後的資料";

// What a transform replaced, kept so that one step puts it back.
struct MapTransformUndo {
  bool Valid = false;
  std::string DocumentName;
  int32_t PointCount = 0, EntityCount = 0, BaseMapCount = 0;
  int32_t FirstPoint = 0, FirstEntity = 0;  // the first survey rows
  bool WithBaseMap = false;
  std::vector<Point> Points;
  std::vector<Entity> Entities;
  std::vector<BaseMapLine> BaseMap;
  double MinE = 0, MaxE = 0, MinN = 0, MaxN = 0;
  double StationE = 0, StationN = 0, StationH = 0, BacksightE = 0, BacksightN = 0;
  double BacksightAzimuth = 0, OrientationConstant = 0;
  int16_t MapChanged = kFalse;
};

// Applies t to the survey rows (and the base map when withBaseMap), rebuilds the extent
// and the screen tables, tells the spatial index, rewrites the journals and sets
// MapChanged. `undo`, when given, receives what is needed to put it back. False with
// `message` when there is nothing to transform; a journal that could not be written
// leaves the transform done and says so in `message` (true returned).
bool ApplyMapTransform(Document& doc, const View& view, WorkFiles& wf, const PlaneTransform& t, bool withBaseMap,
                       MapTransformUndo* undo, std::string& message);

// Puts back what the last transform replaced. Refused when there is none or the map has
// had rows added or removed since.
bool UndoMapTransform(Document& doc, const View& view, WorkFiles& wf, MapTransformUndo& undo,
                      std::string& message);

// The used vertices of an entity of this kind (1 for a point feature, 2 for a segment or
// a circle by centre, 3 otherwise).
int UsedVertices(int16_t kind);

// A one-line summary of the parameters and a line per pair with its residual, as the
// dialog and the tool show them (metres to the millimetre, the worst pair marked).
std::vector<std::string> FitReport(const FitResult& r, const std::vector<FitPair>& pairs);

}  // namespace tavik::edit
