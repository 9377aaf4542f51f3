// See recoder.h.
//
// The text passes through UTF-16, the form that ICU's converters give and note origins for.
#include "client/input/recoder.h"

#include "client/error.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstring>

namespace qvej {
namespace {

constexpr std::size_t kInputBytes = 32768;       // converted at a time
constexpr std::size_t kUnits = kInputBytes + 8;  // few bytes give more than one unit
constexpr std::size_t kMostUtf8 = 3;             // bytes for one unit
constexpr char16_t kByteOrderMark = 0xFEFF;
constexpr char16_t kReplacement = 0xFFFD;

// Bytes of the valid UTF-8 `text` that it takes in UTF-16 units.
std::size_t countUnits(std::string_view text) {
    std::size_t count = 0;
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        count += static_cast<std::size_t>((byte & 0xC0) != 0x80) +
                 static_cast<std::size_t>(byte >= 0xF0);
    }
    return count;
}

// Where the last line of `text` begins; npos: it holds no line end.
std::size_t lastLine(std::string_view text) {
    const void* feed = text.empty() ? nullptr : ::memrchr(text.data(), '\n', text.size());
    return feed == nullptr
               ? std::string_view::npos
               : static_cast<std::size_t>(static_cast<const char*>(feed) - text.data()) + 1;
}

// Gives U+FFFD.  ICU's own substitution gives U+001A in some encodings.
void replaceInvalid(const void* /*context*/, UConverterToUnicodeArgs* args, const char* /*bytes*/,
                    int32_t /*length*/, UConverterCallbackReason reason, UErrorCode* status) {
    if (reason <= UCNV_IRREGULAR) {
        *status = U_ZERO_ERROR;
        ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, status);
    }
}

UConverter* openConverter(const std::string& encoding) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = nullptr;
    if (!encoding.empty()) {  // an empty name would mean the locale's encoding
        converter = ucnv_open(encoding.c_str(), &status);
    }
    if (converter == nullptr) {
        throw Error(QV_BADPARMS, "no encoding is named '" + encoding + "'");
    }
    return converter;
}

}  // namespace

std::string guessEncoding(std::string_view start) {
    using namespace std::string_view_literals;
    const struct {
        std::string_view mark;
        const char* encoding;
    } marks[] = {{"\xEF\xBB\xBF"sv, "UTF-8"},
                 {"\xFF\xFE\0\0"sv, "UTF-32LE"},
                 {"\0\0\xFE\xFF"sv, "UTF-32BE"},
                 {"\xFF\xFE"sv, "UTF-16LE"},
                 {"\xFE\xFF"sv, "UTF-16BE"}};
    for (const auto& [mark, encoding] : marks) {
        if (start.starts_with(mark)) {
            return encoding;
        }
    }
    // The first character of JSON is ASCII, so all its other bytes are zero.
    if (start.size() < 2 || (start[0] != '\0' && start[1] != '\0')) {
        return "UTF-8";
    }
    if (start[0] == '\0') {
        return start[1] == '\0' ? "UTF-32BE" : "UTF-16BE";
    }
    return start.size() >= 4 && start.substr(2, 2) == "\0\0"sv ? "UTF-32LE" : "UTF-16LE";
}

void Recoder::Close::operator()(UConverter* converter) const {
    ucnv_close(converter);
}

Recoder::Recoder(const std::string& encoding, std::string_view start, Invalid invalid)
    : converter_(openConverter(encoding)),
      invalid_(invalid),
      units_(kUnits),
      origins_(kUnits),
      bytes_(kUnits * kMostUtf8) {
    const UConverterType type = ucnv_getType(converter_.get());
    if (type == UCNV_UTF16 || type == UCNV_UTF32) {
        const std::string family = type == UCNV_UTF16 ? "UTF-16" : "UTF-32";
        const std::string guess = guessEncoding(start);
        converter_.reset(openConverter(guess.starts_with(family) ? guess : family + "BE"));
    }
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter_.get(),
                        invalid == Invalid::STOPS ? UCNV_TO_U_CALLBACK_STOP : &replaceInvalid,
                        nullptr, nullptr, nullptr, &status);
    if (U_FAILURE(status)) {
        throw std::bad_alloc();
    }
    unitBytes_ = ucnv_getMinCharSize(converter_.get());
}

std::string Recoder::encoding() const {
    UErrorCode status = U_ZERO_ERROR;
    return ucnv_getName(converter_.get(), &status);
}

std::string_view Recoder::convert(std::string_view& input) {
    if (const std::size_t line = lastLine(text_); line != std::string_view::npos) {
        lineStart_ = placeOf(line);
    }
    textBase_ += static_cast<int64_t>(text_.size());
    inputBase_ = inputEnd_;
    knownText_ = 0;
    decode(input);
    first_ = 0;
    if (!begun_ && unitCount_ != 0) {
        begun_ = true;
        first_ = units_[0] == kByteOrderMark ? 1 : 0;
        lineStart_ = first_ == 0 ? 0 : unitCount_ > 1 ? origins_[1] : textEnd_;
    }
    knownUnit_ = first_;
    encode();
    return text_;
}

