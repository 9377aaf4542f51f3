// The writer: the document so far, and what is open in it.
//
// Tested by tests/host/writer_test.cpp
#include "host/json/writer.h"

#include "host/host_object.h"
#include "host/json/growing_bytes.h"
#include "host/json/json_text.h"
#include "host/nls/code_page.h"
#include "host/rim.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <new>
#include <vector>

namespace qvhost {
namespace {

// Something open, or (the outermost) the document itself.
struct Frame {
    char closer;           // '}', ']', or 0 for the document, which holds one value
    bool filled = false;   // it has a value
    bool pending = false;  // of an object: its last name has no value yet
};

struct PoolEnd {
    void operator()(QVPoolh pool) const { (void)pool->generic.destroy(&pool->generic); }
};
using OwnPool = std::unique_ptr<QVPool, PoolEnd>;

OwnPool newPool(QVHndlp host) {
    constexpr std::u32string_view kName = U"qvejson writer";
    const QVPoolParms parms = {1, 0, QV_NO_NUMA};
    OwnPool pool(
        host->createPool(host, &parms, kName.data(), static_cast<QVStrSize>(kName.size())));
    if (pool == nullptr) {
        throw std::bad_alloc();
    }
    return pool;
}

class Writer : public JSNWriter {
   public:
    Writer(QVHndlp host, const CodePage* page, std::string_view desc);

    [[nodiscard]] QVStatus openFrame(int32_t kind);
    [[nodiscard]] QVStatus closeFrame();
    [[nodiscard]] QVStatus addString(std::string_view text);
    [[nodiscard]] QVStatus addNumber(double value, int32_t digits, int32_t decimals);
    [[nodiscard]] QVStatus deliver(char** buf, QVStrSize* bufLen);

   private:
    // May a value come next?
    [[nodiscard]] bool takesValue() const noexcept;
    // Writes the separator before the next value.
    void beginValue();

    OwnPool pool_;  // of the text: it can be as long as a document, so the host counts it
    GrowingBytes text_;
    std::vector<Frame> frames_{Frame{0}};
    const CodePage* page_;  // null: UTF-8
    HostObject entry_;
};

bool Writer::takesValue() const noexcept {
    const Frame& frame = frames_.back();
    switch (frame.closer) {
        case '}':
            return frame.pending;
        case ']':
            return true;
        default:
            return !frame.filled;
    }
}

void Writer::beginValue() {
    Frame& frame = frames_.back();
    if (frame.pending) {
        text_.append(':');
    } else if (frame.filled) {
        text_.append(',');
    }
    frame.pending = false;
    frame.filled = true;
}

QVStatus Writer::openFrame(int32_t kind) {
    if (kind != JSN_OPEN_OBJECT && kind != JSN_OPEN_ARRAY) {
        return QV_BADPARMS;
    }
    if (!takesValue()) {
        return QV_UNSUPPORTED;
    }
    beginValue();
    text_.append(kind == JSN_OPEN_OBJECT ? "{" : "[");
    frames_.push_back({kind == JSN_OPEN_OBJECT ? '}' : ']'});
    return QV_OK;
}

// Kept: an object may be closed after a name, which then has no colon and no value.  This is the
// only way to write a document that is not JSON.  The map writer needs it: it gives a column of an
// unknown type no value, so the next name becomes the value, and the last string a name without
// one.
QVStatus Writer::closeFrame() {
    if (frames_.size() == 1) {
        return QV_UNSUPPORTED;
    }
    text_.append({&frames_.back().closer, 1});
    frames_.pop_back();
    return QV_OK;
}

QVStatus Writer::addString(std::string_view text) {
    const bool isName = frames_.back().closer == '}' && !frames_.back().pending;
    if (!isName && !takesValue()) {
        return QV_UNSUPPORTED;
    }
    beginValue();
    frames_.back().pending = isName;
    appendJsonString(text_, text, page_);
    return QV_OK;
}

QVStatus Writer::addNumber(double value, int32_t digits, int32_t decimals) {
    constexpr int32_t kAllDigits = 10;
    constexpr int32_t kDecimalsMax = 1074;  // no double has more
    if (digits < 1 || decimals < 0 || decimals > kDecimalsMax) {
        return QV_BADPARMS;
    }
    if (!std::isfinite(value) || !takesValue()) {
        return QV_UNSUPPORTED;
    }
    std::array<char, 320 + kDecimalsMax> room;  // sign, 309 digits, point, decimals
    char* const end = std::to_chars(room.data(), room.data() + room.size(), value,
                                    std::chars_format::fixed, decimals)
                          .ptr;
    const std::string_view number(room.data(), static_cast<std::size_t>(end - room.data()));
    const auto before = std::min(number.find('.'), number.size()) - (std::signbit(value) ? 1 : 0);
    if (digits != kAllDigits && before > static_cast<std::size_t>(digits)) {
        return QV_TRUNCATED;
    }
    beginValue();
    text_.append(number);
    return QV_OK;
}

QVStatus Writer::deliver(char** buf, QVStrSize* bufLen) {
    if (frames_.size() != 1 || !frames_.back().filled) {
        return QV_UNSUPPORTED;
    }
    *buf = reinterpret_cast<char*>(text_.begin());
    *bufLen = static_cast<QVStrSize>(text_.size());
    return QV_OK;
}

// ---- The table ----

Writer* writerOf(JSNWriterh writer) noexcept {
    return static_cast<Writer*>(writer);
}

QVStatus openContainer(JSNWriterh writer, int32_t kind) {
    return writerOf(writer)->openFrame(kind);
}

QVStatus closeContainer(JSNWriterh writer) {
    return writerOf(writer)->closeFrame();
}

QVStatus writeString(JSNWriterh writer, const char* text, QVStrSize textLen) {
    return textLen < 0 ? QV_BADPARMS
                       : writerOf(writer)->addString({text, static_cast<std::size_t>(textLen)});
}

QVStatus writeDouble(JSNWriterh writer, double value, int32_t digits, int32_t decimals) {
    return writerOf(writer)->addNumber(value, digits, decimals);
}

QVStatus fetchBuffer(JSNWriterh writer, char** buf, QVStrSize* bufLen) {
    return writerOf(writer)->deliver(buf, bufLen);
}

QVStatus destroy(QVGeneric* self) {
    delete writerOf(reinterpret_cast<JSNWriterh>(self));
    return QV_OK;
}

Writer::Writer(QVHndlp host, const CodePage* page, std::string_view desc)
    : JSNWriter{{{'j', 's', 'n', 'w'}, 0, &Rim<&destroy>::call},
                &Rim<&openContainer>::call,
                &Rim<&closeContainer>::call,
                &Rim<&writeString>::call,
                &Rim<&writeDouble>::call,
                &Rim<&fetchBuffer>::call},
      pool_(newPool(host)),
      text_(pool_.get()),
      page_(page),
      entry_(host, ObjectKind::WRITER, generic, desc) {
    (void)text_.room(1);  // so that there is a buffer to deliver whatever fails later
}

}  // namespace

JSNWriterh createWriter(QVJSONh json, const JSNWriterParms* parms) {
    if (parms == nullptr) {
        return nullptr;
    }
    const bool offered = parms->inCei == parms->outCei && isDocumentEncoding(parms->inCei) &&
                         parms->flags == JSN_WRITER_FLAGS && parms->pool == nullptr &&
                         parms->stream == nullptr;
    if (!offered) {
        return nullptr;
    }
    const std::string_view desc(parms->desc, static_cast<std::size_t>(parms->descLen));
    return new Writer(json->exth.hndl, codePage(parms->inCei), desc);
}

}  // namespace qvhost
