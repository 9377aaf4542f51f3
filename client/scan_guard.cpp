// See scan_guard.h.
#include "client/scan_guard.h"

#include "client/text.h"

#include <sys/statvfs.h>
#include <utility>

namespace qvej {
namespace {

constexpr uint64_t kReservedPart = 16;  // of the disk: what other programs keep

// What a routine returns, or throws.
template <class Routine>
QVStatus statusOf(const Routine& routine) noexcept {
    try {
        return routine();
    } catch (const Error& error) {
        return error.status();
    } catch (...) {
        return QV_NOMEM;
    }
}

}  // namespace

std::optional<uint64_t> freeDiskOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    struct statvfs found = {};
    if (::statvfs(directory.c_str(), &found) != 0) {
        return std::nullopt;
    }
    return static_cast<uint64_t>(found.f_bavail) * found.f_frsize;
}

ScanGuard::ScanGuard(uint64_t maxPaths, uint64_t leastMemory, Surroundings surroundings)
    : maxPaths_(maxPaths), leastMemory_(leastMemory), surroundings_(std::move(surroundings)) {}

QVStatus ScanGuard::check(const JMAPGrowth& growth) noexcept {
    return statusOf([&] { return look(growth); });
}

QVStatus ScanGuard::available(uint64_t& bytes) noexcept {
    return statusOf([&] {
        bytes = surroundings_.availableMemory();
        return QVStatus{QV_OK};
    });
}

QVStatus ScanGuard::look(const JMAPGrowth& growth) {
    if (maxPaths_ != 0 && growth.paths > maxPaths_) {
        return fail(QV_LIMIT_PATHS, "more than " + withCommas(maxPaths_) + " distinct paths");
    }
    if (growth.spilledBytes != 0 && lookAtDisk(growth.spilledBytes) != QV_OK) {
        return failure_->status();
    }
    return lookAtMemory(growth.tables != 0 ? withCommas(growth.tables) + " tables so far"
                                           : withCommas(growth.paths) + " distinct paths so far");
}

void ScanGuard::checkMemory(const std::string& what, uint64_t more) {
    if (lookAtMemory(what, more) != QV_OK) {
        throw Error(*failure_);
    }
}

QVStatus ScanGuard::lookAtMemory(const std::string& what, uint64_t more) {
    if (surroundings_.stopped && surroundings_.stopped()) {
        return fail(QV_STOPPED, qvStatusText(QV_STOPPED));
    }
    const uint64_t available = surroundings_.availableMemory();
    if (available >= leastMemory_ + more && available != 0) {
        return QV_OK;
    }
    return fail(QV_LIMIT_MEMORY,
                "more memory is needed than may be used, even without the records, for " + what);
}

QVStatus ScanGuard::lookAtDisk(uint64_t spilled) {
    const std::optional<uint64_t> free = surroundings_.freeDisk();
    if (!free) {
        return QV_OK;  // a write fails when the disk is full
    }
    if (!leastDisk_) {
        leastDisk_ = (*free + spilled) / kReservedPart;
    }
    return *free >= *leastDisk_
               ? QV_OK
               : fail(QV_LIMIT_DISK, "the records would fill the disk: " + withCommas(spilled) +
                                         " bytes so far, " + withCommas(*free) + " bytes free");
}

QVStatus ScanGuard::fail(QVStatus status, const std::string& sentence) {
    failure_.emplace(status, sentence);
    return status;
}

}  // namespace qvej
