// Is a ZIP archive of XML files, as the library wrote it, whole?  The library does not look at most
// of what it writes, so a full disk can go unnoticed.
//
// Tested by tests/formats/full_disk.py
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace qvej {

// Throws Error (QV_IO_FULL) unless the archive ends as it should, each file ends with the end of
// its outermost element, and each of `least` is there with at least so many bytes.  `shown`: what
// messages call it.
void checkArchive(const std::string& path, const std::map<std::string, uint64_t>& least,
                  const std::string& shown);

}  // namespace qvej
