// The fields of CSV, as RFC 4180 has them: commas, lines ended by CR LF, quotes only around fields
// that hold a comma, a quote or a line end.
//
// Always UTF-8.  On a terminal lines end with LF alone and control characters are shown as JSON
// escapes.
//
// Tested by tests/tool/golden/read.t
#pragma once

#include "tools/cli/writer.h"

#include <string>
#include <string_view>

class CsvFields {
   public:
    explicit CsvFields(Writer& out) : out_(out), terminal_(out.terminal()) {}

    void text(std::string_view text) {
        separate();
        writeText(text);
    }
    void number(double number);
    void quotedNothing();  // ""
    void endLine();

   private:
    void separate() {
        if (!first_) {
            out_.put(',');
        }
        first_ = false;
    }
    void writeText(std::string_view text);
    void writeQuoted(std::string_view text);

    Writer& out_;
    bool terminal_;
    bool first_ = true;  // no field yet in the line
    std::string safe_;
};
