// See map_output.h.
#include "tools/cli/maps/map_output.h"

#include "client/escape.h"
#include "formats/output_files.h"
#include "formats/writer.h"
#include "tools/cli/reports/tell.h"

namespace qvej::cli {

namespace {

// Writes a compact map for people: containers down to the list of columns have a line for each
// item, a column and all below it stands in one.
class Indenter {
   public:
    Indenter(Writer& out, std::string_view map) : out_(out), map_(map) {}

    void run() {
        while (at_ < map_.size()) {
            const char c = map_[at_];
            if (c == '"') {
                string();
                continue;
            }
            ++at_;
            if (c == '{' || c == '[') {
                open(c);
            } else if (c == '}' || c == ']') {
                close(c);
            } else {
                out_.put(c);
                if (c == ',' && !inColumn()) {
                    newLine();
                } else if (c == ',' || c == ':') {
                    out_.put(' ');
                }
            }
        }
    }

   private:
    static constexpr std::size_t kColumnDepth = 5;  // of the members of a column
    static constexpr std::size_t kStep = 2;         // blanks

    void string() {
        const std::size_t begin = at_++;
        for (; map_[at_] != '"'; ++at_) {
            at_ += map_[at_] == '\\' ? 1 : 0;
        }
        out_.append(map_.substr(begin, ++at_ - begin));
    }

    void open(char c) {
        out_.put(c);
        ++depth_;
        if (map_[at_] == '}' || map_[at_] == ']') {  // nothing in it
            --depth_;
            out_.put(map_[at_++]);
        } else if (!inColumn()) {
            newLine();
        } else if (c == '{') {
            out_.put(' ');
        }
    }

    void close(char c) {
        const bool inside = inColumn();
        --depth_;
        if (!inside) {
            newLine();
        } else if (c == '}') {
            out_.put(' ');
        }
        out_.put(c);
    }

    [[nodiscard]] bool inColumn() const { return depth_ >= kColumnDepth; }

    void newLine() {
        out_.put('\n');
        for (std::size_t i = 0; i < depth_ * kStep; ++i) {
            out_.put(' ');
        }
    }

    Writer& out_;
    std::string_view map_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;
};

void write(Writer& out, const std::string& map, bool compact) {
    if (compact) {
        out.append(map);
    } else {
        Indenter(out, map).run();
    }
    out.put('\n');
    out.flush();
}

void writeFile(const std::string& map, const Options& options, const Sources& sources) {
    OutputFiles files = OutputFiles::single(options.out, options.force, sources);
    Writer out = files.writer(0);
    write(out, map, options.compact);
    tellEach(files.commit());
}

bool toFile(const Options& options) {
    return !options.out.empty() && options.out != "-";
}

}  // namespace

void checkMapOutput(const Options& options, const Sources& sources) {
    if (toFile(options)) {
        OutputFiles::checkFile(options.out, options.force, sources);
    }
}

void putMap(const std::string& map, const Options& options, const Sources& sources) {
    if (toFile(options)) {
        writeFile(map, options, sources);
        return;
    }
    Writer out = standardOutput();
    if (!out.terminal()) {
        write(out, map, options.compact);
        return;
    }
    std::string safe;
    appendEscaped(safe, map, CONTROLS);  // they are in strings: an escape is the same
    write(out, safe, options.compact);
}

}  // namespace qvej::cli
