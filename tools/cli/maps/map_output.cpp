// See map_output.h.
#include "tools/cli/maps/map_output.h"

#include "client/escape.h"
#include "formats/output_files.h"
#include "formats/writer.h"
#include "tools/cli/reports/tell.h"

namespace qvej::cli {

namespace {

void writeFile(const std::string& path, const std::string& map, bool force,
               const Sources& sources) {
    OutputFiles files = OutputFiles::single(path, force, sources);
    Writer out = files.writer(0);
    out.append(map);
    out.put('\n');
    out.flush();
    tellEach(files.commit());
}

bool toFile(const Options& options) {
    return !options.out.empty() && options.out != "-";
}

}  // namespace

void checkMapOutput(const Options& options, const Sources& sources) {
    if (toFile(options)) {
        OutputFiles::checkFile(options.out, options.force, sources);
    }
}

void putMap(const std::string& map, const Options& options, const Sources& sources) {
    if (toFile(options)) {
        writeFile(options.out, map, options.force, sources);
        return;
    }
    Writer out = standardOutput();
    if (out.terminal()) {
        // Inside JSON strings an escape means the same.
        appendEscaped(out, map, CONTROLS);
    } else {
        out.append(map);
    }
    out.put('\n');
    out.flush();
}

}  // namespace qvej::cli
