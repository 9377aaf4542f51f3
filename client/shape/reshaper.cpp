// See reshaper.h.
#include "client/shape/reshaper.h"

#include "client/error.h"

#include <algorithm>
#include <new>
#include <utility>

namespace qvej {
namespace {

// The status of an event; the engine's ends the parse.
template <class Routine>
QVStatus guarded(Routine routine) noexcept {
    try {
        routine();
        return QV_OK;
    } catch (const Error& error) {
        return error.status();
    } catch (const std::bad_alloc&) {
        return QV_NOMEM;
    }
}

const JSNChar* bytesOf(std::string_view text) {
    return reinterpret_cast<const JSNChar*>(text.data());
}

std::string_view viewOf(const JSNChar* text, QVStrSize textLen) {
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(textLen)};
}

}  // namespace

// ---- Both tables --------------------------------------------------------------------------------

Reshaper::Reshaper(QVHndlp host, const JSNParserParms& parms, const Shape& shape,
                   std::unique_ptr<TextRelay> relay)
    : JSNParser{},
      JSNParseCB{},
      plans_(shape),
      engine_(parms.callbacks),
      json_(reinterpret_cast<QVJSONh>(host->loadExtension(host, U"qvejson", 7, host->jnl))) {
    if (parms.textCei != U_UTF8_CE) {
        throw Error(QV_UNSUPPORTED, "a shape takes a text in UTF-8");
    }
    JSNParserParms own = parms;
    own.callbacks = this;
    if (relay) {
        relay->setCallbacks(*this);
        parser_.reset(relay.release()->parser());
    } else {
        parser_.reset(json_ ? json_->createParser(json_.get(), &own) : nullptr);
    }
    if (!parser_) {
        throw Error(QV_NOMEM);
    }

    generic.destroy = &destroyReshaper;
    JSNParser::parse = &parseText;
    JSNParser::line = [](JSNParserh self) { return of(self).eventPlaceOr(&EventPlace::line); };
    JSNParser::column = [](JSNParserh self) {
        const JSNParserh parser = of(self).parser_.get();
        return parser->column(parser);
    };
    JSNParser::eventColumn = [](JSNParserh self) {
        return of(self).eventPlaceOr(&EventPlace::column);
    };
    JSNParser::setRules = [](JSNParserh self, const JSNTextRules* rules) {
        const JSNParserh parser = of(self).parser_.get();
        parser->setRules(parser, rules);
    };
    JSNParser::offset = [](JSNParserh self) {
        const JSNParserh parser = of(self).parser_.get();
        return parser->offset(parser);
    };
    JSNParser::eventOffset = [](JSNParserh self) {
        return of(self).eventPlaceOr(&EventPlace::offset);
    };

    setState(State::SHAPING);
}

QVStatus Reshaper::parseText(JSNParserh self, const void* buf, QVStrSize bufLen, QVBoolean done) {
    const JSNParserh parser = of(self).parser_.get();
    return parser->parse(parser, buf, bufLen, done);
}

QVStatus Reshaper::destroyReshaper(QVGeneric* self) {
    delete &of(reinterpret_cast<JSNParserh>(self));  // the table begins with it
    return QV_OK;
}

Reshaper::EventPlace Reshaper::eventPlace() const {
    const JSNParserh parser = parser_.get();
    return {parser->line(parser), parser->eventColumn(parser), parser->eventOffset(parser)};
}

int64_t Reshaper::eventPlaceOr(int64_t EventPlace::*part) const {
    const JSNParserh parser = parser_.get();
    if (place_ != nullptr) {
        return place_->*part;
    }
    return part == &EventPlace::line     ? parser->line(parser)
           : part == &EventPlace::column ? parser->eventColumn(parser)
                                         : parser->eventOffset(parser);
}

// ---- Events of the parser -----------------------------------------------------------------------

