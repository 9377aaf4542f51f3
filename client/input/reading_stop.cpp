// See reading_stop.h.
#include "client/input/reading_stop.h"

#include "client/error.h"

#include <poll.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace qvej {

ReadingStop::ReadingStop() : event_(::eventfd(0, EFD_CLOEXEC)) {
    if (event_ < 0) {
        throw Error(QV_NOMEM, "the system has no event to give");
    }
}

ReadingStop::~ReadingStop() {
    (void)::close(event_);  // nothing is in it
}

void ReadingStop::stop() const {
    const uint64_t one = 1;
    (void)!::write(event_, &one, sizeof one);  // fails only when it is set already
}

bool ReadingStop::waitFor(int descriptor) const {
    std::array<pollfd, 2> waited = {{{descriptor, POLLIN, 0}, {event_, POLLIN, 0}}};
    while (::poll(waited.data(), waited.size(), -1) < 0) {
        if (errno != EINTR) {
            return true;  // the reading itself says what is wrong
        }
    }
    return waited[1].revents == 0;
}

}  // namespace qvej
