// A total-station shot from the record button to a stored, drawn and logged point:
// the target-height prompt, the reduction to E, N, H, the point's number and journal,
// the .OBS/.MAC/.STK records and the history of the last three points.
#pragma once

#include "procedures/survey_context.h"

namespace tavik {

// The record button (and Space).
void RecButton(SurveyContext& ctx);

// The receiver of AwaitPointShot: reduces ObsSlope, ObsHz, ObsV of the link state.
void ReducePoint(SurveyContext& ctx);

// Appends a point and logs it. kind 1 a survey point, 2 a stake-out point of a total
// station. While PointAdded is set nothing is added.
void AddSurveyPoint(SurveyContext& ctx, int kind, bool drawMark, double E, double N, double H);

// The view follows a point outside the screen rectangle: the rectangle spanned by the
// present view and the point, scaled by `factor`. False when the point is in view.
bool FollowPoint(SurveyContext& ctx, double E, double N, double factor);

// The .OBS set-up group (mark, station, backsight) and the .MAC station line, as both
// set-up dialogs write them. UserDialog starts a cadastral book only in total-station
// mode; FitDialog sets up on known points, whose book line is written always.
enum class MacStation { InTsMode, Always };
void WriteSetupRecords(SurveyContext& ctx, const std::string& backsightName, double backsightE,
                       double backsightN, double backsightH, MacStation mac = MacStation::InTsMode);

// The present time for the logs.
std::string LogNow(const SurveyContext& ctx);

}  // namespace tavik
