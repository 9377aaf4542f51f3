// See map_output.h.
#include "tools/cli/map_output.h"

#include "tools/cli/escape.h"
#include "tools/cli/output_files.h"
#include "tools/cli/writer.h"

namespace {

void writeFile(const std::string& path, const std::string& map, bool force,
               const std::string& document) {
    OutputFiles files = OutputFiles::single(path, force, document);
    Writer out = files.writer(0);
    out.append(map);
    out.put('\n');
    out.flush();
    files.commit();
}

}  // namespace

void putMap(const std::string& map, const Options& options, const std::string& document) {
    if (!options.out.empty() && options.out != "-") {
        writeFile(options.out, map, options.force, document);
        return;
    }
    Writer out = standardOutput();
    if (out.terminal()) {
        appendEscaped(out, map, CONTROLS);  // inside JSON strings an escape means the same
    } else {
        out.append(map);
    }
    out.put('\n');
    out.flush();
}
