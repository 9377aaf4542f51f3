// See key_facts.h.
#include "client/schema/key_facts.h"

#include <algorithm>

namespace qvej {

bool NumberRuns::has(uint64_t number) const {
    // Mostly the newest.
    if (!runs_.empty() && number >= runs_.back().begin) {
        return number < runs_.back().end;
    }
    const auto after = std::upper_bound(runs_.begin(), runs_.end(), number,
                                        [](uint64_t n, const Run& run) { return n < run.begin; });
    return after != runs_.begin() && number < std::prev(after)->end;
}

uint64_t ParentOrdinals::orphans(const OwnOrdinals& parents) const {
    uint64_t count = missing_;
    for (const Late& late : late_) {
        count += parents.has(late.ordinal) ? 0 : late.count;
    }
    return count + (count_ != 0 && !parents.has(current_) ? count_ : 0);
}

}  // namespace qvej
