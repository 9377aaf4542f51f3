// See part_counts.h.
#include "client/parts/part_counts.h"

namespace qvej {

void PartCounts::add(const std::vector<ContainerCount>& part) {
    for (const ContainerCount& of : part) {
        const auto next = static_cast<uint32_t>(paths_.size());
        entries_.push_back({paths_.try_emplace(of.path, next).first->second, of.count});
    }
    ends_.push_back(entries_.size());
}

PartCounts::Sums::Sums(const PartCounts& counts, const std::vector<std::string>& paths)
    : counts_(counts), sums_(paths.size()) {
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (const auto found = counts.paths_.find(paths[i]); found != counts.paths_.end()) {
            places_.emplace(found->second, i);
        }
    }
}

const std::vector<uint64_t>& PartCounts::Sums::before(std::size_t part) {
    for (; part_ < part; ++part_) {
        const std::size_t begin = part_ == 0 ? 0 : counts_.ends_[part_ - 1];
        for (std::size_t i = begin; i < counts_.ends_[part_]; ++i) {
            const Entry& entry = counts_.entries_[i];
            if (const auto place = places_.find(entry.path); place != places_.end()) {
                sums_[place->second] += entry.count;
            }
        }
    }
    return sums_;
}

}  // namespace qvej
