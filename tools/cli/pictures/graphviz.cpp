// See graphviz.h.
//
// Its input, output and messages are files without a name, so that neither side waits for the
// other.
#include "tools/cli/pictures/graphviz.h"

#include "tools/cli/failure.h"

#include <spawn.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace qvej::cli {

namespace {

struct Closer {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

[[noreturn]] void fail(const std::string& what) {
    throw Failure(FILE_TROUBLE, "the program dot of Graphviz: " + what);
}

File temporary() {
    File file(std::tmpfile());
    if (file == nullptr) {
        fail(std::string("no temporary file: ") + std::strerror(errno));
    }
    return file;
}

std::string contentOf(const File& file) {
    std::string text;
    char piece[1 << 14];
    std::rewind(file.get());
    for (std::size_t count; (count = std::fread(piece, 1, sizeof piece, file.get())) != 0;) {
        text.append(piece, count);
    }
    return text;
}

// The status of the ended program; nothing: there is no such program.
std::optional<int> run(const File& in, const File& out, const File& messages) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ::fileno(in.get()), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ::fileno(out.get()), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ::fileno(messages.get()), STDERR_FILENO);
    char name[] = "dot";
    char format[] = "-Tsvg";
    char* const arguments[] = {name, format, nullptr};
    pid_t child = 0;
    const int trouble = ::posix_spawnp(&child, name, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (trouble == ENOENT) {
        return std::nullopt;
    }
    if (trouble != 0) {
        fail(std::strerror(trouble));
    }
    int status = 0;
    while (::waitpid(child, &status, 0) == -1) {
        if (errno != EINTR) {
            fail(std::strerror(errno));
        }
    }
    return status;
}

}  // namespace

std::optional<std::string> drawnByGraphviz(const std::string& dot) {
    const File in = temporary();
    const File out = temporary();
    const File messages = temporary();
    const bool written = std::fwrite(dot.data(), 1, dot.size(), in.get()) == dot.size() &&
                         std::fflush(in.get()) == 0;
    if (!written) {
        fail(std::string("its input cannot be written: ") + std::strerror(errno));
    }
    std::rewind(in.get());
    const std::optional<int> status = run(in, out, messages);
    if (!status) {
        return std::nullopt;
    }
    if (*status != 0) {
        const std::string said = contentOf(messages);
        fail((WIFEXITED(*status) ? "it ended with exit code " + std::to_string(WEXITSTATUS(*status))
                                 : "it was ended by signal " + std::to_string(WTERMSIG(*status))) +
             (said.empty() ? "" : ": " + said.substr(0, said.find('\n'))));
    }
    std::string svg = contentOf(out);
    if (svg.empty()) {
        fail("it drew nothing");
    }
    return svg;
}

}  // namespace qvej::cli
