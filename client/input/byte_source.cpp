// See byte_source.h.
#include "client/input/byte_source.h"

#include "client/error.h"
#include "client/input/raw_file.h"

#include <memory>
#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
constexpr std::size_t kTellingBytes = 4;  // of a byte order mark, or of a packed file

}  // namespace

ByteSource ByteSource::file(const std::string& path) {
    return of(std::make_shared<RawFile>(path));
}

ByteSource ByteSource::asItComes(const std::string& path, std::shared_ptr<const ReadingStop> stop) {
    return of(std::make_shared<RawFile>(path, std::move(stop)));
}

ByteSource ByteSource::untilStopped(const std::string& path, std::function<bool()> stopped) {
    ByteSource source = of(std::make_shared<RawFile>(path, stopped));
    source.stopWhen(std::move(stopped));
    return source;
}

ByteSource ByteSource::of(std::shared_ptr<RawFile> file) {
    const std::string name = file->name();
    const bool isRegular = file->isRegular();
    return {[file = std::move(file)] { return file->next(); }, name, isRegular};
}

ByteSource ByteSource::memory(std::string_view bytes, std::string name) {
    return {[bytes]() mutable {
                const std::string_view piece = bytes.substr(0, kPieceBytes);
                bytes.remove_prefix(piece.size());
                return piece;
            },
            std::move(name), false};
}

ByteSource ByteSource::pulled(Pull pull, std::string name, bool isFile) {
    return {std::move(pull), std::move(name), isFile};
}

std::string_view ByteSource::next() {
    const std::string_view piece = pull();
    if (std::exchange(begun_, true) || piece.size() >= kTellingBytes) {
        return piece;
    }
    start_ = piece;
    while (start_.size() < kTellingBytes && !ended_) {
        start_ += pull();
    }
    return start_;
}

// Nothing is asked for again after the end.
std::string_view ByteSource::pull() {
    if (stopped_ && stopped_()) {
        throw Error(QV_STOPPED, qvStatusText(QV_STOPPED), name_);
    }
    const std::string_view piece = ended_ ? std::string_view() : pull_();
    ended_ = piece.empty();
    return piece;
}

}  // namespace qvej
