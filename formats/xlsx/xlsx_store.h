// All tables as sheets of one workbook.
//
// Tested by tests/formats/typed_files.py
#pragma once

#include "formats/store.h"

#include <memory>

namespace qvej {

// Throws Error for what a workbook has no room for, before anything is written.
[[nodiscard]] std::unique_ptr<Store> openXlsxStore(const StoreParms& parms);

}  // namespace qvej
