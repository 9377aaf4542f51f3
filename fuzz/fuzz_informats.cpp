// Property: any informat on any text gives a value in its range or one of two statuses; and what
// the format of the same name writes of that value, the informat reads as the same value.  Any
// format shows any number.
//
// Input: a byte for the informat, a byte for the width, a byte for the decimals; for a pattern the
// pattern up to the first 0x00; the text.  With kFormat the text is the bytes of a number.
//
// A pattern reads back what it writes when it is unambiguous (see readsBack).
#include "fuzz_one.h"
#include "kit/document.h"
#include "kit/input.h"
#include "kit/require.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

namespace {

using namespace jmap::fuzz;

constexpr uint8_t kFormat = 0x80;
constexpr double kFirstDay = -719528;  // 0000-01-01
constexpr double kLastDay = 2932896;   // 9999-12-31
constexpr double kDaySeconds = 86400;
constexpr double kExactMax = 9007199254740992.0;

template <class Object>
struct Ender {
    void operator()(Object* object) const {
        require(object->generic.destroy(&object->generic) == QV_OK, "it ends");
    }
};
template <class Object>
using Owned = std::unique_ptr<Object, Ender<Object>>;

QVFMTh module() {
    static QVFMTh const fmt = [] {
        QVHndlp host = FuzzHost::get().handle();
        return reinterpret_cast<QVFMTh>(host->loadExtension(host, U"qvefmt", 6, host->jnl));
    }();
    return fmt;
}

// An informat or a format to open.
struct Choice {
    std::string name;
    uint64_t width;
    uint64_t decimals;
    bool numeric;
};

std::vector<QVFMTEntry> entriesOf(QVStatus (*at)(QVFMTh, QVStrSize, QVFMTEntry*)) {
    std::vector<QVFMTEntry> all;
    QVFMTEntry entry{};
    while (at(module(), static_cast<QVStrSize>(all.size()), &entry) == QV_OK) {
        all.push_back(entry);
    }
    return all;
}

// One of the catalogue, or after its end a pattern.
Choice chosen(const std::vector<QVFMTEntry>& catalogue, Input& input) {
    const std::size_t index = (input.byte() & 0x7F) % (catalogue.size() + 3);
    const uint64_t width = input.byte() % 40;
    const uint64_t decimals = input.byte() % 12;
    if (index < catalogue.size()) {
        return {catalogue[index].name, width, decimals, catalogue[index].numeric != 0};
    }
    return {"%" + std::string(input.upTo('\0')), width, decimals, true};
}

template <class Object>
Owned<Object> opened(QVStatus (*open)(QVFMTh, QVBoolean, const char*, QVStrSize, uint64_t, uint64_t,
                                      Object**),
                     const Choice& choice) {
    Object* made = nullptr;
    const QVStatus status =
        open(module(), choice.numeric ? 1 : 0, choice.name.data(),
             static_cast<QVStrSize>(choice.name.size()), choice.width, choice.decimals, &made);
    require((status == QV_OK) == (made != nullptr), "it opens, or a status says why not");
    require(status == QV_OK || status == QV_FMT_WIDTH || status == QV_FMT_PATTERN,
            "only width, decimals or pattern can be wrong");
    return Owned<Object>(made);
}

// With QV_FMT_VALUE and QV_FMT_RANGE there is a text too.
QVStatus write(QVFormat* format, double value, std::string* text) {
    const char* out = nullptr;
    QVStrSize outLen = 0;
    const QVStatus status = format->toText(format, value, &out, &outLen);
    require(status == QV_OK || status == QV_FMT_VALUE || status == QV_FMT_RANGE,
            "every number is shown");
    *text = textOf(out, outLen);
    return status;
}

std::optional<double> read(QVInformat* informat, std::string_view text) {
    const std::unique_ptr<char[]> copy(new char[text.size()]);
    text.copy(copy.get(), text.size());
    double value = std::nan("");
    const QVStatus status =
        informat->toNumber(informat, copy.get(), static_cast<QVStrSize>(text.size()), &value);
    require(status == QV_OK || status == QV_FMT_VALUE || status == QV_FMT_RANGE,
            "a text is read, or a status says why not");
    return status == QV_OK ? std::optional(value) : std::nullopt;
}

bool inRange(std::string_view name, double value) {
    const bool whole = std::trunc(value) == value;
    if (name == "date") {
        return whole && value >= kFirstDay && value <= kLastDay;
    }
    if (name == "datetime" || name.starts_with('%')) {  // a zone may lead a day further
        return value >= (kFirstDay - 1) * kDaySeconds && value <= (kLastDay + 2) * kDaySeconds;
    }
    if (name == "unix" || name == "unixms") {
        return value >= kFirstDay * kDaySeconds && value < (kLastDay + 1) * kDaySeconds;
    }
    if (name == "time") {
        return value >= 0 && value <= kDaySeconds;
    }
    if (name == "hex") {
        return whole && std::fabs(value) <= kExactMax;
    }
    if (name == "yesno") {
        return value == 0 || value == 1;
    }
    return !std::isnan(value);
}

// ---- What reads back ----------------------------------------------------------------------------

// Whether a pattern says all of the value, and each part in one way.  Its letters are separated by
// a sign that none of them writes, so nothing runs together; fractions of a second are not written.
bool readsBack(std::string_view pattern, double value) {
    constexpr std::string_view kLetters = "YmdjbBaAuGVFHIpMSTRr";
    constexpr std::string_view kSigns = ",;/.";
    const auto in = [](std::string_view set, char c) { return set.find(c) != set.npos; };
    bool date = false;
    bool hour = false;
    bool minute = false;
    bool second = false;
    for (std::size_t i = 0; i < pattern.size(); i += 3) {
        const std::string_view part = pattern.substr(i, 3);
        if (part.size() < 2 || part[0] != '%' || !in(kLetters, part[1]) ||
            (part.size() == 3 && !in(kSigns, part[2]))) {
            return false;
        }
        date = date || in("YmdjbBaAuGVF", part[1]);
        hour = hour || in("HIpTRr", part[1]);
        minute = minute || in("MTRr", part[1]);
        second = second || in("STr", part[1]);
    }
    const bool time = hour && minute && second;
    return std::trunc(value) == value && (time || !(hour || minute || second)) &&
           (date || (value >= 0 && value < kDaySeconds));
}

void checkWayBack(const Choice& choice, double value) {
    const bool pattern = choice.name.starts_with('%');
    if (pattern && !readsBack(choice.name, value)) {
        return;
    }
    Choice back = choice;
    back.width = 0;
    back.decimals = choice.name == "datetime" || choice.name == "time" ? 6 : 0;
    if (choice.name == "unix" || choice.name == "unixms") {
        back.name = "number";
    } else if (choice.name == "comma" || choice.name == "percent" || choice.name == "yesno") {
        return;  // their formats round, or there is none
    }
    const Owned<QVFormat> format = opened(module()->openFormat, back);
    require(format != nullptr, "there is a format of the same name");
    std::string text;
    if (write(format.get(), value, &text) != QV_OK || std::isinf(value)) {
        return;
    }
    back.decimals = 0;
    const Owned<QVInformat> reader = opened(module()->openInformat, back);
    if (reader == nullptr && pattern) {
        return;  // it does not say which day or time it is
    }
    require(reader != nullptr, "there is an informat of the same name");
    const std::optional<double> again = read(reader.get(), text);
    if (again != value) {
        std::fprintf(stderr, "%s wrote %.17g as %s\n", back.name.c_str(), value, text.c_str());
        std::fprintf(stderr, "it was read as %.17g\n", again.value_or(std::nan("")));
        require(false, "what a format writes its informat reads");
    }
}

// ---- The two sides ------------------------------------------------------------------------------

std::string readText(QVInformat* informat, std::string_view text) {
    const char* out = nullptr;
    QVStrSize outLen = 0;
    require(informat->toText(informat, text.data(), static_cast<QVStrSize>(text.size()), &out,
                             &outLen) == QV_OK,
            "a text informat takes every text");
    return std::string(textOf(out, outLen));
}

void checkInformat(Input& input) {
    static const std::vector<QVFMTEntry> catalogue = entriesOf(module()->informatAt);
    const Choice choice = chosen(catalogue, input);
    const Owned<QVInformat> informat = opened(module()->openInformat, choice);
    if (informat == nullptr) {
        return;
    }
    const std::string_view text = input.rest();
    if (!choice.numeric) {
        const std::string once = readText(informat.get(), text);
        if (choice.width == 0) {
            requireEqual(once, readText(informat.get(), once), "the same when it is read again");
        }
        return;
    }
    const std::optional<double> value = read(informat.get(), text);
    if (!value) {
        return;
    }
    require(inRange(choice.name, *value), "a value in the range of the informat");
    checkWayBack(choice, *value);
}

void checkFormat(Input& input) {
    static const std::vector<QVFMTEntry> catalogue = entriesOf(module()->formatAt);
    const Choice choice = chosen(catalogue, input);
    const Owned<QVFormat> format = opened(module()->openFormat, choice);
    double value = 0;
    input.rest().copy(reinterpret_cast<char*>(&value), sizeof value);
    if (format == nullptr) {
        return;
    }
    std::string text;
    const QVStatus status = write(format.get(), value, &text);
    require(text.size() >= choice.width, "a text is as wide as was asked for");
    // A fraction of a second finer than the format shows does not come back.
    const bool shownWholly = std::trunc(value) == value || !choice.name.ends_with("time");
    if (status == QV_OK && !std::isnan(value) && choice.name != "fixed" && shownWholly) {
        checkWayBack(choice, value);
    }
}

}  // namespace

int fuzzOne(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    const bool format = size > 0 && (data[0] & kFormat) != 0;
    format ? checkFormat(input) : checkInformat(input);
    return 0;
}
