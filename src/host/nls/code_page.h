// The encodings that a document may have: UTF-8, and the single-byte code pages of ICU whose bytes
// 0 to 7F are ASCII, so that all of JSON's own characters are the bytes that they are in UTF-8.
//
// An encoding gets its id when it is first asked for; ids hold for the whole process.  A code page
// is read from ICU once and never freed.  All routines may be called from any thread.
//
// Tested by tests/host/nls_test.cpp
#pragma once

#include "qvehost.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace qvhost {

// What the bytes of one single-byte encoding stand for.  Never changes once it is made.
class CodePage {
   public:
    // The character of a byte, or none when the page assigns none.
    [[nodiscard]] std::optional<char32_t> character(uint8_t byte) const noexcept;
    // The byte of a character, or none when the page does not hold it.
    [[nodiscard]] std::optional<uint8_t> byte(char32_t character) const noexcept;

   private:
    friend class CodePageReader;
    static constexpr char32_t kUnassigned = 0xFFFFFFFF;
    struct Reverse {
        char32_t character;
        uint8_t byte;
    };
    std::array<char32_t, 256> characters_{};
    std::array<Reverse, 256> reverse_{};  // the first `reverseCount_`, in order of the character
    std::size_t reverseCount_ = 0;
};

// The id of an encoding by any of its names, in any case: U_UTF8_CE, an id above 1000 for a code
// page, or 0 when it cannot be a document's.
[[nodiscard]] QVCEI encodingId(std::string_view name);

// The page of an id that encodingId() gave; null for every other id, U_UTF8_CE included.
[[nodiscard]] const CodePage* codePage(QVCEI cei) noexcept;

// "UTF-8", or ICU's own name of the page; empty for an unknown id.
[[nodiscard]] std::string_view encodingName(QVCEI cei) noexcept;

// Can a document be in this encoding?
[[nodiscard]] inline bool isDocumentEncoding(QVCEI cei) noexcept {
    return cei == U_UTF8_CE || codePage(cei) != nullptr;
}

}  // namespace qvhost
