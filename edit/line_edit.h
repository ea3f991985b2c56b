// The plane geometry of editing lines in place: cutting or extending a pair of lines to
// their crossing, and a line given anew by its length and azimuth from its start.
#pragma once

#include <optional>
#include <string>

namespace tavik::edit {

// Which end of the segment (E1,N1)-(E2,N2) goes to the crossing (E,N) of its line with
// another, the segment having been picked at (pickE, pickN):
// - the crossing beyond an end: that end is extended to it;
// - the crossing inside: the segment is cut there and the part on the side of the pick
//   is kept (a pick right on the crossing keeps the second part);
// - the crossing on an end (within CrossingOnEnd metres): that end takes its exact
//   position, so no sliver of a line is ever kept.
// 0 for the first end, 1 for the second; `t` receives the crossing's place along the
// segment (0 at the first end, 1 at the second).
int TrimEnd(double E1, double N1, double E2, double N2, double E, double N, double pickE, double pickN, double& t);
constexpr double CrossingOnEnd = 0.001;

// The crossing of the lines through two segments. nullopt when they are parallel (or
// either has no length): no trimming is possible.
struct Crossing {
  double E = 0, N = 0;
};
std::optional<Crossing> CrossingOfLines(double E1, double N1, double E2, double N2, double E3, double N3, double E4,
                                        double N4);

// A height along a line at place t (0 at H1, 1 at H2, beyond by extrapolation); a
// height that is not known at either end leaves `H` as it was.
void HeightAlong(double H1, double H2, double t, double& H);

// The azimuth as the line-edit popup shows it: "123-45-30.50".
std::string AzimuthText(double azimuth);
// A typed azimuth in radians: "ddd-mm-ss.ss" as shown, or the packed DDDMMSS.ss keyed
// from an instrument's display. nullopt when it is neither (minutes or seconds of 60 or
// more, degrees of 360 or more).
std::optional<double> ReadAzimuthText(const std::string& text);

// The end of a line from (E1,N1) of this length along this azimuth (clockwise from north).
void EndOf(double E1, double N1, double length, double azimuth, double& E2, double& N2);

// Messages of trimming and of the line-edit popup.
inline constexpr const char* TrimTitle = "兩線修剪延伸";
inline constexpr const char* TrimParallelMessage = "兩線平行,沒有交點";
inline constexpr const char* TrimFirstPrompt = "請點選第一條線(點在要保留的那一段)";
inline constexpr const char* TrimSecondPrompt = "請點選第二條線(點在要保留的那一段)";
inline constexpr const char* TrimReferenceMessage = "參考圖的線不能修改";
inline constexpr const char* LineEditTitle = "編輯線段";
inline constexpr const char* LineLengthMessage = "長度要大於0";
inline constexpr const char* LineAzimuthMessage = "方位角請輸入 度-分-秒 (例如 123-45-30.5) 或 DDDMMSS";
inline constexpr const char* LineCodeMessage = "這個圖例代碼不能畫線";
inline constexpr const char* LineNameMessage = "名稱不可超過20個字元(中文10個字)";
inline constexpr const char* EditUndoNoneMessage = "沒有可以復原的圖元編輯";

}  // namespace tavik::edit
