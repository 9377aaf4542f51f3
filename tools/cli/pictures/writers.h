// A diagram as text of each format.  All texts of the document are escaped as the format wants it.
//
// Tested by tests/tool/golden/pictures.t and tests/tool/pictures.py
#pragma once

#include "tools/cli/pictures/diagram.h"

#include <string>

namespace qvej::cli {

// For Graphviz.
[[nodiscard]] std::string dotOf(const Diagram& diagram);

// An erDiagram of Mermaid.
[[nodiscard]] std::string mermaidOf(const Diagram& diagram);

// DBML, the language of database diagrams.  Only foreign keys are references.
[[nodiscard]] std::string dbmlOf(const Diagram& diagram);

// SVG with a layout of ours.  `links`: each table is a link to "#t" and its position in the schema.
[[nodiscard]] std::string svgOf(const Diagram& diagram, bool links);

}  // namespace qvej::cli
