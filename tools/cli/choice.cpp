// See choice.h.
#include "tools/cli/choice.h"

#include "client/error.h"
#include "tools/cli/failure.h"

namespace qvej::cli {

bool isChoosing(const Options& options) {
    return !options.tables.empty() || !options.paths.empty();
}

std::vector<const Table*> chosenTables(const Options& options, const std::vector<Table>& tables) {
    try {
        return qvej::chosenTables({options.tables, options.paths}, tables,
                                  " (qvejmap tables lists them)");
    } catch (const Error& error) {
        throw Failure(exitCodeOf(error.status()), error.what());
    }
}

}  // namespace qvej::cli
