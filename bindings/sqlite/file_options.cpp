// See file_options.h.
#include "bindings/sqlite/file_options.h"

#include "client/error.h"
#include "client/text.h"

#include <charconv>
#include <limits>
#include <optional>

namespace qvej::sqlite {

namespace {

[[noreturn]] void throwValue(const std::string& name, const std::string& value,
                             const std::string& what) {
    throw Error(QV_BADPARMS, name + "=" + value + ": " + what);
}

// "1000", "64K", "256M", "2G"
std::optional<uint64_t> bytesOf(std::string_view text) {
    uint64_t number = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
    const std::size_t power = unit.empty() ? 0 : std::string_view("KMG").find(unit[0] & ~0x20) + 1;
    if (code != std::errc() || unit.size() > 1 || (!unit.empty() && power == 0) ||
        number > std::numeric_limits<uint64_t>::max() >> (10 * power)) {
        return std::nullopt;
    }
    return number << (10 * power);
}

uint64_t numberOf(const std::string& name, const std::string& value) {
    const std::optional<uint64_t> number = bytesOf(value);
    if (!number) {
        throwValue(name, value, "a number was expected, as in 4 or 256M");
    }
    return *number;
}

}  // namespace

bool FileOptions::set(const std::string& name, const std::string& value) {
    if (name == "map") {
        map = value;
    } else if (name == "shape") {
        shape = value;
    } else if (name == "encoding") {
        text.encoding = value;
    } else if (name == "lines") {
        if (value != "0" && value != "1") {
            throwValue(name, value, "it is 0 or 1");
        }
        text.lines = value == "1";
    } else if (name == "naming") {
        if (value != "map" && value != "original") {
            throwValue(name, value, "it is map or original");
        }
        naming = value == "original" ? Naming::ORIGINAL : Naming::MAP;
    } else if (name == "memory") {
        memory = numberOf(name, value);
    } else if (name == "threads") {
        constexpr uint64_t kMost = 1024;
        const uint64_t count = numberOf(name, value);
        if (count > kMost) {
            throwValue(name, value, "there are " + std::to_string(kMost) + " at most");
        }
        threads = static_cast<unsigned>(count);
    } else {
        return false;
    }
    return true;
}

std::string FileOptions::key() const {
    std::string key;
    for (const std::string& part :
         {file, map, shape, text.encoding, std::to_string(int{text.lines}),
          std::to_string(static_cast<int>(naming)), std::to_string(memory),
          std::to_string(threads)}) {
        key += std::to_string(part.size()) + ":" + part;
    }
    return key;
}

std::string unquoted(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    const char quote = text.empty() ? '\0' : text.front();
    if (text.size() < 2 || (quote != '\'' && quote != '"') || text.back() != quote) {
        return std::string(text);
    }
    std::string plain;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        plain += text[i];
        i += text[i] == quote ? 1 : 0;  // it is there twice
    }
    return plain;
}

Setting settingOf(std::string_view argument) {
    const std::string text = unquoted(argument);
    const std::size_t at = text.find('=');
    if (at == std::string::npos) {
        throw Error(QV_BADPARMS, "\"" + text + "\" is no option: name=value was expected");
    }
    return {lowerCased(unquoted(std::string_view(text).substr(0, at))),
            unquoted(std::string_view(text).substr(at + 1))};
}

void throwUnknown(const std::string& name, const std::string& others) {
    throw Error(QV_BADPARMS,
                "no option is called \"" + name +
                    "\": there are map, shape, lines, encoding, naming, memory, threads" + others);
}

}  // namespace qvej::sqlite
