// qvejmap shape: the rules that make tables of a document as a person would draw them, each after a
// comment that says why.
//
// Tested by tests/tool/golden/shape.t
#include "client/escape.h"
#include "client/find/value_walk.h"
#include "formats/output_files.h"
#include "formats/writer.h"
#include "tools/cli/auto_shape.h"
#include "tools/cli/counted_input.h"
#include "tools/cli/maps/map_output.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

namespace {

// Reads the text for its mistake, which it throws with the place.
void tellMistake(const Engine& engine, RereadableFile& file, const ReadingOptions& reading) {
    DocumentReader reader(file.walk(), reading.text);
    const ValueTest any({}, {}, false);
    ValueWalk walk(engine, reader.documentOptions({.maxDepth = reading.depth}), {}, any,
                   [](const FoundValue&) {});
    try {
        reader.read(walk);
    } catch (const Error& error) {
        failReading(reading, reader, error);
    }
}

void print(const std::string& text) {
    Writer out = standardOutput();
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(line.size() + 1);
        out.append(out.terminal() ? shown(line) : std::string(line));
        out.put('\n');
    }
    out.flush();
}

void writeFile(const Options& options, const std::string& text) {
    OutputFiles files = OutputFiles::single(options.out, options.force, options.sources);
    Writer out = files.writer(0);
    out.append(text);
    out.flush();
    tellEach(files.commit());
}

}  // namespace

ExitCode runShape(const Options& options) {
    checkMapOutput(options, options.sources);
    const Engine engine;
    RereadableFile file(options.operands[0]);
    Progress progress(options.reading.progress, bytesOf(options.operands));
    progress.begin(Progress::SHAPE);
    const FoundShape found = findShape(engine, {&file, 1}, options.reading, progress);
    progress.erase();
    if (!found.whole) {
        tellMistake(engine, file, options.reading);
    }
    if (found.rules.empty() && !options.quiet) {
        tell((options.operands[0] == "-" ? "<stdin>" : options.operands[0]) + ": no rule is found");
    }
    const bool toFile = !options.out.empty() && options.out != "-";
    toFile ? writeFile(options, found.text()) : print(found.text());
    return DONE;
}

}  // namespace qvej::cli
