// See skipped.h.
#include "tools/cli/reports/skipped.h"

#include "client/escape.h"
#include "client/text.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/tell.h"

namespace qvej::cli {

void Skipped::takeLine(const std::string& file, const BadLine& line) {
    if (lineCount_++ == 0 || keepsLines_) {
        std::string text;
        appendEscaped(text, line.text.substr(0, kLongestCell), 0);  // it may be no UTF-8
        lines_.push_back({file, {line.line, line.column}, text, line.reason});
    }
}

void Skipped::takeFile(const Error& error) {
    ++files_;
    tell("skipped: " + sentenceOf(error), error.excerpt());
}

void Skipped::tellLines() const {
    if (lineCount_ != 0) {
        const Line& first = lines_.front();
        tell(std::to_string(lineCount_) + (lineCount_ == 1 ? " line" : " lines") + " skipped" +
             (lineCount_ == 1 ? ": " : ", the first: ") + spotText(first.file, first.spot) + ": " +
             first.reason + ": " + shortened(first.text));
    }
}

}  // namespace qvej::cli
