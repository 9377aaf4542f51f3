// See value_walk.h.
#include "client/find/value_walk.h"

#include <utility>

namespace qvej {

// A callback.  No exception passes the parser: it is thrown again when that has returned.
template <auto Routine, class... Args>
QVStatus ValueWalk::guarded(JSNParseCB* cb, Args... args) noexcept {
    auto& self = *static_cast<ValueWalk*>(cb);
    try {
        return (self.*Routine)(args...);
    } catch (...) {
        self.failure_ = std::current_exception();
        return QV_INTERNAL;
    }
}

ValueWalk::ValueWalk(const Engine& engine, const DocumentOptions& options,
                     const std::vector<PathPattern>& patterns, const ValueTest& test,
                     Handler handler)
    : JSNParseCB{},
      matcher_(patterns),
      matched_(!patterns.empty()),
      test_(test),
      handler_(std::move(handler)),
      node_(matcher_.root()),
      parser_(engine, *this, options) {
    using Walk = ValueWalk;
    objectStart = [](JSNParseCB* cb) { return guarded<&Walk::open>(cb, std::string_view("{")); };
    arrayStart = [](JSNParseCB* cb) { return guarded<&Walk::open>(cb, std::string_view("[")); };
    objectEnd = arrayEnd = guarded<&Walk::close>;
    nullx = [](JSNParseCB* cb) { return guarded<&Walk::scalar>(cb, std::string_view("null")); };
    booleanVal = [](JSNParseCB* cb, QVBoolean value) {
        return guarded<&Walk::scalar>(cb, std::string_view(value != 0 ? "true" : "false"));
    };
    number = [](JSNParseCB* cb, const char* text, QVStrSize textLen, int32_t) {
        return guarded<&Walk::scalar>(cb,
                                      std::string_view(text, static_cast<std::size_t>(textLen)));
    };
    JSNParseCB::string = guarded<&Walk::string, const JSNChar*, QVStrSize, int32_t>;
}

void ValueWalk::feed(std::string_view text) {
    try {
        parser_.feed(text);
    } catch (const Error&) {
        rethrow();
        throw;
    }
}

void ValueWalk::finish() {
    try {
        parser_.finish();
    } catch (const Error&) {
        rethrow();
        throw;
    }
}

void ValueWalk::rethrow() {
    if (failure_) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}

QVStatus ValueWalk::open(std::string_view bracket) {
    if (matched_ && test_.any() && wanted()) {
        found(bracket);
    }
    levels_.push_back({path_.size(), node_});
    return QV_OK;
}

QVStatus ValueWalk::close() {
    levels_.pop_back();
    if (!levels_.empty()) {
        path_.resize(levels_.back().pathSize);
        node_ = levels_.back().node;
    }
    return QV_OK;
}

QVStatus ValueWalk::name(std::string_view text) {
    path_.resize(levels_.back().pathSize);
    path_ += '/';
    path_ += text;
    if (matched_) {
        node_ = matcher_.child(levels_.back().node, text);
    }
    return QV_OK;
}

QVStatus ValueWalk::scalar(std::string_view text) {
    if (levels_.empty()) {
        return JMAP_INCOMPLETE;
    }
    if (wanted() && test_.passes(text)) {
        found(text);
    }
    return QV_OK;
}

QVStatus ValueWalk::string(const JSNChar* text, QVStrSize textLen, int32_t flags) {
    const std::string_view string(reinterpret_cast<const char*>(text),
                                  static_cast<std::size_t>(textLen));
    return flags == JSN_MEMBERNAME ? name(string) : scalar(string);
}

void ValueWalk::found(std::string_view text) {
    handler_({parser_.spot(), path_, text});
}

}  // namespace qvej
