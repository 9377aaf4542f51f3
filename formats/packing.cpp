// See packing.h.
#include "formats/packing.h"

#include "client/error.h"

#include <zlib.h>
#include <zstd.h>

#include <utility>
#include <vector>

namespace qvej {

namespace {

constexpr std::size_t kRoom = std::size_t{1} << 16;  // bytes of compressed output at a time

class Gzip final : public Target {
   public:
    explicit Gzip(std::unique_ptr<Target> target) : target_(std::move(target)) {}
    ~Gzip() override {
        if (open_) {
            (void)::deflateEnd(&stream_);
        }
    }
    void write(const char* text, std::size_t size) override {
        constexpr std::size_t kMost = std::size_t{1} << 30;  // the library counts in 32 bits
        for (; size > kMost; text += kMost, size -= kMost) {
            pass(text, kMost, Z_NO_FLUSH);
        }
        pass(text, size, Z_NO_FLUSH);
    }
    // Of the library's own (zconf.h), and the room for output.
    [[nodiscard]] std::size_t held() const override {
        return open_ ? (std::size_t{1} << 18) + kRoom : 0;
    }
    void release() override {
        if (open_ || !written_) {
            pass("", 0, Z_FINISH);
            (void)::deflateEnd(&stream_);
            open_ = false;
            room_ = {};
        }
        target_->release();
    }

   private:
    void pass(const char* text, std::size_t size, int flush) {
        begin();
        stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text));  // only read
        stream_.avail_in = static_cast<uInt>(size);
        int status = Z_OK;
        do {
            stream_.next_out = reinterpret_cast<Bytef*>(room_.data());
            stream_.avail_out = static_cast<uInt>(kRoom);
            status = ::deflate(&stream_, flush);
            target_->write(room_.data(), kRoom - stream_.avail_out);
        } while (flush == Z_FINISH ? status == Z_OK : stream_.avail_out == 0);
    }
    void begin() {
        if (open_) {
            return;
        }
        constexpr int kGzip = 15 + 16;  // the largest window, with the header of gzip
        constexpr int kMemory = 8;      // the default
        stream_ = {};
        if (::deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzip, kMemory,
                           Z_DEFAULT_STRATEGY) != Z_OK) {
            throw Error(QV_NOMEM);
        }
        open_ = written_ = true;
        room_.resize(kRoom);
    }

    std::unique_ptr<Target> target_;
    z_stream stream_ = {};
    bool open_ = false;
    bool written_ = false;  // there is a member
    std::vector<char> room_;
};

class Zstd final : public Target {
   public:
    explicit Zstd(std::unique_ptr<Target> target) : target_(std::move(target)) {}

    void write(const char* text, std::size_t size) override {
        pass({text, size, 0}, ZSTD_e_continue);
    }
    [[nodiscard]] std::size_t held() const override {
        return context_ == nullptr ? 0 : ::ZSTD_sizeof_CCtx(context_.get()) + kRoom;
    }
    void release() override {
        if (context_ != nullptr || !written_) {
            pass({nullptr, 0, 0}, ZSTD_e_end);
            context_.reset();
            room_ = {};
        }
        target_->release();
    }

   private:
    struct Free {
        void operator()(ZSTD_CCtx* context) const { (void)::ZSTD_freeCCtx(context); }
    };

    void pass(ZSTD_inBuffer in, ZSTD_EndDirective how) {
        begin();
        std::size_t left = 0;
        do {
            ZSTD_outBuffer out = {room_.data(), kRoom, 0};
            left = ::ZSTD_compressStream2(context_.get(), &out, &in, how);
            if (::ZSTD_isError(left) != 0) {
                throw Error(QV_NOMEM, ::ZSTD_getErrorName(left));
            }
            target_->write(room_.data(), out.pos);
        } while (how == ZSTD_e_end ? left != 0 : in.pos != in.size);
    }
    void begin() {
        if (context_ != nullptr) {
            return;
        }
        context_.reset(::ZSTD_createCCtx());
        if (context_ == nullptr) {
            throw Error(QV_NOMEM);
        }
        (void)::ZSTD_CCtx_setParameter(context_.get(), ZSTD_c_checksumFlag, 1);
        written_ = true;
        room_.resize(kRoom);
    }

    std::unique_ptr<Target> target_;
    std::unique_ptr<ZSTD_CCtx, Free> context_;
    bool written_ = false;  // there is a frame
    std::vector<char> room_;
};

}  // namespace

std::string_view extensionOf(Packing packing) {
    return packing == Packing::GZIP ? ".gz" : packing == Packing::ZSTD ? ".zst" : "";
}

std::unique_ptr<Target> packed(std::unique_ptr<Target> target, Packing packing) {
    switch (packing) {
        case Packing::GZIP:
            return std::make_unique<Gzip>(std::move(target));
        case Packing::ZSTD:
            return std::make_unique<Zstd>(std::move(target));
        default:
            return target;
    }
}

}  // namespace qvej