// Bytes to UTF-16.
void Recoder::decode(std::string_view& input) {
    const char* source = input.data();
    const char* end = source + std::min(input.size(), kInputBytes);
    const char* const begin = input.data();
    const auto taken = [&] { return static_cast<int32_t>(source - begin); };
    unitCount_ = 0;
    if (half_ != 0) {
        units_[0] = half_;
        origins_[unitCount_++] = static_cast<int32_t>(halfAt_ - inputBase_);
        half_ = 0;
    }
    UErrorCode status = U_ZERO_ERROR;
    // The rest of a character that began in the piece before.  Converters differ in the origins
    // that they note for it and for what follows.
    const int32_t held = ucnv_toUCountPending(converter_.get(), &status);
    while (source != end && U_SUCCESS(status) &&
           ucnv_toUCountPending(converter_.get(), &status) > 0) {
        const std::size_t before = unitCount_;
        status = decodeSome(source, source + 1, false);
        std::fill(origins_.data() + before, origins_.data() + unitCount_, -held);
    }
    if (U_SUCCESS(status)) {
        const std::size_t before = unitCount_;
        const int32_t base = taken();
        status = decodeSome(source, end, input.empty());
        for (std::size_t i = before; i < unitCount_; ++i) {
            origins_[i] = base + std::max(origins_[i], 0);
        }
    }
    inputEnd_ = inputBase_ + taken();
    textEnd_ = inputEnd_ - ucnv_toUCountPending(converter_.get(), &status);
    if (!input.empty() && unitCount_ != 0 && U16_IS_LEAD(units_[unitCount_ - 1])) {
        half_ = units_[--unitCount_];
        textEnd_ = halfAt_ = inputBase_ + origins_[unitCount_];
    }
    input.remove_prefix(static_cast<std::size_t>(taken()));
    broken_ = U_FAILURE(status);
    if (broken_) {
        char invalid[32];
        int8_t length = sizeof invalid;
        UErrorCode ignored = U_ZERO_ERROR;  // then the place is the one after the mistake
        ucnv_getInvalidChars(converter_.get(), invalid, &length, &ignored);
        textEnd_ = inputEnd_ - (U_FAILURE(ignored) ? 0 : length);
    }
}

// Converts from `source`, which it moves, up to `end`, and adds to the units.
UErrorCode Recoder::decodeSome(const char*& source, const char* end, bool last) {
    UErrorCode status = U_ZERO_ERROR;
    char16_t* target = units_.data() + unitCount_;
    ucnv_toUnicode(converter_.get(), &target, units_.data() + kUnits, &source, end,
                   origins_.data() + unitCount_, last ? 1 : 0, &status);
    unitCount_ = static_cast<std::size_t>(target - units_.data());
    return status == U_BUFFER_OVERFLOW_ERROR ? U_ZERO_ERROR : status;  // the rest comes next time
}

// UTF-16 to UTF-8.  Some encodings can hold half a surrogate pair: it goes on, for the parser to
// find.
void Recoder::encode() {
    std::size_t size = 0;
    for (std::size_t i = first_; i < unitCount_;) {
        if (units_[i] < 0x80) {
            bytes_[size++] = static_cast<char>(units_[i++]);
            continue;
        }
        UChar32 character = 0;
        U16_NEXT(units_.data(), i, unitCount_, character);
        if (U_IS_SURROGATE(character) && invalid_ == Invalid::IS_REPLACED) {
            character = kReplacement;
        }
        U8_APPEND_UNSAFE(bytes_.data(), size, character);
    }
    text_ = {bytes_.data(), size};
}

std::size_t Recoder::unitOf(std::size_t textAt) const {
    if (textAt < knownText_) {
        knownText_ = 0;
        knownUnit_ = first_;
    }
    knownUnit_ += countUnits(text_.substr(knownText_, textAt - knownText_));
    knownText_ = textAt;
    return knownUnit_;
}

int64_t Recoder::placeOf(std::size_t textAt) const {
    const std::size_t unit = unitOf(textAt);
    return unit < unitCount_ ? inputBase_ + origins_[unit] : textEnd_;
}

// Where in the input the line starts that holds the byte.
int64_t Recoder::startOfLine(int64_t offset) const {
    const auto textAt = static_cast<std::size_t>(std::max<int64_t>(offset - textBase_, 0));
    const std::size_t line = lastLine(text_.substr(0, textAt));
    return line == std::string_view::npos ? lineStart_ : placeOf(line);
}

int64_t Recoder::columnOf(int64_t offset) const {
    const auto textAt = static_cast<std::size_t>(std::max<int64_t>(offset - textBase_, 0));
    const int64_t before = std::max<int64_t>(textBase_ - offset, 0);
    return (placeOf(textAt) - startOfLine(offset)) / unitBytes_ + 1 - before;
}

int64_t Recoder::inputOf(int64_t offset, int64_t column) const {
    return startOfLine(offset) + (column - 1) * unitBytes_;
}

}  // namespace qvej
