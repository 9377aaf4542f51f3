// See store_destination.h.
#include "formats/store_destination.h"

#include "formats/module.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>

namespace qvej {

namespace {

// Is a file changed that is there?  It may be empty: a database without tables.
bool changesFile(const StoreTarget& target, bool force) {
    struct stat found = {};
    return target.grows && !force && ::stat(target.text.c_str(), &found) == 0 &&
           S_ISREG(found.st_mode);
}

}  // namespace

std::string withoutPassword(const std::string& address) {
    static constexpr std::string_view kOption = "password=";
    const std::size_t scheme = address.find("://");
    if (scheme == std::string::npos) {
        return address;
    }
    std::string shown = address;
    const std::size_t begin = scheme + 3;
    const std::size_t host = shown.find_first_of("@/?", begin);
    const std::size_t colon = shown.find(':', begin);
    if (host != std::string::npos && shown[host] == '@' && colon < host) {
        shown.erase(colon, host - colon);
    }
    for (std::size_t at = 0; (at = shown.find(kOption, at)) != std::string::npos;) {
        at += kOption.size();
        shown.erase(at, std::min(shown.find('&', at), shown.size()) - at);
    }
    return shown;
}

void StoreDestination::checkFile(const StoreTarget& target, bool force, const Sources& sources) {
    if (!changesFile(target, force)) {
        OutputFiles::checkFile(target.text, force, sources);
        return;
    }
    refuseSource(target.text, sources);
    const bool linked = std::filesystem::is_symlink(target.text);
    OutputFiles::checkFile(linked ? std::filesystem::canonical(target.text).string() : target.text,
                           true, sources);
}

void StoreDestination::open(const std::vector<const Table*>& /*tables*/, const Schema* schema) {
    const FormatModule& module = formatModule(parms_.format.module);
    const bool changes = changesFile(target_, parms_.force);
    std::string name = target_.text;
    if (changes) {
        refuseSource(name, parms_.sources);
    }
    if (changes || !target_.file) {
        cleanup_.emplace(withoutPassword(target_.text));
    } else if (target_.file) {
        files_.reset(
            new OutputFiles(OutputFiles::single(target_.text, parms_.force, parms_.sources)));
        name = files_->made(0);
    }
    store_ = module.openStore(
        {name, withoutPassword(target_.text), files_ != nullptr, *schema, parms_.options});
}

bool StoreDestination::shares(const OutputFiles& files) const {
    return files_ != nullptr && files_->shares(files);
}

std::unique_ptr<Sink> StoreDestination::sink(std::size_t table) {
    return store_->sink(table);
}

void StoreDestination::end(const Schema& /*schema*/) {
    store_->end();
}

// A database is changed last: that cannot be taken back.
std::vector<std::string> StoreDestination::commit(OutputFiles* with) {
    const auto last = [this] {
        const cleanup::Hold hold;
        store_->commit();
        remarks_ = store_->remarks();
        store_.reset();
        if (cleanup_) {
            cleanup_->setState(cleanup::Output::COMPLETE);
        }
    };
    if (files_ != nullptr) {
        last();
        return files_->commit(with);
    }
    if (with != nullptr) {
        return with->commit(nullptr, last);
    }
    last();
    return {};
}

std::vector<std::string> StoreDestination::remarks() const {
    return store_ == nullptr ? remarks_ : store_->remarks();
}

}  // namespace qvej
