// The module `xlsx`.
//
// Tested by tests/formats/typed_files.py
#include "formats/module.h"

#include "formats/xlsx/xlsx_store.h"

extern "C" __attribute__((visibility("default")))
const qvej::FormatModule qvejmapFormats = {qvej::formatBuild, nullptr, qvej::openXlsxStore};
