// See counted_input.h.
#include "tools/cli/counted_input.h"

#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qvej::cli {

std::optional<uint64_t> bytesOf(const std::vector<std::string>& files) {
    uint64_t bytes = 0;
    for (const std::string& file : files) {
        struct stat found = {};
        const int result =
            file == "-" ? ::fstat(STDIN_FILENO, &found) : ::stat(file.c_str(), &found);
        if (result != 0 || !S_ISREG(found.st_mode)) {
            return std::nullopt;
        }
        bytes += static_cast<uint64_t>(found.st_size);
    }
    return bytes;
}

ByteSource counted(ByteSource source, Progress& progress) {
    const auto from = std::make_shared<ByteSource>(std::move(source));
    return ByteSource::pulled(
        [from, &progress] {
            const std::string_view piece = from->next();
            progress.addBytes(piece.size());
            return piece;
        },
        from->name(), from->isFile());
}

}  // namespace qvej::cli
