// The objects of a host that are alive, in the order of their making.
//
// A record that a host hands out holds a HostObject as a member.  Making it enters the record in
// its host's registry, destroying it takes it out, so a record cannot be forgotten:
//
//     struct Parser : JSNParser {
//         explicit Parser(QVHndlp host) : entry(host, ObjectKind::PARSER, generic, "name") {}
//         HostObject entry;
//     };
//
// The host ends what is left in its registry when it stops, through each record's
// `generic.destroy`, newest first.
//
// Tested by tests/host/kernel_test.cpp
#pragma once

#include "qvehost.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace qvhost {

class Registry;

enum class ObjectKind : uint8_t {
    POOL,
    MODULE,
    TRACKER,
    FILE,
    PARSER,
    WRITER,
    TRANSCODER,
    STRINGS,
    INFORMAT,
    FORMAT
};

// "pool", "module", ...
[[nodiscard]] const char* kindName(ObjectKind kind) noexcept;

// The entry of one live object.  Neither making nor destroying it allocates or throws.
class HostObject {
   public:
    // `name` is copied, at most kNameSize bytes of it.  `object` is the head of the record.  With a
    // handle that is not a running portable host (null, or a test's own) the object is not listed.
    HostObject(QVHndlp host, ObjectKind kind, QVGeneric& object, std::string_view name) noexcept;
    ~HostObject();
    HostObject(const HostObject&) = delete;
    HostObject& operator=(const HostObject&) = delete;

    [[nodiscard]] ObjectKind kind() const noexcept { return kind_; }
    [[nodiscard]] QVGeneric& object() const noexcept { return object_; }
    [[nodiscard]] const char* name() const noexcept { return name_; }

   private:
    friend class Registry;
    static constexpr std::size_t kNameSize = 63;

    Registry* registry_ = nullptr;  // null: not listed
    HostObject* older_ = nullptr;
    HostObject* newer_ = nullptr;
    QVGeneric& object_;
    ObjectKind kind_;
    char name_[kNameSize + 1];  // terminated
};

// The list itself.  Safe to use from several threads.
class Registry {
   public:
    Registry() = default;
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    // Ends every object that is listed, newest first, also those that appear meanwhile.
    void endAll() noexcept;

    // Calls `visit(const HostObject&)`, oldest first.  The list is locked meanwhile: `visit` must
    // neither make nor end objects.
    template <class Visit>
    void each(Visit visit) {
        const std::lock_guard lock(mutex_);
        for (const HostObject* entry = oldest_; entry != nullptr; entry = entry->newer_) {
            visit(*entry);
        }
    }

   private:
    friend class HostObject;
    void enlist(HostObject& entry) noexcept;
    void unlist(HostObject& entry) noexcept;
    void unlink(HostObject& entry) noexcept;

    std::mutex mutex_;
    HostObject* oldest_ = nullptr;
    HostObject* newest_ = nullptr;
};

// A text of the host's characters as UTF-8; a character that does not exist becomes U+FFFD.
[[nodiscard]] std::string utf8Text(const QVChar* chars, QVStrSize charsLen);

}  // namespace qvhost
