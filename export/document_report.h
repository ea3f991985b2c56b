// The text report of a document: what the office asks of a day's map before opening
// the drawing. The header values, the counts of the tables, the station and backsight,
// the land split's values, the control points with their coordinates, and a summary of
// what was drawn under each legend code. Code page 950, like every file the surveyor
// keeps.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "core/document.h"

namespace tavik::dxf {

constexpr const char* ReportTitle = "圖檔報表";

// The report as UTF-8 text, lines ended by CR LF. Areas print in areaUnit (1 m², 2
// hectares, 3 ping); `when` is the time of writing as the report shows it.
std::string DocumentReportText(const Document& doc, int16_t areaUnit, const std::string& when);

// Writes the report to path in code page 950, replacing any old file only once the new
// one is whole. Empty on success, else the message to show.
std::string WriteDocumentReport(const Document& doc, int16_t areaUnit, const std::filesystem::path& path,
                                const std::string& when);

// The present local time as the report prints it: "2026/11/23 14:05:09".
std::string ReportTimeNow();

}  // namespace tavik::dxf
