// The bytes of an input: options from its front, then texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace jmap::fuzz {

class Input {
   public:
    Input(const uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    // 0 at the end.
    uint8_t byte() {
        const auto value = rest_.empty() ? uint8_t{0} : static_cast<uint8_t>(rest_.front());
        rest_.remove_prefix(rest_.empty() ? 0 : 1);
        return value;
    }
    // What is in front of the next `end`, which is taken too, or everything.
    std::string_view upTo(char end) {
        const std::size_t at = rest_.find(end);
        const std::string_view text = rest_.substr(0, at);
        rest_.remove_prefix(at == rest_.npos ? rest_.size() : at + 1);
        return text;
    }
    std::string_view rest() {
        const std::string_view text = rest_;
        rest_ = {};
        return text;
    }

   private:
    std::string_view rest_;
};

}  // namespace jmap::fuzz
