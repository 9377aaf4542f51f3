// The table of the module "qvefmt"; the two catalogues do the work.
//
// Tested by tests/host/fmt_test.cpp
#include "host/fmt/fmt_module.h"

#include "host/fmt/formats.h"
#include "host/fmt/informats.h"
#include "host/module_instance.h"
#include "host/rim.h"

#include <string_view>

namespace qvhost {
namespace {

std::string_view view(const char* name, QVStrSize nameLen) noexcept {
    return {name, static_cast<std::size_t>(nameLen)};
}

QVStatus openInformatOf(QVFMTh fmt, QVBoolean numeric, const char* name, QVStrSize nameLen,
                        uint64_t width, uint64_t decimals, QVInformath* informat) {
    return openInformat(fmt->exth.hndl, numeric != 0, view(name, nameLen), width, decimals,
                        informat);
}

QVStatus openFormatOf(QVFMTh fmt, QVBoolean numeric, const char* name, QVStrSize nameLen,
                      uint64_t width, uint64_t decimals, QVFormath* format) {
    return openFormat(fmt->exth.hndl, numeric != 0, view(name, nameLen), width, decimals, format);
}

void fillTable(QVFMT& made) noexcept {
    made.openInformat = &Rim<&openInformatOf>::call;
    made.openFormat = &Rim<&openFormatOf>::call;
    made.informatAt = [](QVFMTh, QVStrSize index, QVFMTEntry* entry) {
        return informatAt(index, entry);
    };
    made.formatAt = [](QVFMTh, QVStrSize index, QVFMTEntry* entry) {
        return formatAt(index, entry);
    };
}

}  // namespace

QVExtensionh qvefmtEntry(QVHndlp, QVJnlh) {
    return makeInstance<QVFMT, QVFMT>("fmt ", fillTable);
}

}  // namespace qvhost