// Where nothing can match, each event costs a call more, so these do as little as they can.
void Reshaper::setState(State state) {
    static constexpr JSNParseCB kPassing = {
        [](JSNParseCB* cb) {
            Reshaper& r = of(cb);
            ++r.depth_;
            return r.engine_->arrayStart(r.engine_);
        },
        [](JSNParseCB* cb) {
            Reshaper& r = of(cb);
            return --r.depth_ == 0 ? r.endPassing() : r.engine_->arrayEnd(r.engine_);
        },
        [](JSNParseCB* cb) {
            Reshaper& r = of(cb);
            ++r.depth_;
            return r.engine_->objectStart(r.engine_);
        },
        [](JSNParseCB* cb) {
            Reshaper& r = of(cb);
            return --r.depth_ == 0 ? r.endPassing() : r.engine_->objectEnd(r.engine_);
        },
        [](JSNParseCB* cb) {
            Reshaper& r = of(cb);
            ++r.counts_.values;
            return r.engine_->nullx(r.engine_);
        },
        [](JSNParseCB* cb, QVBoolean value) {
            Reshaper& r = of(cb);
            ++r.counts_.values;
            return r.engine_->booleanVal(r.engine_, value);
        },
        [](JSNParseCB* cb, const char* text, QVStrSize textLen, int32_t flags) {
            Reshaper& r = of(cb);
            ++r.counts_.values;
            return r.engine_->number(r.engine_, text, textLen, flags);
        },
        [](JSNParseCB* cb, const JSNChar* text, QVStrSize textLen, int32_t flags) {
            Reshaper& r = of(cb);
            r.counts_.values += flags == JSN_MEMBERNAME ? 0 : 1;
            return r.engine_->string(r.engine_, text, textLen, flags);
        },
    };
    static constexpr JSNParseCB kOther = {
        &containerStart<true>, &containerEnd<true>, &containerStart<false>,
        &containerEnd<false>,  &nullValue,          &booleanValue,
        &numberValue,          &stringEvent,
    };
    state_ = state;
    if (state != State::SHAPING) {
        direct_ = false;
        object_ = nullptr;
    }
    static_cast<JSNParseCB&>(*this) = state == State::PASSING ? kPassing : kOther;
}

QVStatus Reshaper::endPassing() {
    setState(State::SHAPING);
    return guarded([&] { close(); });
}

template <bool kArray>
QVStatus Reshaper::containerStart(JSNParseCB* cb) {
    Reshaper& r = of(cb);
    return guarded([&] {
        if (r.state_ == State::SHAPING) {
            r.open(kArray);
            return;
        }
        ++r.depth_;
        if (r.state_ == State::WRITING) {
            r.text_.open(kArray);
        }
    });
}

template <bool kArray>
QVStatus Reshaper::containerEnd(JSNParseCB* cb) {
    Reshaper& r = of(cb);
    return guarded([&] {
        if (r.state_ == State::SHAPING) {
            r.close();
            return;
        }
        const bool writes = r.state_ == State::WRITING;
        if (writes) {
            r.text_.close(kArray);
        }
        if (--r.depth_ != 0) {
            return;
        }
        r.setState(State::SHAPING);
        if (writes) {
            ++r.counts_.texts;
            r.put(r.roleOfNext(), [&] { r.emitString(r.text_.view(), r.textPlace_); });
        }
        r.settle();
    });
}

// A scalar that does not go straight to the engine: `emit` gives it to the engine, `write` to the
// text in the making.  Such calls are not inlined, so that those before them stay small.
template <class Emit, class Write>
QVStatus Reshaper::otherValue(Emit emit, Write write) {
    return guarded([&] {
        if (state_ == State::SKIPPING) {
            ++counts_.leftOut;
            return;
        }
        if (state_ == State::WRITING) {
            ++counts_.inTexts;
            write();
            return;
        }
        const Role role = roleOfNext();
        if (leavesOut(role, false)) {
            ++counts_.leftOut;
        } else {
            put(role, [&] { check(emit()); });
        }
    });
}

