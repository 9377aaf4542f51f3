// Code pages: found through ICU's converters, kept as two small tables each.
//
// Tested by tests/host/nls_test.cpp
#include "host/nls/code_page.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <memory>
#include <mutex>

namespace qvhost {

std::optional<char32_t> CodePage::character(uint8_t byte) const noexcept {
    const char32_t found = characters_[byte];
    return found == kUnassigned ? std::nullopt : std::optional(found);
}

std::optional<uint8_t> CodePage::byte(char32_t character) const noexcept {
    const auto end = reverse_.begin() + static_cast<std::ptrdiff_t>(reverseCount_);
    const auto at =
        std::ranges::lower_bound(reverse_.begin(), end, character, {}, &Reverse::character);
    return at != end && at->character == character ? std::optional(at->byte) : std::nullopt;
}

namespace {

struct ConverterClose {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterClose>;

// Null when ICU knows no such encoding, or when the name says more than a name: ICU takes options
// after a comma.
Converter openConverter(std::string_view name) {
    const bool plain =
        name.size() < UCNV_MAX_CONVERTER_NAME_LENGTH &&
        std::ranges::all_of(name, [](char c) { return c > ' ' && c < 0x7F && c != ','; });
    if (!plain) {
        return nullptr;
    }
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(std::string(name).c_str(), &error));
    return U_SUCCESS(error) ? std::move(converter) : nullptr;
}

}  // namespace

// Reads one page from an ICU converter, byte by byte.
class CodePageReader {
   public:
    explicit CodePageReader(UConverter* converter) noexcept : converter_(converter) {}

    // False when the encoding is not a single-byte one that agrees with ASCII below 0x80.
    [[nodiscard]] bool read(CodePage& page) {
        if (ucnv_getMinCharSize(converter_) != 1 || ucnv_getMaxCharSize(converter_) != 1 ||
            !beStrict()) {
            return false;
        }
        for (unsigned i = 0; i < 256; ++i) {
            const auto byte = static_cast<uint8_t>(i);
            const char32_t character = decode(byte);
            if (byte < 0x80 && character != byte) {
                return false;
            }
            page.characters_[byte] = character;
            if (character != CodePage::kUnassigned && isReverse(character, byte)) {
                page.reverse_[page.reverseCount_++] = {character, byte};
            }
        }
        std::ranges::sort(page.reverse_.begin(),
                          page.reverse_.begin() + static_cast<std::ptrdiff_t>(page.reverseCount_),
                          {}, &CodePage::Reverse::character);
        return true;
    }

   private:
    // No substitution characters: what does not exist is an error.
    bool beStrict() {
        UErrorCode error = U_ZERO_ERROR;
        ucnv_setToUCallBack(converter_, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
        ucnv_setFromUCallBack(converter_, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                              &error);
        return U_SUCCESS(error) != 0;
    }

    char32_t decode(uint8_t byte) {
        UErrorCode error = U_ZERO_ERROR;
        const char in = static_cast<char>(byte);
        const char* from = &in;
        ucnv_resetToUnicode(converter_);
        const UChar32 character = ucnv_getNextUChar(converter_, &from, &in + 1, &error);
        return U_SUCCESS(error) ? static_cast<char32_t>(character) : CodePage::kUnassigned;
    }

    // Two bytes of a page may stand for one character.  ICU names one of them for the way back; a
    // character that it gives no way back for keeps its own byte.
    bool isReverse(char32_t character, uint8_t byte) {
        std::array<UChar, 2> units{};
        int32_t count = 0;
        UErrorCode error = U_ZERO_ERROR;
        const auto point = static_cast<UChar32>(character);
        u_strFromUTF32(units.data(), 2, &count, &point, 1, &error);
        std::array<char, 8> out{};
        const int32_t length =
            ucnv_fromUChars(converter_, out.data(), 8, units.data(), count, &error);
        return U_FAILURE(error) || (length == 1 && static_cast<uint8_t>(out[0]) == byte);
    }

    UConverter* converter_;
};

namespace {

// A page that has an id.  The list only grows and is never freed: ids are good to the end of the
// process, and there is no exit hook to free it in.
struct Entry {
    QVCEI id;
    std::string name;
    CodePage page;
    const Entry* next;
};

constexpr QVCEI kFirstId = 1001;
constinit std::mutex entriesMutex;
constinit const Entry* entries = nullptr;  // newest first

template <class Is>
const Entry* findEntry(Is is) {
    const std::lock_guard lock(entriesMutex);
    for (const Entry* entry = entries; entry != nullptr; entry = entry->next) {
        if (is(*entry)) {
            return entry;
        }
    }
    return nullptr;
}

const Entry* findById(QVCEI id) {
    return findEntry([id](const Entry& entry) { return entry.id == id; });
}

// Two threads may make the same page; the second one then uses that of the first.
QVCEI addEntry(std::unique_ptr<Entry> made) {
    const std::lock_guard lock(entriesMutex);
    for (const Entry* entry = entries; entry != nullptr; entry = entry->next) {
        if (entry->name == made->name) {
            return entry->id;
        }
    }
    made->id = entries == nullptr ? kFirstId : entries->id + 1;
    made->next = entries;
    entries = made.release();
    return entries->id;
}

}  // namespace

QVCEI encodingId(std::string_view name) {
    const Converter converter = openConverter(name);
    if (converter == nullptr) {
        return 0;
    }
    if (ucnv_getType(converter.get()) == UCNV_UTF8) {
        return U_UTF8_CE;
    }
    UErrorCode error = U_ZERO_ERROR;
    const std::string own = ucnv_getName(converter.get(), &error);
    if (const Entry* known = findEntry([&own](const Entry& entry) { return entry.name == own; })) {
        return known->id;
    }
    auto made = std::make_unique<Entry>(Entry{0, own, {}, nullptr});
    return CodePageReader(converter.get()).read(made->page) ? addEntry(std::move(made)) : 0;
}

const CodePage* codePage(QVCEI cei) noexcept {
    const Entry* entry = findById(cei);
    return entry == nullptr ? nullptr : &entry->page;
}

std::string_view encodingName(QVCEI cei) noexcept {
    if (cei == U_UTF8_CE) {
        return "UTF-8";
    }
    const Entry* entry = findById(cei);
    return entry == nullptr ? std::string_view() : entry->name;
}

}  // namespace qvhost
