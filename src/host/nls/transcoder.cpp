// A conversion reads one character and writes one character until the input is used up.  It never
// puts another character in the place of one that does not exist.
//
// Tested by tests/host/nls_test.cpp
#include "host/nls/transcoder.h"

#include "host/host_object.h"
#include "host/nls/code_page.h"
#include "host/nls/utf8_char.h"
#include "host/rim.h"

#include <cstring>
#include <optional>
#include <span>
#include <string>

namespace qvhost {
namespace {

// One side of a conversion.
struct Encoding {
    enum class Form : uint8_t { UTF32, UTF8, PAGE };
    Form form;
    const CodePage* page;  // of PAGE
};

std::optional<Encoding> encodingOf(QVCEI cei) {
    if (cei == U_L_UCS4_CE) {
        return Encoding{Encoding::Form::UTF32, nullptr};
    }
    if (cei == U_UTF8_CE) {
        return Encoding{Encoding::Form::UTF8, nullptr};
    }
    const CodePage* page = codePage(cei);
    return page == nullptr ? std::nullopt : std::optional(Encoding{Encoding::Form::PAGE, page});
}

std::string_view shownName(QVCEI cei) {
    return cei == U_L_UCS4_CE ? "UTF-32" : encodingName(cei);
}

class Reader {
   public:
    Reader(Encoding encoding, std::span<const char> bytes) noexcept
        : encoding_(encoding), at_(bytes.data()), end_(bytes.data() + bytes.size()) {}

    [[nodiscard]] bool atEnd() const noexcept { return at_ == end_; }
    // The next character, or none when the bytes there are none.
    [[nodiscard]] std::optional<char32_t> next() noexcept {
        switch (encoding_.form) {
            case Encoding::Form::UTF32: {
                char32_t character = 0;
                std::memcpy(&character, at_, sizeof character);
                at_ += sizeof character;
                const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
                return surrogate || character > 0x10FFFF ? std::nullopt : std::optional(character);
            }
            case Encoding::Form::UTF8: {
                const Utf8Char decoded = utf8Decode(at_, end_);
                at_ += decoded.length;
                return decoded.valid ? std::optional(decoded.character) : std::nullopt;
            }
            case Encoding::Form::PAGE:
                return encoding_.page->character(static_cast<uint8_t>(*at_++));
        }
        return std::nullopt;
    }

   private:
    Encoding encoding_;
    const char* at_;
    const char* end_;
};

class Writer {
   public:
    Writer(Encoding encoding, std::span<char> room) noexcept : encoding_(encoding), room_(room) {}

    [[nodiscard]] std::size_t bytes() const noexcept { return used_; }
    [[nodiscard]] QVStatus put(char32_t character) noexcept {
        char encoded[4];
        const std::size_t length = encode(character, encoded);
        if (length == 0) {
            return QV_UNMAPPABLE;
        }
        if (length > room_.size() - used_) {
            return QV_TRUNCATED;
        }
        std::memcpy(room_.data() + used_, encoded, length);
        used_ += length;
        return QV_OK;
    }

   private:
    // Returns the number of bytes, 0 when the encoding does not have the character.
    [[nodiscard]] std::size_t encode(char32_t character, char (&out)[4]) const noexcept {
        switch (encoding_.form) {
            case Encoding::Form::UTF32:
                std::memcpy(out, &character, sizeof character);
                return sizeof character;
            case Encoding::Form::UTF8:
                return static_cast<std::size_t>(utf8Encode(character, out));
            case Encoding::Form::PAGE: {
                const std::optional<uint8_t> byte = encoding_.page->byte(character);
                out[0] = static_cast<char>(byte.value_or(0));
                return byte ? 1 : 0;
            }
        }
        return 0;
    }

    Encoding encoding_;
    std::span<char> room_;
    std::size_t used_ = 0;
};

// Bytes of each unit that lengths are counted in.
std::size_t unitOf(Encoding encoding) noexcept {
    return encoding.form == Encoding::Form::UTF32 ? sizeof(QVChar) : 1;
}

struct Transcoder : QVTranscoder {
    Transcoder(QVHndlp host, Encoding source, Encoding target, const std::string& name) noexcept;

    Encoding from;
    Encoding to;
    HostObject entry;
};

QVStatus convert(QVTranscoderh t, const void* in, QVStrSize inLen, void* out, QVStrSize outSize,
                 QVStrSize* outLen) {
    if (inLen < 0 || outSize < 0) {
        return QV_BADPARMS;
    }
    const auto* self = static_cast<const Transcoder*>(t);
    const std::size_t outUnit = unitOf(self->to);
    Reader reader(self->from, {static_cast<const char*>(in),
                               static_cast<std::size_t>(inLen) * unitOf(self->from)});
    Writer writer(self->to, {static_cast<char*>(out), static_cast<std::size_t>(outSize) * outUnit});
    while (!reader.atEnd()) {
        const std::optional<char32_t> character = reader.next();
        if (!character) {
            return QV_UNMAPPABLE;
        }
        if (const QVStatus status = writer.put(*character); status != QV_OK) {
            return status;
        }
    }
    *outLen = static_cast<QVStrSize>(writer.bytes() / outUnit);
    return QV_OK;
}

QVStatus destroy(QVGeneric* self) {
    delete static_cast<Transcoder*>(reinterpret_cast<QVTranscoder*>(self));
    return QV_OK;
}

Transcoder::Transcoder(QVHndlp host, Encoding source, Encoding target,
                       const std::string& name) noexcept
    : QVTranscoder{{{'t', 'r', 'n', 's'}, 0, &Rim<&destroy>::call}, &Rim<&qvhost::convert>::call},
      from(source),
      to(target),
      entry(host, ObjectKind::TRANSCODER, generic, name) {}

}  // namespace

QVTranscoderh createTranscoder(QVHndlp host, QVCEI from, QVCEI to) {
    const std::optional<Encoding> source = encodingOf(from);
    const std::optional<Encoding> target = encodingOf(to);
    if (!source || !target) {
        return nullptr;
    }
    std::string name(shownName(from));
    name.append(" to ").append(shownName(to));
    return new Transcoder(host, *source, *target, name);
}

}  // namespace qvhost