[[gnu::noinline]] QVStatus Reshaper::otherNull() {
    return otherValue([&] { return engine_->nullx(engine_); }, [&] { text_.word("null"); });
}

[[gnu::noinline]] QVStatus Reshaper::otherBoolean(QVBoolean value) {
    return otherValue([&] { return engine_->booleanVal(engine_, value); },
                      [&] { text_.word(value != 0 ? "true" : "false"); });
}

[[gnu::noinline]] QVStatus Reshaper::otherNumber(const char* text, QVStrSize textLen,
                                                 int32_t flags) {
    return otherValue([&] { return engine_->number(engine_, text, textLen, flags); },
                      [&] {
                          text_.word({text, static_cast<std::size_t>(textLen)});
                      });
}

[[gnu::noinline]] QVStatus Reshaper::otherString(const JSNChar* text, QVStrSize textLen,
                                                 int32_t flags) {
    const std::string_view token = viewOf(text, textLen);
    return flags == JSN_MEMBERNAME
               ? otherName(token)
               : otherValue([&] { return engine_->string(engine_, text, textLen, flags); },
                            [&] { text_.string(token); });
}

QVStatus Reshaper::nullValue(JSNParseCB* cb) {
    Reshaper& r = of(cb);
    ++r.counts_.values;
    return r.direct_ ? r.engine_->nullx(r.engine_) : r.otherNull();
}

QVStatus Reshaper::booleanValue(JSNParseCB* cb, QVBoolean value) {
    Reshaper& r = of(cb);
    ++r.counts_.values;
    return r.direct_ ? r.engine_->booleanVal(r.engine_, value) : r.otherBoolean(value);
}

QVStatus Reshaper::numberValue(JSNParseCB* cb, const char* text, QVStrSize textLen, int32_t flags) {
    Reshaper& r = of(cb);
    ++r.counts_.values;
    return r.direct_ ? r.engine_->number(r.engine_, text, textLen, flags)
                     : r.otherNumber(text, textLen, flags);
}

QVStatus Reshaper::stringEvent(JSNParseCB* cb, const JSNChar* text, QVStrSize textLen,
                               int32_t flags) {
    Reshaper& r = of(cb);
    if (flags == JSN_MEMBERNAME) {
        r.direct_ = r.sendsName(viewOf(text, textLen));
    } else {
        ++r.counts_.values;
    }
    return r.direct_ ? r.engine_->string(r.engine_, text, textLen, flags)
                     : r.otherString(text, textLen, flags);
}

// Is it known that no rule concerns the member?  Then its name may go to the engine.
bool Reshaper::sendsName(std::string_view name) noexcept {
    const bool known =
        object_ != nullptr && object_->others != nullptr && !PathMatcher::names(object_->at, name);
    next_ = known ? object_->others : nullptr;
    direct_ = known && next_->plain;
    return direct_;
}

// Any other name.
QVStatus Reshaper::otherName(std::string_view name) {
    return guarded([&] {
        if (state_ == State::WRITING) {
            text_.name(name);
        }
        if (state_ != State::SHAPING) {
            return;
        }
        const Frame& object = frames_.back();
        next_ = &plans_.child(*object.plan, name);
        direct_ = object.simple && next_->plain;
        if (direct_) {
            emitName(name);
            return;
        }
        name_ = name;
        if (object.form == Form::ENTRIES || object.form == Form::MIXED) {
            namePlace_ = eventPlace();
        }
    });
}

// After the beginning or the end of a container: what is known of what comes next.
void Reshaper::settle() {
    const bool simple = !frames_.empty() && frames_.back().simple;
    direct_ = simple && frames_.back().form == Form::ARRAY;
    object_ = simple && frames_.back().form == Form::OBJECT ? frames_.back().plan : nullptr;
}

// ---- Rules --------------------------------------------------------------------------------------

