// See unpacker.h.
#include "client/input/unpacker.h"

#include "client/error.h"

#define ZLIB_CONST  // what is read is const
#include <zlib.h>
#include <zstd.h>
#include <zstd_errors.h>

#include <new>
#include <stdexcept>

namespace qvej {
namespace {

constexpr std::size_t kTellingBytes = 4;  // of a byte order mark

class Gzip : public Decompressor {
   public:
    Gzip() {
        if (::inflateInit2(&stream_, kWindowBits) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Gzip() override { (void)::inflateEnd(&stream_); }  // fails only for a stream that is none
    Gzip(const Gzip&) = delete;
    Gzip& operator=(const Gzip&) = delete;

    std::size_t decompress(std::string_view& in, char* out, std::size_t room) override {
        if (atEnd_ && !in.empty()) {
            (void)::inflateReset(&stream_);  // the next member
            atEnd_ = false;
        }
        stream_.next_in = reinterpret_cast<const Bytef*>(in.data());
        stream_.avail_in = static_cast<uInt>(in.size());
        stream_.next_out = reinterpret_cast<Bytef*>(out);
        stream_.avail_out = static_cast<uInt>(room);
        const int status = ::inflate(&stream_, Z_NO_FLUSH);
        if (status == Z_MEM_ERROR) {
            throw std::bad_alloc();
        }
        if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) {
            throw std::runtime_error(stream_.msg == nullptr ? "invalid" : stream_.msg);
        }
        atEnd_ = atEnd_ || status == Z_STREAM_END;
        in.remove_prefix(in.size() - stream_.avail_in);
        return room - stream_.avail_out;
    }
    [[nodiscard]] bool atEnd() const override { return atEnd_; }
    [[nodiscard]] const char* name() const override { return "gzip"; }

   private:
    static constexpr int kWindowBits = 15 + 16;  // any window; a header of gzip

    z_stream stream_ = {};
    bool atEnd_ = false;  // after a member
};

class Zstandard : public Decompressor {
   public:
    Zstandard() : context_(::ZSTD_createDCtx()) {
        if (context_ == nullptr) {
            throw std::bad_alloc();
        }
    }
    ~Zstandard() override { (void)::ZSTD_freeDCtx(context_); }  // cannot fail
    Zstandard(const Zstandard&) = delete;
    Zstandard& operator=(const Zstandard&) = delete;

    std::size_t decompress(std::string_view& in, char* out, std::size_t room) override {
        if (atEnd_ && in.empty()) {
            return 0;  // the library would take it for the beginning of a frame
        }
        ZSTD_inBuffer from = {in.data(), in.size(), 0};
        ZSTD_outBuffer to = {out, room, 0};
        const std::size_t left = ::ZSTD_decompressStream(context_, &to, &from);
        if (::ZSTD_getErrorCode(left) == ZSTD_error_frameParameter_windowTooLarge) {
            throw Error(QV_NOMEM,
                        "the Zstandard data need a window of more than 128 MiB "
                        "(zstd -dc --long=31 FILE | qvejmap VERB - reads them)");
        }
        if (::ZSTD_isError(left) != 0) {
            throw std::runtime_error(::ZSTD_getErrorName(left));
        }
        atEnd_ = left == 0;
        in.remove_prefix(from.pos);
        return to.pos;
    }
    [[nodiscard]] bool atEnd() const override { return atEnd_; }
    [[nodiscard]] const char* name() const override { return "Zstandard"; }

   private:
    ZSTD_DCtx* context_;
    bool atEnd_ = false;  // after a frame
};

// Null: not compressed.
std::unique_ptr<Decompressor> decompressorFor(std::string_view start) {
    constexpr std::string_view kGzip = "\x1F\x8B";
    constexpr std::string_view kZstandard = "\x28\xB5\x2F\xFD";
    constexpr std::string_view kZstandardSkipped = "\x2A\x4D\x18";  // after 0x50 to 0x5F
    if (start.starts_with(kGzip)) {
        return std::make_unique<Gzip>();
    }
    const bool skipped = !start.empty() && (static_cast<unsigned char>(start[0]) & 0xF0) == 0x50 &&
                         start.substr(1).starts_with(kZstandardSkipped);
    if (skipped || start.starts_with(kZstandard)) {
        return std::make_unique<Zstandard>();
    }
    return nullptr;
}

}  // namespace

std::string_view Unpacker::next() {
    if (!begun_) {
        begun_ = true;
        packed_ = input_.next();
        format_ = decompressorFor(packed_);
        if (format_ == nullptr) {
            return packed_;
        }
        buffer_.resize(kPieceBytes);
    }
    if (format_ == nullptr) {
        return input_.next();
    }
    std::size_t size = 0;
    while (size < buffer_.size()) {
        const bool starved = packed_.empty();
        if (starved && size >= kTellingBytes && !isFile()) {
            break;  // it may be long until more comes
        }
        std::size_t more = 0;
        try {
            more = format_->decompress(packed_, buffer_.data() + size, buffer_.size() - size);
        } catch (const Error& error) {
            throw Error(error.status(), error.what(), name());
        } catch (const std::runtime_error& error) {
            fail("are damaged: " + std::string(error.what()));
        }
        size += more;
        if (more == 0 && starved) {
            packed_ = input_.next();
            if (packed_.empty()) {
                break;
            }
        }
    }
    if (size == 0 && !format_->atEnd()) {
        fail("end too soon");
    }
    return {buffer_.data(), size};
}

void Unpacker::fail(const std::string& what) const {
    throw Error(QV_IO_DAMAGED, std::string("the ") + format_->name() + " data " + what, name());
}

}  // namespace qvej
