// See man_page.h.
#include "tools/cli/options/man_page.h"

#include "tools/cli/options/help.h"
#include "tools/cli/options/help_texts.h"
#include "tools/cli/options/option_owners.h"
#include "tools/cli/verbs/verbs.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>

namespace qvej::cli {

namespace {

constexpr std::string_view kHead = R"(.TH QVEJMAP 1 "" "qvejmap )" QVEJMAP_VERSION
                                   R"(" "User Commands"
.SH NAME
qvejmap \- JSON documents as rectangular tables
.SH SYNOPSIS
.B qvejmap
.I VERB FILE
.RI [ OPTIONS ]
.br
.B qvejmap help
.RI [ VERB ]
.SH DESCRIPTION
)";

constexpr std::string_view kTail = R"(.SH ENVIRONMENT
.TP
.B TMPDIR
Where records go that do not fit in memory, unless there is a \fB\-\-cache\fR; else in /tmp.
.SH EXAMPLES
.nf
qvejmap tables orders.json
qvejmap read orders.json orders_items \-\-limit 10
qvejmap convert orders.json \-o out
qvejmap find orders.json \-\-regex '^(desk|oslo)$' \-\-ignore\-case
.fi
.SH SEE ALSO
README.md and docs/FORMATS.md of the documentation, in /usr/share/doc/qvejmap when a package
installed the tool.
)";

// The text in roff: no character of it is a request or becomes another one.
std::string roff(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const bool lineBegins = result.empty() || result.back() == '\n';
        if (lineBegins && (c == '.' || c == '\'')) {
            result += "\\&";
        }
        switch (c) {
            case '\\':
                result += "\\e";
                break;
            case '-':
                result += "\\-";
                break;
            case '\'':
                result += "\\(aq";
                break;
            case '^':
                result += "\\(ha";
                break;
            case '~':
                result += "\\(ti";
                break;
            case '`':
                result += "\\(ga";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::string bold(std::string_view text) {
    return "\\fB" + roff(text) + "\\fR";
}

std::string italic(std::string_view text) {
    return text.empty() ? "" : " \\fI" + roff(text) + "\\fR";
}

// An entry of a list; the purpose becomes a line of its own.
std::string entry(const std::string& head, const std::string& purpose) {
    return ".TP\n" + head + "\n" + roff(wrapped(purpose, SIZE_MAX)) + "\n";
}

// The verbs that take the option, when not all do.
std::string ownersOf(const CLI::Option& option) {
    for (const Owner& owner : optionOwners()) {
        if (option.check_name(owner.option)) {
            return ".br\nVerbs: " + std::string(owner.verbs) + ".\n";
        }
    }
    return "";
}

std::string verbs() {
    std::string text = ".SH VERBS\n";
    for (const Verb& verb : allVerbs()) {
        text += entry(bold(verb.name) + italic(verb.arguments), std::string(verb.purpose));
    }
    return text;
}

std::string options(const CLI::App& app) {
    std::string text = ".SH OPTIONS\n";
    for (const std::string& group : app.get_groups()) {
        if (group.empty()) {
            continue;
        }
        text += ".SS \"" + roff(group) + "\"\n";
        for (const CLI::Option* option : app.get_options()) {
            if (option->get_group() == group) {
                text += entry(bold(option->get_name(false, true)) + italic(option->get_type_name()),
                              option->get_description()) +
                        ownersOf(*option);
            }
        }
    }
    return text;
}

}  // namespace

std::string manPage(const CLI::App& app) {
    return std::string(kHead) + roff(kSummary) + ".PP\n" + roff(kNotes) + verbs() + options(app) +
           ".SH EXIT STATUS\n" + roff(kExitCodes) + std::string(kTail);
}

}  // namespace qvej::cli
