// See key_facts.h.
#include "client/schema/key_facts.h"

#include <algorithm>

namespace qvej {

void NumberRuns::appendRun(const Run& run, uint64_t& notAbove) {
    if (run.begin > last_.end) {
        begin(run);
        return;
    }
    notAbove += std::min(run.end, last_.end) - run.begin;
    last_.end = std::max(run.end, last_.end);
}

uint64_t NumberRuns::append(const NumberRuns& later) {
    uint64_t notAbove = 0;
    for (const Run& run : later.earlier_) {
        appendRun(run, notAbove);
    }
    appendRun(later.last_, notAbove);
    return notAbove;
}

bool NumberRuns::has(uint64_t number) const {
    // Mostly the newest.
    if (number >= last_.begin) {
        return number < last_.end;
    }
    const auto after = std::upper_bound(earlier_.begin(), earlier_.end(), number,
                                        [](uint64_t n, const Run& run) { return n < run.begin; });
    return after != earlier_.begin() && number < std::prev(after)->end;
}

void ParentOrdinals::add(const ParentOrdinals& later, const OwnOrdinals& parents) {
    missing_ += later.missing_;
    if (later.count_ == 0) {
        return;
    }
    several_ |= later.several_;
    if (count_ == 0) {
        first_ = later.first_;
        changed_ = later.changed_;
    } else {
        several_ |= later.first_ <= current_;
        if (later.first_ == current_ && !later.changed_) {
            count_ += later.count_;
            return;
        }
        settle({current_, count_}, parents);
        changed_ = true;
    }
    // The parents of most of them came before `later` began.
    for (const Late& late : later.late_) {
        settle(late, parents);
    }
    current_ = later.current_;
    count_ = later.count_;
}

uint64_t ParentOrdinals::orphans(const OwnOrdinals& parents) const {
    uint64_t count = missing_;
    for (const Late& late : late_) {
        count += parents.has(late.ordinal) ? 0 : late.count;
    }
    return count + (count_ != 0 && !parents.has(current_) ? count_ : 0);
}

}  // namespace qvej
