// The tables as one JSON object, for programs.
//
// docs/FORMATS.md says what is in it.
//
// Tested by tests/tool/golden/pictures.t
#pragma once

#include "client/account.h"
#include "formats/writer.h"
#include "tools/cli/survey.h"

#include <string>
#include <vector>

namespace qvej::cli {

// `input`: the name of the document.
void printJson(Writer& out, const std::string& input, const Schema& schema,
               const std::vector<PathAccount>& account);

}  // namespace qvej::cli
