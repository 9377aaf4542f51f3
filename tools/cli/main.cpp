// The command line tool qvejmap: JSON documents as tables.
//
// main() reads the options, runs the verb and turns every failure into one line and an exit code.
//
// Tested by tests/tool/
#include "client/error.h"
#include "formats/cleanup.h"
#include "tools/cli/failure.h"
#include "tools/cli/options/options.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/verbs/verbs.h"

#include <exception>
#include <new>

int main(int argc, char** argv) {
    using namespace qvej::cli;
    qvej::cleanup::install();
    try {
        const Options options = readOptions(argc, argv);
        return options.verb == nullptr ? DONE : options.verb->run(options);
    } catch (const Failure& failure) {
        tell(failure.line(), failure.excerpt());
        return failure.exitCode();
    } catch (const qvej::Error& error) {
        tell(sentenceOf(error), error.excerpt());
        return exitCodeOf(error.status());
    } catch (const std::bad_alloc&) {
        tell(qvStatusText(QV_NOMEM));
        return LIMIT_REACHED;
    } catch (const std::exception& error) {
        tell(error.what());
        return FILE_TROUBLE;
    }
}
