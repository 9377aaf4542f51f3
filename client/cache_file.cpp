// See cache_file.h.
#include "client/cache_file.h"

#include <cstdlib>

namespace qvej {

std::string privateCacheDirectory() {
    const char* configured = std::getenv("TMPDIR");
    const std::string directory =
        configured != nullptr && *configured != '\0' ? configured : "/tmp";
    return directory.ends_with('/') ? directory : directory + "/";
}

}  // namespace qvej
