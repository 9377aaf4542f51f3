// The tables as a tree with what is worth knowing of each, for people at a terminal.
//
// Tested by tests/tool/golden/pictures.t
#pragma once

#include "formats/writer.h"
#include "tools/cli/survey.h"

namespace qvej::cli {

// Of many tables the first ones.
void printTree(Writer& out, const Survey& survey);

}  // namespace qvej::cli
