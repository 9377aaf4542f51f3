// See separator_watch.h.
#include "tools/cli/maps/separator_watch.h"

#include <algorithm>
#include <cstring>

namespace qvej::cli {

namespace {

constexpr std::string_view kSpelling = "u0002";
constexpr std::size_t kSeam = kSpelling.size() - 1;  // as much as the next piece may go on from

// Not find(), which goes byte by byte.
bool spellsIt(std::string_view text) {
    return ::memmem(text.data(), text.size(), kSpelling.data(), kSpelling.size()) != nullptr;
}

}  // namespace

void SeparatorWatch::take(std::string_view piece) {
    seam_ += piece.substr(0, kSeam);
    found_ = found_ || spellsIt(seam_) || spellsIt(piece);
    if (piece.size() > kSeam) {
        seam_ = piece.substr(piece.size() - kSeam);
    }
    seam_.erase(0, seam_.size() - std::min(seam_.size(), kSeam));
}

}  // namespace qvej::cli
