// See document_text.h.
#include "client/input/document_text.h"

#include <utility>

namespace qvej {
namespace {
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
}

DocumentText::DocumentText(ByteSource source, const std::string& encoding, bool replaceInvalid)
    : bytes_(Unpacker(std::move(source))),
      piece_(bytes_.next()),
      guess_(guessEncoding(piece_)),
      invalid_(replaceInvalid ? Recoder::Invalid::IS_REPLACED : Recoder::Invalid::STOPS) {
    encoding_ = encoding == "auto" ? guess_ : encoding;
    recoder_.emplace(encoding_, piece_, invalid_);
    const std::string inUse = recoder_->encoding();
    looksOther_ = guess_ != "UTF-8" && guess_ != inUse;
    if (inUse == "UTF-8" && !replaceInvalid) {
        recoder_.reset();  // the parser looks at each byte anyway
        markBytes_ = piece_.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
        piece_.remove_prefix(static_cast<std::size_t>(markBytes_));
    }
}

// The first piece of a pipe may be what has come so far.
void DocumentText::awaitBeginning() {
    if (bytes_.isFile() || piece_.empty() || piece_.size() >= beginningBytes()) {
        return;
    }
    beginning_ = piece_;
    for (std::string_view more = bytes_.next(); !more.empty(); more = bytes_.next()) {
        beginning_ += more;
        if (beginning_.size() >= beginningBytes()) {
            break;
        }
    }
    piece_ = beginning_;
}

// A text that is converted is converted once more here.  The recoder knows where in the input its
// last piece came from, so that one must not run ahead.
TextForm DocumentText::form() {
    awaitBeginning();
    const std::string_view start = piece_.substr(0, beginningBytes());
    if (!recoder_) {
        return textFormOf(start);
    }
    Recoder recoder(encoding_, piece_, invalid_);
    std::string text;
    for (std::string_view rest = start; !rest.empty() && !recoder.broken();) {
        text += recoder.convert(rest);
    }
    return textFormOf(text);
}

std::string_view DocumentText::next() {
    if (!recoder_) {
        const std::string_view piece = begun_ ? bytes_.next() : piece_;
        begun_ = true;
        return piece;
    }
    for (bool ended = false; !ended && !broken();) {
        if (piece_.empty()) {
            piece_ = bytes_.next();
        }
        ended = piece_.empty();
        const std::string_view text = recoder_->convert(piece_);
        if (!text.empty()) {
            return text;
        }
    }
    return {};
}

}  // namespace qvej
