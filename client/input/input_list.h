// The files that make one data set, from what the user names: files, folders and patterns.
//
// Tested by tests/client/input_list_test.cpp
#pragma once

#include <string>
#include <vector>

namespace qvej {

struct InputList {
    std::vector<std::string> files;  // "-" for standard input
    // Each is one text of a document of several: there are two words or more, a folder, or a
    // pattern, even if that leads to one file.
    bool several = false;
    // Files of folders that an earlier run wrote there, as its datapackage.json says: no inputs.
    std::vector<std::string> outputs = {};
};

// A word is a file, "-", a folder (all files in it and below it whose names end as those of JSON
// do, compressed or not, in order of their paths), or, when nothing has that very name, a pattern
// of
// `*`, `?` and `[...]` (files and folders, in order of their paths).  A file may come more than
// once. Whether a file can be read is seen when it is opened.  Throws Error (QV_IO_NOTFOUND,
// QV_IO_READ): a folder has no such file, or a pattern finds nothing.
[[nodiscard]] InputList inputList(const std::vector<std::string>& words);

}  // namespace qvej
