// See shape_finder.h.
#include "client/shape/shape_finder.h"

#include "client/error.h"
#include "client/shape/shape_judge.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

namespace qvej {
namespace {

template <class Events>
Events& eventsOf(JSNParseCB* cb) {
    return *static_cast<Events*>(cb);
}

// A callback that may run out of memory.
template <class Routine>
QVStatus guarded(Routine routine) noexcept {
    try {
        routine();
        return QV_OK;
    } catch (const std::bad_alloc&) {
        return QV_NOMEM;
    }
}

template <class Word>
bool equalEnds(const char* a, const char* b, std::size_t size) {
    Word words[4];
    std::memcpy(&words[0], a, sizeof(Word));
    std::memcpy(&words[1], b, sizeof(Word));
    std::memcpy(&words[2], a + size - sizeof(Word), sizeof(Word));
    std::memcpy(&words[3], b + size - sizeof(Word), sizeof(Word));
    return ((words[0] ^ words[1]) | (words[2] ^ words[3])) == 0;
}

// Names are short: a call of memcmp takes longer than the comparison.
bool equal(const std::string& a, std::string_view b) {
    const std::size_t size = b.size();
    if (a.size() != size) {
        return false;
    }
    if (size >= 8 && size <= 16) {
        return equalEnds<uint64_t>(a.data(), b.data(), size);
    }
    if (size >= 4 && size < 8) {
        return equalEnds<uint32_t>(a.data(), b.data(), size);
    }
    return std::memcmp(a.data(), b.data(), size) == 0;
}

}  // namespace

ShapeFinder::ShapeFinder(QVHndlp host, TextForm form, const FinderOptions& options)
    : options_(options), tree_(options) {
    // The root is the one value of a frame that is never closed.
    frames_.push_back({&tree_.root(), &tree_.root(), nullptr, 0, NameNode::MEMBER});
    setCallbacks();
    json_.reset(reinterpret_cast<QVJSONh>(host->loadExtension(host, U"qvejson", 7, host->jnl)));
    newParser(form);
}

void ShapeFinder::newParser(TextForm form) {
    JSNParserParms parms = {};
    parms.textCei = parms.callbackCei = U_UTF8_CE;
    parms.flags = JSN_PARSER_FLAGS;
    parms.callbacks = &events_;
    parser_.reset(json_ ? json_->createParser(json_.get(), &parms) : nullptr);
    if (!parser_) {
        throw Error(QV_NOMEM);
    }
    JSNTextRules rules = {};
    rules.lines = form == TextForm::LINES ? 1 : 0;
    rules.sequence = form == TextForm::SEQUENCE ? 1 : 0;
    rules.maxDepth = options_.maxDepth;
    parser_->setRules(parser_.get(), &rules);
}

void ShapeFinder::setCallbacks() {
    events_.finder = this;
    events_.arrayStart = [](JSNParseCB* cb) {
        return guarded([&] { eventsOf<Events>(cb).finder->open(KIND_ARRAY); });
    };
    events_.objectStart = [](JSNParseCB* cb) {
        return guarded([&] { eventsOf<Events>(cb).finder->open(KIND_OBJECT); });
    };
    events_.arrayEnd = events_.objectEnd = [](JSNParseCB* cb) -> QVStatus {
        eventsOf<Events>(cb).finder->close();
        return QV_OK;
    };
    events_.nullx = [](JSNParseCB* cb) -> QVStatus {
        eventsOf<Events>(cb).finder->value(KIND_NULL);
        return QV_OK;
    };
    events_.booleanVal = [](JSNParseCB* cb, QVBoolean) -> QVStatus {
        eventsOf<Events>(cb).finder->value(KIND_BOOLEAN);
        return QV_OK;
    };
    events_.number = [](JSNParseCB* cb, const char*, QVStrSize, int32_t) -> QVStatus {
        eventsOf<Events>(cb).finder->value(KIND_NUMBER);
        return QV_OK;
    };
    events_.string = [](JSNParseCB* cb, const JSNChar* text, QVStrSize textLen, int32_t flags) {
        ShapeFinder& finder = *eventsOf<Events>(cb).finder;
        if (flags == JSN_MEMBERNAME) {
            return guarded([&] {
                finder.name(
                    {reinterpret_cast<const char*>(text), static_cast<std::size_t>(textLen)});
            });
        }
        NameNode& node = finder.value(KIND_STRING);
        const auto length = static_cast<uint32_t>(std::min<QVStrSize>(textLen, UINT32_MAX));
        node.longestText = std::max(node.longestText, length);
        return QV_OK;
    };
}

bool ShapeFinder::feed(std::string_view text) {
    const QVStatus status =
        parser_->parse(parser_.get(), text.data(), static_cast<QVStrSize>(text.size()), 0);
    if (status == QV_NOMEM) {
        throw Error(status);
    }
    return status == QV_EOF;
}

void ShapeFinder::endText() {
    const bool whole = parser_->parse(parser_.get(), "", 0, 1) == QV_OK &&
                       tree_.root().has(NameNode::MEMBER, KIND_OBJECT | KIND_ARRAY);
    while (frames_.size() > 1) {  // of a text that ends too early
        close();
    }
    whole_ = whole_ && whole;
}

void ShapeFinder::nextText(TextForm form) {
    endText();
    newParser(form);
}

FoundShape ShapeFinder::finish() {
    endText();
    FoundShape found = judgeShape(tree_, options_);
    found.whole = whole_;
    return found;
}

void ShapeFinder::name(std::string_view text) {
    Frame& frame = frames_.back();
    NameNode* expected = *frame.expected;
    if (expected == nullptr || !equal(expected->name, text)) [[unlikely]] {
        otherName(text);
        return;
    }
    frame.value = expected;
    frame.expected = &expected->next;
    ++expected->count;
}

void ShapeFinder::otherName(std::string_view text) {
    const std::size_t before = tree_.size();
    NameNode* node = memberOf(frames_.back().node, text);
    Frame& frame = frames_.back();
    frame.value = node;
    if (node == &passed_) {
        return;
    }
    if (tree_.size() < before) {  // what was expected may have gone
        frame.expected = &frame.node->first;
    }
    *frame.expected = node;
    frame.expected = &node->next;
    ++node->count;
}

NameNode* ShapeFinder::memberOf(NameNode* node, std::string_view text) {
    if (node == &passed_ || frames_.size() > NameTree::kMostDepth) {
        return &passed_;
    }
    NameNode* member = tree_.member(*node, text);
    if (member == nullptr) {
        shrink();
        member = tree_.member(*frames_.back().node, text);
    }
    return member == nullptr ? &passed_ : member;
}

// Makes room in the tree.  The nodes of the open containers may go; their names lead to those that
// stand for them then.
void ShapeFinder::shrink() {
    std::vector<std::string> names;
    for (std::size_t i = 1; i < frames_.size(); ++i) {
        const bool same = frames_[i].node == frames_[i - 1].node;  // elements add no name
        names.push_back(same ? std::string() : frames_[i].node->name);
        frames_[i].sameNode = same;
    }
    tree_.shrink();
    for (std::size_t i = 1; i < frames_.size(); ++i) {
        Frame& frame = frames_[i];
        NameNode* above = frames_[i - 1].node;
        frame.node = frame.sameNode ? above : tree_.member(*above, names[i - 1]);
        frames_[i - 1].value = frame.node;
        frame.value = frame.node;
        frame.expected = &frame.node->first;
    }
}

NameNode& ShapeFinder::value(ValueKind kind) {
    Frame& frame = frames_.back();
    ++frame.length;
    NameNode& node = *frame.value;
    node.kinds[frame.where] = static_cast<uint8_t>(node.kinds[frame.where] | kind);
    return node;
}

void ShapeFinder::open(ValueKind kind) {
    NameNode* node = &value(kind);
    if (kind == KIND_OBJECT) {
        ++node->objects;
        frames_.push_back({node, node, &node->first, 0, NameNode::MEMBER});
        return;
    }
    frames_.back().holdsArray = true;
    frames_.push_back({node, node, nullptr, 0, NameNode::ELEMENT});
}

void ShapeFinder::close() {
    const Frame frame = frames_.back();
    frames_.pop_back();
    NameNode& node = *frame.node;
    if (frame.length == 0 && frames_.back().where == NameNode::MEMBER) {
        ++node.empties;
    }
    if (frame.where == NameNode::MEMBER || frame.holdsArray) {
        return;
    }
    ++node.arrays;
    node.elements += frame.length;
    if (frame.length != 0) {
        const auto length = static_cast<uint32_t>(std::min<uint64_t>(frame.length, UINT32_MAX));
        node.shortest = std::min(node.shortest, length);
        node.longest = std::max(node.longest, length);
    }
}

}  // namespace qvej
