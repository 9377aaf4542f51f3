// The module "qvefmt": a head without operations, so that the engine's load succeeds.
//
// Tested by tests/host/zlib_test.cpp (with the other modules' heads)
#include "host/fmt/fmt_module.h"

#include "host/module_instance.h"

namespace qvhost {

QVExtensionh qvefmtEntry(QVHndlp, QVJnlh) {
    return makeInstance<QVFMT, QVFMT>("fmt ", [](QVFMT&) {});
}

}  // namespace qvhost
