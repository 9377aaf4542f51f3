// How far a long run has come, on standard error: a line that is drawn again and again on a
// terminal, or lines of JSON for a program.
//
// Tested by tests/tool/progress_test.cpp
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace qvej::cli {

enum class ProgressForm : uint8_t { NONE, LINE, JSON };

// The input is read, perhaps several times, and then rows.  On any thread.
class Progress {
   public:
    enum Phase : uint8_t {
        FILES,  // is each file well formed?
        SHAPE,  // of the document
        SCAN,   // of its values
        TYPES,  // of its rows
        ROWS    // are written
    };
    using Clock = std::function<double()>;  // in seconds
    using Out = std::function<void(std::string_view)>;

    // `total`: bytes of the input as it is stored, when they are known.
    Progress(ProgressForm form, std::optional<uint64_t> total, Clock clock = steadyClock(),
             Out out = standardError());
    ~Progress() { erase(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // What is done from now on; at first it is SCAN.
    void begin(Phase phase);

    // Further bytes of the input have been read, by one of the first three.
    void addBytes(uint64_t bytes);
    // Further rows have been read, by one of the last two.
    void addRows(uint64_t rows);

    // Takes the line away, if there is one.
    void erase();

    // Takes away the line of whatever is in progress: something else is to be written.
    static void eraseAny();

    static Clock steadyClock();
    static Out standardError();

   private:
    void eraseLine();
    void showWhenDue();
    [[nodiscard]] std::string line(double now) const;
    [[nodiscard]] std::string bytesText(double now) const;
    [[nodiscard]] std::string rowsText(double now) const;
    [[nodiscard]] std::string json(double now) const;

    ProgressForm form_;
    std::optional<uint64_t> total_;
    Clock clock_;
    Out out_;
    Phase phase_ = SCAN;
    uint64_t bytes_ = 0;  // of the phase, or of the last one that read any
    uint64_t rows_ = 0;   // of the phase
    double begun_;
    double phaseBegun_;
    double due_;
    bool shown_ = false;  // a line is there
};

}  // namespace qvej::cli
