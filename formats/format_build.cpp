// See module.h.
#include "formats/module.h"

namespace qvej {

const char* formatBuild() {
    return QVEJMAP_VERSION;
}

}  // namespace qvej
