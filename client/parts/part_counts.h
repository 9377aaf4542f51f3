// How often objects and arrays have come in each part of a document: the sums say what ordinals
// have counted before a part, so that its rows can be made without those before it.
//
// Memory: 16 bytes for each path of a container and part that has it.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace qvej {

struct ContainerCount {
    std::string path;
    uint64_t count;
};

class PartCounts {
   public:
    // What has come in the next part.
    void add(const std::vector<ContainerCount>& part);

    [[nodiscard]] std::size_t parts() const { return ends_.size(); }

    // The sums for some paths, from part to part.  The counts must outlive it.
    class Sums {
       public:
        Sums(const PartCounts& counts, const std::vector<std::string>& paths);

        // What has been counted before a part, for each path.  `part` is never less than the last.
        [[nodiscard]] const std::vector<uint64_t>& before(std::size_t part);

       private:
        const PartCounts& counts_;
        std::unordered_map<uint32_t, std::size_t> places_;  // in `sums_`, by path
        std::vector<uint64_t> sums_;
        std::size_t part_ = 0;
    };

   private:
    struct Entry {
        uint32_t path;
        uint64_t count;
    };
    std::unordered_map<std::string, uint32_t> paths_;
    std::vector<Entry> entries_;     // of all parts
    std::vector<std::size_t> ends_;  // of each part's entries
};

}  // namespace qvej
