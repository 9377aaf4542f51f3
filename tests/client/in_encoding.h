// Texts in other encodings, by ICU alone.
#pragma once

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <string>

namespace jmap::test {

inline std::string inEncoding(const std::string& utf8, const std::string& encoding) {
    std::string text(utf8.size() * 8 + 16, '\0');
    UErrorCode status = U_ZERO_ERROR;
    const auto room = static_cast<int32_t>(text.size());
    const int32_t size = ucnv_convert(encoding.c_str(), "UTF-8", text.data(), room, utf8.data(),
                                      static_cast<int32_t>(utf8.size()), &status);
    EXPECT_TRUE(U_SUCCESS(status)) << encoding;
    text.resize(static_cast<std::size_t>(size));
    return text;
}

}  // namespace jmap::test
