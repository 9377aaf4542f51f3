// See line_sieve.h.
#include "client/line_sieve.h"

#include <algorithm>
#include <utility>

namespace qvej {

LineSieve::LineSieve(const Engine& engine, TextConsumer& takes,
                     std::function<void(const BadLine&)> onBad, uint64_t maxDepth)
    : engine_(engine), takes_(takes), onBad_(std::move(onBad)), maxDepth_(maxDepth) {
    newCheck();
}

void LineSieve::newCheck() {
    DocumentOptions options;
    options.lines = true;
    options.maxDepth = maxDepth_;
    check_ = std::make_unique<TextCheck>(engine_, options);
}

void LineSieve::feed(std::string_view text) {
    const std::size_t held = lines_.size();
    const std::size_t last = text.rfind('\n');
    lines_ += text;
    if (last == text.npos) {
        return;
    }
    const std::size_t size = held + last + 1;
    sift(size);
    takes_.feed(std::string_view(lines_).substr(0, size));
    lines_.erase(0, size);
}

// A last line without its end is checked as one with it.
void LineSieve::finish() {
    lines_ += '\n';
    sift(lines_.size());
    lines_.pop_back();
    takes_.feed(lines_);
    takes_.finish();
}

// Makes blanks of the bad ones of the lines in the first `size` bytes.  The check gets all of them
// at once, and again what follows a bad one.
void LineSieve::sift(std::size_t size) {
    for (std::size_t at = 0; at < size;) {
        const int64_t seen = check_->end().line - 1;  // whole lines
        try {
            check_->feed(std::string_view(lines_).substr(at, size - at));
            return;
        } catch (const Error& error) {
            if (error.status() == QV_NOMEM) {
                throw;
            }
            for (int64_t line = seen + 1; line < error.line(); ++line) {
                at = lines_.find('\n', at) + 1;
            }
            at = reject(at, error);
        }
    }
}

// The line at `at` is bad.  Returns where the next one begins.
std::size_t LineSieve::reject(std::size_t at, const Error& error) {
    const std::size_t end = lines_.find('\n', at);
    linesBefore_ += error.line();
    if (error.status() != QV_JSON_DEPTH) {
        const std::string_view line = std::string_view(lines_).substr(at, end - at);
        onBad_({linesBefore_, error.column(), line, error.what()});
        std::fill_n(lines_.begin() + static_cast<std::ptrdiff_t>(at), end - at, ' ');
    }
    newCheck();
    return end + 1;
}

}  // namespace qvej
