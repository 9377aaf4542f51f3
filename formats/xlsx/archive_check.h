// Is a ZIP archive that the library wrote whole?  The library's own checks leave out most of its
// writing, so a full disk can go unnoticed.
//
// Tested by tests/formats/xlsx_test.sh
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace qvej {

// Throws Error (QV_IO_FULL) unless the archive ends as it should and each of these files of it has
// at least so many bytes, unpacked.  `shown`: what messages call it.
void checkArchive(const std::string& path, const std::map<std::string, uint64_t>& least,
                  const std::string& shown);

}  // namespace qvej
