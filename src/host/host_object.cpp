// The registry of live objects: a doubly linked list through the objects themselves.
//
// Tested by tests/host/kernel_test.cpp
#include "host/host_object.h"

#include "host/kernel.h"
#include "host/nls/utf8_char.h"

#include <array>

namespace qvhost {

const char* kindName(ObjectKind kind) noexcept {
    static constexpr std::array<const char*, 10> kNames = {
        "pool",   "module",     "tracker", "file",     "parser",
        "writer", "transcoder", "strings", "informat", "format"};
    return kNames[static_cast<std::size_t>(kind)];
}

HostObject::HostObject(QVHndlp host, ObjectKind kind, QVGeneric& object,
                       std::string_view name) noexcept
    : object_(object), kind_(kind) {
    name_[name.copy(name_, kNameSize)] = '\0';
    if (Host* known = Host::of(host)) {
        known->objects().enlist(*this);
    }
}

HostObject::~HostObject() {
    if (registry_ != nullptr) {
        registry_->unlist(*this);
    }
}

void Registry::enlist(HostObject& entry) noexcept {
    const std::lock_guard lock(mutex_);
    entry.registry_ = this;
    entry.older_ = newest_;
    (newest_ == nullptr ? oldest_ : newest_->newer_) = &entry;
    newest_ = &entry;
}

void Registry::unlist(HostObject& entry) noexcept {
    const std::lock_guard lock(mutex_);
    unlink(entry);
}

void Registry::unlink(HostObject& entry) noexcept {
    (entry.older_ == nullptr ? oldest_ : entry.older_->newer_) = entry.newer_;
    (entry.newer_ == nullptr ? newest_ : entry.newer_->older_) = entry.older_;
    entry.registry_ = nullptr;
}

void Registry::endAll() noexcept {
    for (;;) {
        QVGeneric* object = nullptr;
        {
            // Taken out first, so that an object whose destruction fails is not met again.
            const std::lock_guard lock(mutex_);
            if (newest_ == nullptr) {
                return;
            }
            object = &newest_->object();
            unlink(*newest_);
        }
        (void)object->destroy(object);  // no caller is left to report a failure to
    }
}

std::string utf8Text(const QVChar* chars, QVStrSize charsLen) {
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD
    std::string text;
    for (QVStrSize i = 0; chars != nullptr && i < charsLen; ++i) {
        char bytes[4];
        const auto length = static_cast<std::size_t>(utf8Encode(chars[i], bytes));
        text += length == 0 ? kReplacement : std::string_view(bytes, length);
    }
    return text;
}

}  // namespace qvhost
