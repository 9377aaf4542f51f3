// See input.h.
#include "tools/cli/input.h"

#include "tools/cli/failure.h"

#include <unicode/ucnv.h>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
}

Input::Input(const std::string& file)
    : descriptor_(file == "-" ? STDIN_FILENO
                              : ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)),
      name_(file == "-" ? "<stdin>" : file),
      buffer_(kPieceBytes) {
    if (descriptor_ < 0) {
        throw fileFailure(name_);
    }
    (void)::posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL);  // only advice
}

Input::~Input() {
    if (descriptor_ != STDIN_FILENO) {
        (void)::close(descriptor_);  // only read from
    }
}

std::string_view Input::next() {
    for (;;) {
        const ssize_t size = ::read(descriptor_, buffer_.data(), buffer_.size());
        if (size >= 0) {
            return {buffer_.data(), static_cast<std::size_t>(size)};
        }
        if (errno != EINTR) {
            throw fileFailure(name_);
        }
    }
}

struct Converter::State {
    UConverter* from = nullptr;
    UConverter* to = nullptr;
    UChar pivot[4096];
    UChar* pivotSource = pivot;
    UChar* pivotTarget = pivot;
    std::string out;

    ~State() {
        ucnv_close(from);
        ucnv_close(to);
    }
};

Converter::Converter(const std::string& encoding) : state_(new State) {
    UErrorCode status = U_ZERO_ERROR;
    if (!encoding.empty()) {  // an empty name would mean the locale's encoding
        state_->from = ucnv_open(encoding.c_str(), &status);
    }
    if (U_FAILURE(status) || state_->from == nullptr) {
        throw Failure(WRONG_USAGE, "--encoding: no encoding is named '" + encoding + "'");
    }
    state_->to = ucnv_open("UTF-8", &status);
    ucnv_setToUCallBack(state_->from, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(state_->to, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status);
    if (U_FAILURE(status)) {
        throw Failure(LIMIT_REACHED, "the converter could not be made");
    }
}

Converter::~Converter() = default;

Converter::Piece Converter::convert(std::string_view input) {
    State& s = *state_;
    s.out.resize(input.size() * 4 + 64);  // no encoding gives more than 4 bytes of UTF-8 for one
    char* target = s.out.data();
    const char* source = input.data();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_convertEx(s.to, s.from, &target, target + s.out.size(), &source, source + input.size(),
                   s.pivot, &s.pivotSource, &s.pivotTarget, s.pivot + 4096, 0,
                   input.empty() ? 1 : 0, &status);
    if (U_FAILURE(status)) {
        // What was converted before the mistake may still wait between the two converters.
        UErrorCode flushed = U_ZERO_ERROR;
        const UChar* waiting = s.pivotSource;
        ucnv_fromUnicode(s.to, &target, s.out.data() + s.out.size(), &waiting, s.pivotTarget,
                         nullptr, 1, &flushed);
    }
    const auto size = static_cast<std::size_t>(target - s.out.data());
    return {{s.out.data(), size}, U_FAILURE(status) != 0};
}
