// Texts on their way out of the engine: from the document's encoding to UTF-8, cells without their
// padding, paths with slashes.
//
// Tested by tests/client/client_test.cpp
#pragma once

#include "qvejmap.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

inline constexpr uint64_t kLongestCell = 32767;  // bytes of a character column

// A counted text of the engine; null is empty.
[[nodiscard]] inline std::string_view view(const char* text, QVStrSize textLen) {
    return text == nullptr ? std::string_view{}
                           : std::string_view(text, static_cast<std::size_t>(textLen));
}

// The path of a table, a column or a statistic, which `write` puts together.
template <class Handle>
[[nodiscard]] std::string pathOf(void (*write)(Handle, char*), Handle handle, QVStrSize pathLen) {
    std::string path(static_cast<std::size_t>(pathLen), '\0');
    write(handle, path.data());
    return path;
}

// Converts between the encoding of a document and UTF-8.  UTF-8 passes untouched; any other
// encoding of a document has one byte a character, so a table of 256 texts is all it takes.
class TextCodec {
   public:
    TextCodec(QVHndlp host, QVCEI encoding);

    [[nodiscard]] bool isUtf8() const { return utf8OfByte_.empty(); }

    // `text` in UTF-8: the argument itself, or a view into `scratch`.  A byte that means nothing in
    // the encoding becomes U+FFFD.
    std::string_view decode(std::string_view text, std::string& scratch) const;
    [[nodiscard]] std::string decoded(std::string_view text) const;

    // UTF-8 in the document's encoding.  Throws QV_UNMAPPABLE.
    [[nodiscard]] std::string encoded(std::string_view utf8) const;

   private:
    std::vector<std::string> utf8OfByte_;  // [256], or empty for UTF-8
};

// A character cell without the blanks that fill it up and, in UTF-8, without the sequence that was
// cut in two at its end.
std::string_view withoutPadding(std::string_view cell, bool utf8);

// `text` without an unfinished last UTF-8 sequence.
std::string_view withoutUnfinished(std::string_view text);

// The first `count` characters of a UTF-8 text.
std::string_view firstCharacters(std::string_view text, std::size_t count);

// A path with "/" for the separator 0x02.
std::string withSlashes(std::string_view path);

// UTF-8 as 4-byte characters.  Throws QV_UNMAPPABLE for invalid UTF-8.
std::u32string toHostCharacters(std::string_view utf8);

// Are the two equal, the letters A-Z in any case?
bool equalIgnoringCase(std::string_view a, std::string_view b);

// The text with a-z for A-Z.
std::string lowerCased(std::string_view text);

// 1234567 as "1,234,567".
[[nodiscard]] std::string withCommas(uint64_t number);

}  // namespace qvej
