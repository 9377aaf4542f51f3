// The number that a numeric column has for a text.
//
// Tested by tests/reader/consume_test.cpp
#pragma once

#include "qvejmap.h"

#include "core/text.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string_view>

namespace jmap {

// A text that is no number, but has a value in a numeric column.
struct WORD {
    std::string_view text;
    uint64_t bits;
    const QVChar* note;  // written when the value is stored
};
inline constexpr WORD kWords[] = {
    {"true", std::bit_cast<uint64_t>(1.0), U"consumePathVar [%.*hs] [%.*hs] set to 1 (true)"},
    {"null", QVEJMAP_MISSING_BITS, U"consumePathVar [%.*hs] [%.*hs] set to MISSING (null)"},
    {"false", std::bit_cast<uint64_t>(0.0), U"consumePathVar [%.*hs] [%.*hs] set to 0 (false)"},
};

struct NUMBERCELL {
    uint64_t bits;     // of the double; 0.0 when there is none
    QVStatus status;   // of the conversion
    const WORD* word;  // the conversion failed, but the text is this word; else null
};

// A document without a string service has no numbers.
[[nodiscard]] inline NUMBERCELL numberCell(QVStringServiceh smh, std::string_view text) noexcept {
    double number = 0.0;
    QVStrSize used = 0;
    const QVStatus status = smh == nullptr
                                ? QV_UNSUPPORTED
                                : smh->toDouble(smh, text.data(), lengthOf(text), &number, &used);
    if (status == QV_OK) {
        return {std::bit_cast<uint64_t>(number), QV_OK, nullptr};
    }
    const auto* word = std::find_if(std::begin(kWords), std::end(kWords),
                                    [&](const WORD& w) { return w.text == text; });
    if (word == std::end(kWords)) {
        return {std::bit_cast<uint64_t>(number), status, nullptr};
    }
    return {word->bits, status, word};
}

}  // namespace jmap
