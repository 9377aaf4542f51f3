// See writer.h.
#include "tools/cli/writer.h"

#include "tools/cli/escape.h"
#include "tools/cli/failure.h"

#include <cerrno>
#include <unistd.h>

namespace {

// All of it, or false with errno.
bool writeAll(int descriptor, const char* text, std::size_t size) {
    while (size != 0) {
        const ssize_t written = ::write(descriptor, text, size);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        text += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

}  // namespace

void Writer::write(const char* text, std::size_t size) const {
    if (!writeAll(descriptor_, text, size)) {
        throw fileFailure(name_);
    }
}

void Writer::flush() {
    const std::size_t size = used_;
    used_ = 0;
    write(buffer_.get(), size);
}

void Writer::appendSlowly(const char* text, std::size_t size) {
    flush();
    if (size >= kSize) {
        write(text, size);
        return;
    }
    append(text, size);
}

bool Writer::terminal() const {
    return ::isatty(descriptor_) == 1;
}

Writer standardOutput() {
    return {STDOUT_FILENO, "<stdout>"};
}

void tell(std::string_view line, std::string_view excerpt) {
    std::string text = "qvejmap: " + shown(line) + "\n";
    text += excerpt;
    (void)writeAll(STDERR_FILENO, text.data(), text.size());  // there is nowhere else to complain
}

void tellPlain(std::string_view line) {
    const std::string text = shown(line) + "\n";
    (void)writeAll(STDERR_FILENO, text.data(), text.size());
}