Reshaper::Role Reshaper::roleOfNext() const {
    if (frames_.empty()) {
        return Role::ROOT;
    }
    const Frame& around = frames_.back();
    switch (around.form) {
        case Form::ARRAY:
        case Form::ROWS:
            return Role::ELEMENT;
        case Form::ENTRIES:
            return Role::ENTRY;
        case Form::MIXED: {
            const std::vector<std::string>& except = around.plan->rule->except;
            return std::find(except.begin(), except.end(), name_) != except.end() ? Role::MEMBER
                                                                                  : Role::ENTRY;
        }
        default:
            return Role::MEMBER;
    }
}

const ShapePlans::Plan& Reshaper::planOfNext(Role role) const {
    return role == Role::ROOT      ? plans_.root()
           : role == Role::ELEMENT ? *frames_.back().plan
                                   : *next_;
}

bool Reshaper::leavesOut(Role role, bool container) const {
    const Plan& plan = planOfNext(role);
    if (role == Role::ROOT) {
        return false;
    }
    if (role != Role::ELEMENT && plan.rule != nullptr && plan.rule->kind == ShapeRule::DROP) {
        return true;
    }
    return !plan.inside && !(plan.above && container);
}

Reshaper::Form Reshaper::formOf(Role role, bool array) const {
    if (role == Role::ELEMENT) {  // it has no rule of its own
        return !array ? Form::OBJECT : frames_.back().form == Form::ROWS ? Form::ROWS : Form::ARRAY;
    }
    const ShapeRule* rule = planOfNext(role).rule;
    const bool rows = rule != nullptr && rule->kind == ShapeRule::ROWS;
    if (array) {
        return rows ? Form::ROWS : Form::ARRAY;
    }
    if (rows) {
        return rule->except.empty() ? Form::ENTRIES : Form::MIXED;
    }
    return rule != nullptr && rule->kind == ShapeRule::INLINE && role == Role::MEMBER
               ? Form::INLINED
               : Form::OBJECT;
}

// A container that no rule concerns.
void Reshaper::openDirect(bool array) {
    const Plan* plan = object_ != nullptr ? next_ : frames_.back().plan;
    emitOpen(array);
    const std::size_t end = prefixes_.size();
    frames_.push_back({plan, array ? Form::ARRAY : Form::OBJECT, false, false, true, end, end});
    settle();
    if (plan->quiet) {
        setState(State::PASSING);
        depth_ = 1;
    }
}

void Reshaper::open(bool array) {
    if (direct_) {
        openDirect(array);
        return;
    }
    const Role role = roleOfNext();
    if (leavesOut(role, true)) {
        setState(State::SKIPPING);
        depth_ = 1;
        return;
    }
    const Plan& plan = planOfNext(role);
    if (role != Role::ELEMENT && plan.rule != nullptr && plan.rule->kind == ShapeRule::TEXT) {
        setState(State::WRITING);
        depth_ = 1;
        textPlace_ = eventPlace();
        text_.clear();
        text_.open(array);
        return;
    }
    Frame frame = {&plan, formOf(role, array), false, false, false, 0, 0};
    frame.wrapped = openAs(role, frame.form);
    frame.around = prefixes_.size();
    frame.prefix = frame.around;
    if (frame.form == Form::INLINED) {
        frame.prefix = frames_.back().prefix;
        prefixes_.append(name_).append(1, '_');
    }
    const bool stays = frame.form == Form::OBJECT || frame.form == Form::ARRAY;
    frame.simple = stays && !plans_.dropsEmpty() && (plan.inside || frame.form == Form::OBJECT);
    frames_.push_back(frame);
    settle();
    if (frame.simple && plan.quiet) {
        setState(State::PASSING);
        depth_ = 1;
    }
}

