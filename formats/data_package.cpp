// See data_package.h.
#include "formats/data_package.h"

#include "client/document.h"
#include "client/engine.h"
#include "client/error.h"
#include "client/escape.h"
#include "client/text.h"
#include "formats/file_names.h"

#include <charconv>
#include <fstream>
#include <utility>

namespace qvej {

namespace {

void putString(Writer& out, std::string_view text) {
    out.put('"');
    appendEscaped(out, text, JSON_STRING);
    out.put('"');
}

// The standard allows lower case letters, digits and "._-" in a name.  File names differ in lower
// case, too, and "." is doubled, so that the names of resources differ as well.
std::string resourceName(std::string_view file) {
    std::string name;
    for (const char c : lowerCased(file.substr(0, file.rfind('.')))) {
        name += c == '.' ? ".." : c == '%' ? ".x" : c == '~' ? ".n" : std::string(1, c);
    }
    return name;
}

// Paths of what is read.
constexpr std::string_view kVersion = "\2root\2qvejmap\2version";
constexpr std::string_view kResource = "\2root\2resources";
constexpr std::string_view kPath = "\2root\2resources\2path";
constexpr std::string_view kBytes = "\2root\2resources\2bytes";
constexpr std::string_view kModified = "\2root\2resources\2modified";

std::optional<uint64_t> wholeNumber(std::string_view text) {
    uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [last, trouble] = std::from_chars(text.data(), end, number);
    return last == end && trouble == std::errc() ? std::optional(number) : std::nullopt;
}

// Collects the resources from the records of a package.
class ResourceReader {
   public:
    // False when no package of ours has the record.
    bool take(const Record& record) {
        const bool text = record.kind == JMAP_KIND_STRING;
        if (record.path == kResource) {  // where an object begins
            endResource();
        } else if (record.path == kVersion) {
            return ours_ = text;
        } else if (record.path == kPath) {
            name_ = record.value;
            return text && isFileName(record.value);
        } else if (record.path == kModified) {
            modified_ = record.value;
            return text;
        } else if (record.path == kBytes) {
            bytes_ = wholeNumber(record.value);
            return record.kind == JMAP_KIND_NUMBER && bytes_.has_value();
        }
        return true;
    }

    // Nothing: it is no package of ours.
    std::optional<std::vector<ListedFile>> end() {
        endResource();
        return ours_ ? std::optional(std::move(files_)) : std::nullopt;
    }

   private:
    // A resource without size or time was added by others: it is no file of ours.
    void endResource() {
        if (name_ && bytes_ && modified_) {
            files_.push_back({std::move(*name_), {*bytes_, std::move(*modified_)}});
        }
        name_.reset();
        bytes_.reset();
        modified_.reset();
    }

    bool ours_ = false;
    std::optional<std::string> name_;
    std::optional<uint64_t> bytes_;
    std::optional<std::string> modified_;
    std::vector<ListedFile> files_;
};

}  // namespace

PackageWriter::PackageWriter(Writer& out, const PackageRun& run) : out_(out), titles_(run.titles) {
    out_.append(R"({"qvejmap":{"version":)");
    putString(out_, run.version);
    out_.append(R"(,"input":)");
    putString(out_, run.input);
    out_.append(R"(,"options":[)");
    for (std::size_t i = 0; i < run.options.size(); ++i) {
        out_.append(i == 0 ? "" : ",");
        putString(out_, run.options[i]);
    }
    out_.append("]},\n\"resources\":[");
}

void PackageWriter::add(std::string_view file, std::string_view table, std::string_view format,
                        uint64_t rows, const FileState& state) {
    out_.append(std::exchange(first_, false) ? "\n{\"name\":" : ",\n{\"name\":");
    putString(out_, resourceName(file));
    if (titles_) {
        out_.append(R"(,"title":)");
        putString(out_, table);
    }
    out_.append(R"(,"path":)");
    putString(out_, file);
    out_.append(R"(,"format":)");
    putString(out_, format);
    out_.append(R"(,"rows":)");
    out_.append(std::to_string(rows));
    out_.append(R"(,"bytes":)");
    out_.append(std::to_string(state.bytes));
    out_.append(R"(,"modified":)");
    putString(out_, state.modified);
    out_.put('}');
}

void PackageWriter::end() {
    out_.append("\n]}\n");
    out_.flush();
}

std::optional<std::vector<ListedFile>> readPackage(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    try {
        Engine engine;
        Document document(engine);
        std::vector<char> piece(std::size_t{1} << 16);
        while (in.read(piece.data(), static_cast<std::streamsize>(piece.size())),
               in.gcount() != 0) {
            document.feed({piece.data(), static_cast<std::size_t>(in.gcount())});
        }
        document.finish();
        ResourceReader reader;
        RecordCursor records(document);
        for (Record record = {}; records.next(record);) {
            if (!reader.take(record)) {
                return std::nullopt;
            }
        }
        return reader.end();
    } catch (const Error&) {
        return std::nullopt;
    }
}

}  // namespace qvej
