// What character informats do to a text.  All texts are UTF-8.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include "qvstatus.h"

#include <memory>
#include <string>
#include <string_view>

struct UCaseMap;  // ICU's

namespace qvhost {

// The first `width` characters.  A byte that belongs to no character counts as one.
[[nodiscard]] std::string_view leftCharacters(std::string_view text, uint64_t width) noexcept;

// Unicode's upper and lower case, the same for every language.
class CaseMapper {
   public:
    CaseMapper();

    // `out` becomes the mapped text.  Bytes that belong to no character stay.
    [[nodiscard]] QVStatus upper(std::string_view text, std::string& out) const;
    [[nodiscard]] QVStatus lower(std::string_view text, std::string& out) const;

   private:
    struct Closer {
        void operator()(UCaseMap* map) const noexcept;
    };
    std::unique_ptr<UCaseMap, Closer> map_;
};

}  // namespace qvhost
