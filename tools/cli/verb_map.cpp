// qvejmap map: the automatic map as a JSON document, on standard output or in a file.
//
// Tested by tests/tool/golden/map.t
#include "tools/cli/escape.h"
#include "tools/cli/output_files.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs.h"
#include "tools/cli/writer.h"

namespace {

void writeFile(const std::string& path, const std::string& text, bool force) {
    const std::size_t slash = path.rfind('/');
    const bool hasDirectory = slash != std::string::npos;
    OutputFiles files(hasDirectory ? path.substr(0, slash) : ".", false,
                      {hasDirectory ? path.substr(slash + 1) : path}, force);
    Writer out(files.openNext(), path);
    out.append(text);
    out.flush();
    files.commit();
}

}  // namespace

void runMap(const Options& options) {
    const Session session(options);
    const std::string map = session.document().mapText() + "\n";
    if (!options.out.empty() && options.out != "-") {
        writeFile(options.out, map, options.force);
        return;
    }
    Writer out = standardOutput();
    if (out.terminal()) {
        // Inside JSON strings an escape means the same; elsewhere only the last line end is a
        // control.
        appendEscaped(out, std::string_view(map).substr(0, map.size() - 1), CONTROLS);
        out.put('\n');
    } else {
        out.append(map);
    }
    out.flush();
}
