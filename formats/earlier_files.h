// Files of an earlier run that a later one removes, when they are still as that one left them.
//
// They are moved aside first, so that they can be put back until all else is done.
//
// Tested by tests/tool/golden/convert_again.t and tests/formats/renaming_test.cpp
#pragma once

#include "formats/file_state.h"
#include "formats/sources.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qvej {

class EarlierFiles {
   public:
    // `sources` stay, even when an earlier run wrote them.
    void set(std::vector<ListedFile> files, const Sources& sources);

    // Moves what is still as listed from `directory` to names that begin with `prefix`; files of
    // the names in `replaced` are the caller's.  Throws qvej::Error; `takeBack` is to be called
    // then.
    void putAside(const std::string& directory, const std::string& prefix,
                  const std::vector<std::string>& replaced);

    // Puts back what was moved.  Returns what of it could not be, each with "; " before it.
    std::string takeBack();

    // Removes what was moved.  Adds what stays to the remarks.
    void finish(std::vector<std::string>& remarks);

   private:
    [[nodiscard]] bool isToGo(const ListedFile& file);
    [[nodiscard]] std::string pathOf(std::size_t i) const { return directory_ + files_[i].name; }
    [[nodiscard]] std::string asideOf(std::size_t i) const {
        return prefix_ + "old-" + std::to_string(i);
    }

    std::vector<ListedFile> files_;
    Sources sources_;
    std::string directory_, prefix_;
    std::vector<std::size_t> moved_;    // of `files_`
    std::vector<std::string> staying_;  // sentences
    std::string firstChanged_;
    std::size_t changed_ = 0;
};

}  // namespace qvej
