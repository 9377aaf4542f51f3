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
#include <fcntl.h>
#include <new>
#include <unistd.h>

namespace {

// A standard stream that is closed must not be another file, which would be read or written in its
// place.  What is opened here refuses to be read as input or written as output.
void keepStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) == -1) {
            [[maybe_unused]] const int opened =
                ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    using namespace qvej::cli;
    keepStandardStreams();
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
