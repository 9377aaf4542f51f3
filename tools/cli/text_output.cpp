// See text_output.h.
#include "tools/cli/text_output.h"

#include "formats/output_files.h"
#include "formats/writer.h"
#include "tools/cli/reports/tell.h"

namespace qvej::cli {

namespace {

bool toFile(const Options& options) {
    return !options.out.empty() && options.out != "-";
}

void write(Writer out, std::string_view text) {
    out.append(text);
    out.flush();
}

}  // namespace

void checkTextOutput(const Options& options, const Sources& sources) {
    if (toFile(options)) {
        OutputFiles::checkFile(options.out, options.force, sources);
    }
}

void putText(std::string_view text, const Options& options, const Sources& sources) {
    if (!toFile(options)) {
        write(standardOutput(), text);
        return;
    }
    OutputFiles files = OutputFiles::single(options.out, options.force, sources);
    write(files.writer(0), text);
    tellEach(files.commit());
}

}  // namespace qvej::cli
