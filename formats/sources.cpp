// See sources.h.
#include "formats/sources.h"

#include "client/error.h"

#include <algorithm>
#include <sys/stat.h>

namespace qvej {

bool isSameFile(const std::string& a, const std::string& b) {
    struct stat first = {};
    struct stat second = {};
    return ::stat(a.c_str(), &first) == 0 && ::stat(b.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

Sources sourcesOf(const std::vector<std::string>& documents, const std::string& map,
                  const std::vector<std::string>& shapes) {
    Sources sources;
    for (const std::string& document : documents) {
        sources.push_back({document, "the document itself"});
    }
    sources.push_back({map, "the map itself"});
    for (const std::string& shape : shapes) {
        sources.push_back({shape, "the shape itself"});
    }
    return sources;
}

const Source* sourceAt(const std::string& path, const Sources& sources) {
    const auto found = std::find_if(sources.begin(), sources.end(), [&](const Source& source) {
        return isSameFile(path, source.file == "-" ? "/dev/stdin" : source.file);
    });
    return found == sources.end() ? nullptr : &*found;
}

void refuseSource(const std::string& path, const Sources& sources) {
    const Source* const source = sourceAt(path, sources);
    if (source != nullptr) {
        throw Error(QV_IO_REFUSED, std::string(source->what) + ", not replaced", path);
    }
}

}  // namespace qvej
