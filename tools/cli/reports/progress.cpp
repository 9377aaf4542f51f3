// See progress.h.
#include "tools/cli/reports/progress.h"

#include "client/text.h"
#include "formats/writer.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <unistd.h>
#include <utility>

namespace qvej::cli {

namespace {

constexpr double kFirst = 1.0;  // seconds
constexpr double kBetweenLines = 0.1;
constexpr double kBetweenJson = 1.0;
struct PhaseWords {
    std::string_view name;   // in JSON
    std::string_view start;  // of the line
};
constexpr std::array<PhaseWords, 5> kPhases = {{{"files", "checking files, "},
                                                {"shape", "finding the shape, "},
                                                {"scan", ""},
                                                {"types", "finding types, "},
                                                {"rows", ""}}};
constexpr std::string_view kErase = "\r\033[K";

std::mutex drawing;           // for all of them: there is one terminal
Progress* current = nullptr;  // the one with a line on it, if any

template <class... Args>
std::string formatted(const char* format, Args... args) {
    std::array<char, 64> text;
    const int size = std::snprintf(text.data(), text.size(), format, args...);
    return {text.data(), static_cast<std::size_t>(size)};
}

// "12.3 MB"
std::string sizeText(double bytes) {
    static constexpr std::array<const char*, 5> kUnits = {"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 < kUnits.size(); ++unit) {
        bytes /= 1000;
    }
    return formatted(unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
}

// "5 s", "2:05", "1:02:05"
std::string timeText(double seconds) {
    const auto all = static_cast<long long>(seconds + 0.5);
    if (all < 60) {
        return formatted("%lld s", all);
    }
    return all < 3600 ? formatted("%lld:%02lld", all / 60, all % 60)
                      : formatted("%lld:%02lld:%02lld", all / 3600, all / 60 % 60, all % 60);
}

}  // namespace

Progress::Progress(ProgressForm form, std::optional<uint64_t> total, Clock clock, Out out)
    : form_(form),
      total_(total),
      clock_(std::move(clock)),
      out_(std::move(out)),
      begun_(form == ProgressForm::NONE ? 0 : clock_()),
      phaseBegun_(begun_),
      due_(begun_ + kFirst) {}

Progress::Clock Progress::steadyClock() {
    return [] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
            .count();
    };
}

Progress::Out Progress::standardError() {
    return [](std::string_view text) {
        (void)writeAll(STDERR_FILENO, text.data(), text.size());  // progress may be lost
    };
}

void Progress::begin(Phase phase) {
    const std::lock_guard lock(drawing);
    phase_ = phase;
    phaseBegun_ = form_ == ProgressForm::NONE ? 0 : clock_();
    bytes_ = phase < TYPES ? 0 : bytes_;
    rows_ = 0;
}

void Progress::addBytes(uint64_t bytes) {
    const std::lock_guard lock(drawing);
    bytes_ += bytes;
    showWhenDue();
}

void Progress::addRows(uint64_t rows) {
    const std::lock_guard lock(drawing);
    rows_ += rows;
    showWhenDue();
}

void Progress::showWhenDue() {
    if (form_ == ProgressForm::NONE) {
        return;
    }
    const double now = clock_();
    if (now < due_) {
        return;
    }
    if (form_ == ProgressForm::JSON) {
        due_ = now + kBetweenJson;
        out_(json(now) + "\n");
        return;
    }
    due_ = now + kBetweenLines;
    shown_ = true;
    current = this;
    out_(std::string(kErase) + line(now));
}

void Progress::erase() {
    const std::lock_guard lock(drawing);
    eraseLine();
}

void Progress::eraseLine() {
    if (shown_) {
        out_(kErase);
        shown_ = false;
        current = nullptr;
    }
}

void Progress::eraseAny() {
    const std::lock_guard lock(drawing);
    if (current != nullptr) {
        current->eraseLine();
    }
}

std::string Progress::line(double now) const {
    const std::string start = "qvejmap: " + std::string(kPhases[phase_].start);
    return start + (phase_ < TYPES ? bytesText(now) : rowsText(now));
}

std::string Progress::rowsText(double now) const {
    const double seconds = now - phaseBegun_;
    const std::string text = withCommas(rows_) + " rows";
    if (seconds <= 0) {
        return text;
    }
    const double rate = static_cast<double>(rows_) / seconds;
    return text + ", " + withCommas(static_cast<uint64_t>(rate)) + " rows/s";
}

std::string Progress::bytesText(double now) const {
    const auto bytes = static_cast<double>(bytes_);
    const double seconds = now - phaseBegun_;
    std::string text = sizeText(bytes);
    if (total_ && *total_ != 0) {
        text += " of " + sizeText(static_cast<double>(*total_)) +
                formatted(" (%.0f%%)", 100 * bytes / static_cast<double>(*total_));
    }
    if (seconds <= 0) {
        return text;
    }
    const double rate = bytes / seconds;
    text += ", " + sizeText(rate) + "/s";
    if (total_ && bytes_ != 0 && *total_ > bytes_) {
        text += ", " + timeText(static_cast<double>(*total_ - bytes_) / rate) + " left";
    }
    return text;
}

std::string Progress::json(double now) const {
    return R"({"phase":")" + std::string(kPhases[phase_].name) + R"(","bytes":)" +
           std::to_string(bytes_) + R"(,"total":)" + (total_ ? std::to_string(*total_) : "null") +
           R"(,"rows":)" + std::to_string(rows_) + formatted(R"(,"seconds":%.1f})", now - begun_);
}

}  // namespace qvej::cli
