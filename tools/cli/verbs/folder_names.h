// The folders of convert --per-file.
//
// Tested by tests/tool/golden/inputs.t
#pragma once

#include <string>
#include <vector>

namespace qvej::cli {

// A folder name for each file: the file's own without its endings, with a number where an earlier
// file, in any case, has it.
[[nodiscard]] std::vector<std::string> folderNames(const std::vector<std::string>& files);

}  // namespace qvej::cli
