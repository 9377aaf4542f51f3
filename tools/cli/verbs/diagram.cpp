// qvejmap diagram: the tables, their columns and keys as a picture.
//
// Tested by tests/tool/golden/pictures.t
#include "client/error.h"
#include "tools/cli/choice.h"
#include "tools/cli/pictures/graphviz.h"
#include "tools/cli/pictures/writers.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/shape_report.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/session.h"
#include "tools/cli/survey.h"
#include "tools/cli/text_output.h"
#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

namespace {

// More cannot be taken in.
constexpr std::size_t kMostTables = 200;
constexpr std::size_t kMostColumns = 30;

std::string pictureOf(const Diagram& diagram, PictureFormat format) {
    switch (format) {
        case PictureFormat::DOT:
            return dotOf(diagram);
        case PictureFormat::MERMAID:
            return mermaidOf(diagram);
        case PictureFormat::DBML:
            return dbmlOf(diagram);
        default: {
            const std::optional<std::string> drawn = drawnByGraphviz(dotOf(diagram));
            return drawn ? *drawn : svgOf(diagram, false);
        }
    }
}

}  // namespace

ExitCode runDiagram(const Options& options) {
    checkTextOutput(options, options.sources);
    const Session session(options.reading, options.inputs, options.map,
                          {.partThreads = partThreads(options)});
    const Document& document = session.document();
    const std::vector<const Table*> tables = chosenTables(options, document.tables());
    if (session.map() != nullptr && !options.quiet) {
        tellMapOddities(session.map()->name(), tables);
    }
    Schema schema;
    try {
        schema = typesOf(session, tables, options);
    } catch (const Error& error) {
        session.failReading(error);
    }
    const Diagram diagram = diagramOf(schema, kMostTables, kMostColumns);
    putText(pictureOf(diagram, options.picture), options, options.sources);
    if (const std::string rest = leftOut(diagram); !rest.empty() && !options.quiet) {
        tell(session.name() + ": " + rest);
    }
    if (shapeMayHelp(options)) {
        tellShapeHint(document.tables());
    }
    return session.skipped().exitCode();
}

}  // namespace qvej::cli
