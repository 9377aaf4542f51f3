// Case by ICU's mapping of UTF-8, for the root locale.
//
// Tested by tests/host/fmt_test.cpp
#include "host/fmt/texts.h"

#include "host/nls/utf8_char.h"

#include <unicode/ucasemap.h>

#include <algorithm>
#include <limits>
#include <new>

namespace qvhost {
namespace {

template <class Map>
QVStatus mapCase(Map map, const UCaseMap* setting, std::string_view text, std::string& out) {
    if (text.size() > std::numeric_limits<int32_t>::max()) {
        return QV_FMT_RANGE;
    }
    const auto length = static_cast<int32_t>(text.size());
    out.resize(text.size());
    int32_t needed = 0;
    UErrorCode error = U_ZERO_ERROR;
    do {
        error = U_ZERO_ERROR;
        out.resize(std::max(out.size(), static_cast<std::size_t>(needed)));
        needed =
            map(setting, out.data(), static_cast<int32_t>(out.size()), text.data(), length, &error);
    } while (error == U_BUFFER_OVERFLOW_ERROR);
    if (U_FAILURE(error)) {
        return error == U_MEMORY_ALLOCATION_ERROR ? QV_NOMEM : QV_INTERNAL;
    }
    out.resize(static_cast<std::size_t>(needed));
    return QV_OK;
}

}  // namespace

std::string_view leftCharacters(std::string_view text, uint64_t width) noexcept {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (; at != end && width > 0; --width) {
        at += utf8Decode(at, end).length;
    }
    return text.substr(0, static_cast<std::size_t>(at - text.data()));
}

CaseMapper::CaseMapper() {
    UErrorCode error = U_ZERO_ERROR;
    map_.reset(ucasemap_open("", 0, &error));
    if (U_FAILURE(error)) {
        throw std::bad_alloc();
    }
}

void CaseMapper::Closer::operator()(UCaseMap* map) const noexcept {
    ucasemap_close(map);
}

QVStatus CaseMapper::upper(std::string_view text, std::string& out) const {
    return mapCase(ucasemap_utf8ToUpper, map_.get(), text, out);
}

QVStatus CaseMapper::lower(std::string_view text, std::string& out) const {
    return mapCase(ucasemap_utf8ToLower, map_.get(), text, out);
}

}  // namespace qvhost
