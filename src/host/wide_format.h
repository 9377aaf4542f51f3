// Formats of 4-byte characters.
//
// Conversions: %d %ld %lld %g %s %hs %%, each with the flag "-", a width and a precision, either a
// number or "*".  %hs takes bytes (const char*), %s takes 4-byte characters (const QVChar*).  They
// mean what printf means in the C locale, with these exceptions, which keep a wrong argument from
// doing harm:
//   - a null text is an empty one;
//   - a precision for %s or %hs that is given as "*" and negative counts as 0, since a text with a
//     length is not terminated;
//   - widths above 65,535 are cut to that;
//   - from a conversion that is not in the list on, the format is copied as it stands, since the
//     types of the arguments are no longer known.
// Widths and precisions of %hs count bytes, those of %s count characters.
//
// Tested by tests/host/wide_format_test.cpp
#pragma once

#include "qvehost.h"

#include <cstdarg>
#include <string>
#include <string_view>

namespace qvhost {

// Takes a formatted text piece by piece.
class FormatSink {
   public:
    virtual ~FormatSink() = default;
    virtual void chars(std::u32string_view text) = 0;  // of the format, or of %s
    virtual void bytes(std::string_view text) = 0;     // of %hs: bytes of the document's encoding
    virtual void ascii(std::string_view text) = 0;     // numbers and padding
};

// Collects bytes: characters as UTF-8, bytes of %hs unchanged.
class Utf8Sink final : public FormatSink {
   public:
    std::string text;

    void chars(std::u32string_view part) override;
    void bytes(std::string_view part) override { text += part; }
    void ascii(std::string_view part) override { text += part; }
};

// Collects characters.  Bytes of %hs are read as UTF-8; those that are not stand for the characters
// U+0080 to U+00FF.
class Utf32Sink final : public FormatSink {
   public:
    std::u32string text;

    void chars(std::u32string_view part) override { text += part; }
    void bytes(std::string_view part) override;
    void ascii(std::string_view part) override { text.append(part.begin(), part.end()); }
};

// Formats into `sink`.  `args` is used up.
void formatWide(FormatSink& sink, const QVChar* fmt, QVStrSize fmtLen, va_list args);

// The same, collected.
[[nodiscard]] std::string formatUtf8(const QVChar* fmt, QVStrSize fmtLen, va_list args);
[[nodiscard]] std::u32string formatUtf32(const QVChar* fmt, QVStrSize fmtLen, va_list args);

}  // namespace qvhost
