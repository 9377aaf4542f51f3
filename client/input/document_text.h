// The text of a document as the engine takes it: unpacked, in UTF-8, without a byte order mark.
//
// Tested by tests/tool/golden/encodings.t and tests/tool/golden/input.t
#pragma once

#include "../text_form.h"
#include "read_ahead.h"
#include "recoder.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

class DocumentText {
   public:
    // `encoding`: a name, or "auto" to go by the first bytes.  Throws Error.
    DocumentText(ByteSource source, const std::string& encoding, bool replaceInvalid);

    // Before `next`: what the text is by its beginning, a mebibyte of the unpacked document, for
    // which it waits.  Throws Error.
    [[nodiscard]] TextForm form();

    // The next piece, empty at the end and where the text is broken.  It lives until the next call.
    // Throws Error.
    std::string_view next();

    // The text ends where something stands that is wrong in its encoding.
    [[nodiscard]] bool broken() const { return recoder_ && recoder_->broken(); }

    // The text is converted, so that columns cannot be counted in its bytes.
    [[nodiscard]] bool recoded() const { return recoder_.has_value(); }
    // See Recoder.  Only of a text that is recoded.
    [[nodiscard]] int64_t columnOf(int64_t offset) const { return recoder_->columnOf(offset); }

    // How many bytes of the unpacked document stand before byte `offset` of this text, which is in
    // that column of the line that is read.
    [[nodiscard]] int64_t sourceOffset(int64_t offset, int64_t column) const {
        return recoder_ ? recoder_->inputOf(offset, column) : offset + markBytes_;
    }

    // The encoding as it was named, or what it was taken for.
    [[nodiscard]] const std::string& encoding() const { return encoding_; }
    // Another encoding, when the first bytes look like that; else null.
    [[nodiscard]] const std::string* otherEncoding() const {
        return looksOther_ ? &guess_ : nullptr;
    }

    // How many bytes of the source stand before the text, which is there as it is; nothing: it was
    // unpacked or converted.
    [[nodiscard]] std::optional<int64_t> bytesBefore() const {
        return recoder_ || bytes_.packed() ? std::nullopt : std::optional(markBytes_);
    }

    // What messages call it.
    [[nodiscard]] const std::string& name() const { return bytes_.name(); }

   private:
    // Of the text, without its mark.
    [[nodiscard]] std::size_t beginningBytes() const {
        return (std::size_t{1} << 20) - static_cast<std::size_t>(markBytes_);
    }
    void awaitBeginning();

    ReadAhead bytes_;
    std::string beginning_;   // several pieces that were waited for
    std::string_view piece_;  // what is not converted yet
    std::string guess_;
    std::string encoding_;
    Recoder::Invalid invalid_;
    bool looksOther_ = false;
    std::optional<Recoder> recoder_;  // none: the text passes as it is
    int64_t markBytes_ = 0;           // of a byte order mark that was left out
    bool begun_ = false;              // the first piece has been handed out
};

}  // namespace qvej
