// See tell.h.
#include "tools/cli/reports/tell.h"

#include "client/escape.h"
#include "formats/writer.h"
#include "tools/cli/reports/progress.h"

#include <unistd.h>

namespace qvej::cli {

void tell(std::string_view line, std::string_view excerpt) {
    Progress::eraseAny();
    std::string text = "qvejmap: " + shown(line) + "\n";
    text += excerpt;
    (void)writeAll(STDERR_FILENO, text.data(), text.size());  // there is no other place to tell it
}

void tellEach(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        tell(line);
    }
}

void tellPlain(std::string_view line) {
    Progress::eraseAny();
    const std::string text = shown(line) + "\n";
    (void)writeAll(STDERR_FILENO, text.data(), text.size());
}

}  // namespace qvej::cli