// Opens a container of that form.  Returns whether an object was made around it, which ends with
// it.
bool Reshaper::openAs(Role role, Form form) {
    const bool array = form != Form::OBJECT && form != Form::MIXED;  // what the engine sees
    switch (role) {
        case Role::ROOT:
            emitOpen(array);
            return false;
        case Role::ELEMENT:
            if (form == Form::ROWS) {
                emitOpen(false);
                emitMemberOpen(Shape::kValue, true);
                return true;
            }
            emitOpen(array);
            return false;
        case Role::MEMBER:
            beginMember();
            if (form != Form::INLINED) {
                emitMemberOpen(memberName(), array);
            }
            return false;
        default:
            beginEntry();
            if (array) {
                emitMemberOpen(Shape::kValue, true);
            }
            return array;
    }
}

void Reshaper::close() {
    Frame frame = frames_.back();
    frames_.pop_back();
    endRun(frame);
    if (frame.form != Form::INLINED) {
        emitClose(frame.form != Form::OBJECT && frame.form != Form::MIXED);
    }
    if (frame.wrapped) {
        emitClose(false);
    }
    prefixes_.resize(frame.around);
    settle();
}

// Puts a scalar, or what takes its place, where it belongs.
template <class Emit>
void Reshaper::put(Role role, Emit emit) {
    switch (role) {
        case Role::ROOT:
            emit();
            break;
        case Role::ELEMENT:
            if (frames_.back().form == Form::ROWS) {
                emitOpen(false);
                emitName(Shape::kValue);
                emit();
                emitClose(false);
            } else {
                content();
                emit();
            }
            break;
        case Role::MEMBER:
            beginMember();
            emitName(memberName());
            emit();
            break;
        case Role::ENTRY:
            beginEntry();
            emitName(Shape::kValue);
            emit();
            emitClose(false);
            break;
    }
}

// The name of the member that comes, with what `inline` puts before it.
std::string_view Reshaper::memberName() {
    made_.assign(prefixes_, frames_.back().prefix).append(name_);
    return made_;
}

void Reshaper::beginMember() {
    endRun(frames_.back());
}

// Begins the object of an entry: {KEY: name, ...
void Reshaper::beginEntry() {
    Frame& object = frames_.back();
    if (object.form == Form::MIXED && !object.inRun) {
        emitName(Shape::kRows);
        emitOpen(true);
        object.inRun = true;
    }
    emitOpen(false);
    emitName(object.plan->rule->key);
    emitString(name_, namePlace_);
    ++counts_.names;
}

void Reshaper::endRun(Frame& frame) {
    if (frame.inRun) {
        frame.inRun = false;
        emitClose(true);
    }
}

// ---- Events for the engine ----------------------------------------------------------------------

// Something comes that is no empty container: what waits for it begins now.
void Reshaper::content() {
    for (const Waiting& member : waiting_) {
        check(engine_->string(engine_, bytesOf(member.name),
                              static_cast<QVStrSize>(member.name.size()), JSN_MEMBERNAME));
        check(member.array ? engine_->arrayStart(engine_) : engine_->objectStart(engine_));
    }
    waiting_.clear();
}

void Reshaper::emitName(std::string_view name) {
    content();
    check(engine_->string(engine_, bytesOf(name), static_cast<QVStrSize>(name.size()),
                          JSN_MEMBERNAME));
}

void Reshaper::emitString(std::string_view text, const EventPlace& place) {
    place_ = &place;
    const QVStatus status =
        engine_->string(engine_, bytesOf(text), static_cast<QVStrSize>(text.size()), JSN_VALUE);
    place_ = nullptr;
    check(status);
}

void Reshaper::emitOpen(bool array) {
    content();
    check(array ? engine_->arrayStart(engine_) : engine_->objectStart(engine_));
}

void Reshaper::emitMemberOpen(std::string_view name, bool array) {
    if (plans_.dropsEmpty()) {
        waiting_.push_back({std::string(name), array});
    } else {
        emitName(name);
        emitOpen(array);
    }
}

void Reshaper::emitClose(bool array) {
    if (!waiting_.empty()) {  // the innermost container: nothing was in it
        waiting_.pop_back();
        ++counts_.emptyLeftOut;
        return;
    }
    check(array ? engine_->arrayEnd(engine_) : engine_->objectEnd(engine_));
}

}  // namespace qvej
