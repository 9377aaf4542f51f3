// The files that a command reads, which nothing that it writes replaces, not even with --force.
//
// Tested by tests/tool/golden/map.t
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// Do the two names mean one file?  Links are followed; a file that is not there is no other.
[[nodiscard]] bool isSameFile(const std::string& a, const std::string& b);

struct Source {
    std::string file;       // as the user names it, "-" for standard input
    std::string_view what;  // "the document itself"
};
using Sources = std::vector<Source>;

// The files of documents, of the map in use and of shapes.  An empty name is no file.
[[nodiscard]] Sources sourcesOf(const std::vector<std::string>& documents, const std::string& map,
                                const std::vector<std::string>& shapes);

// The source that the path leads to, whatever its name there; null: none.
[[nodiscard]] const Source* sourceAt(const std::string& path, const Sources& sources);

// Throws qvej::Error when the path leads to one of the sources, whatever its name there.
void refuseSource(const std::string& path, const Sources& sources);

}  // namespace qvej
