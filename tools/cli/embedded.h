// The files that are part of the program; the build makes their text.
#pragma once

#include <string_view>

namespace qvej::cli {

extern const std::string_view kPictureCss;  // pictures/picture.css
extern const std::string_view kReportCss;   // report/report.css
extern const std::string_view kReportJs;    // report/report.js

}  // namespace qvej::cli
