// See text_trail.h.
#include "client/input/text_trail.h"

#include "client/excerpt.h"

#include <algorithm>

namespace qvej {
namespace {
constexpr std::size_t kKept = 256;  // bytes remembered of what has passed
}

void TextTrail::passed() {
    offset_ += static_cast<int64_t>(piece_.size());
    before_.append(piece_.substr(piece_.size() - std::min(piece_.size(), kKept)));
    before_.erase(0, before_.size() - std::min(before_.size(), kKept));
    piece_ = {};
}

std::string TextTrail::excerpt(int64_t offset) const {
    const int64_t base = offset_ - static_cast<int64_t>(before_.size());
    if (offset < base) {
        return {};
    }
    return excerptOf(before_ + std::string(piece_), static_cast<std::size_t>(offset - base),
                     base != 0);
}

}  // namespace qvej
