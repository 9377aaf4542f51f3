// See bad_lines.h.
#include "client/ranges/bad_lines.h"

#include "client/error.h"

namespace qvej {
namespace {

class Nothing final : public TextConsumer {
   public:
    explicit Nothing(const std::function<bool()>& stopped) : stopped_(stopped) {}
    void feed(std::string_view) override {
        if (stopped_ && stopped_()) {
            throw Error(QV_STOPPED);
        }
    }
    void finish() override {}
    [[nodiscard]] Place end() const override { return {}; }

   private:
    const std::function<bool()>& stopped_;
};

}  // namespace

void readSifted(const Engine& engine, const TextRange& range, const TextPiece& piece,
                uint64_t maxDepth, TextConsumer& takes, const OnBadLine& onBad) {
    const int64_t before = piece.line == 0 ? 0 : piece.line - 1;
    LineSieve sieve(
        engine, takes,
        [&](const BadLine& bad) {
            onBad({before + bad.line, bad.column, bad.text, bad.reason});
        },
        maxDepth);
    readPiece(range, piece, [&](std::string_view bytes, bool) { sieve.feed(bytes); });
    sieve.finish();
}

void eachBadLine(const Engine& engine, const TextRange& range, const TextOptions& options,
                 uint64_t maxDepth, const std::function<bool()>& stopped, const OnBadLine& onBad) {
    Nothing nothing(stopped);
    if (!range.whole()) {
        const TextRange lines = withWholeLines(range);
        if (lines.form == TextForm::LINES) {
            readSifted(engine, lines, lines.pieces.front(), maxDepth, nothing, onBad);
        }
        return;
    }
    TextOptions text = options;
    text.late = true;
    DocumentReader reader(wholeFile(range.file, range.readAt, stopped), text);
    if (reader.form() == TextForm::LINES) {
        LineSieve sieve(engine, nothing, onBad, maxDepth);
        reader.read(sieve);
    }
}

}  // namespace qvej
