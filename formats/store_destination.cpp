// See store_destination.h.
#include "formats/store_destination.h"

#include "formats/module.h"

#include <sys/stat.h>
#include <utility>

namespace qvej {

namespace {

bool hasContent(const std::string& path) {
    struct stat found = {};
    return ::stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) && found.st_size != 0;
}

}  // namespace

std::string withoutPassword(const std::string& address) {
    const std::size_t begin = address.find("://");
    const std::size_t at = address.find('@', begin == std::string::npos ? 0 : begin + 3);
    const std::size_t slash = begin == std::string::npos ? begin : address.find('/', begin + 3);
    if (begin == std::string::npos || at == std::string::npos || at > slash) {
        return address;
    }
    const std::size_t colon = address.find(':', begin + 3);
    return colon < at ? address.substr(0, colon) + address.substr(at) : address;
}

StoreDestination::StoreDestination(StoreTarget target, const Format& format, FormatOptions options,
                                   bool force, Sources sources)
    : target_(std::move(target)),
      format_(format),
      options_(std::move(options)),
      force_(force),
      sources_(std::move(sources)) {}

void StoreDestination::open(const std::vector<const Table*>& /*tables*/, const Schema* schema) {
    const FormatModule& module = formatModule(format_.module);
    const bool grows = target_.grows && !force_ && hasContent(target_.text);
    std::string name = target_.text;
    if (grows) {
        refuseSource(name, sources_);
    }
    if (grows || !target_.file) {
        cleanup_.emplace(withoutPassword(target_.text));
    } else if (target_.file) {
        files_.reset(new OutputFiles(OutputFiles::single(target_.text, force_, sources_)));
        name = files_->made(0);
    }
    store_ = module.openStore(
        {name, withoutPassword(target_.text), files_ != nullptr, *schema, options_});
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
