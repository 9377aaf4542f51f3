// The shape that is found in some texts.
//
// Tested by tests/tool/golden/shape.t
#pragma once

#include "../engine.h"
#include "../input/byte_source.h"
#include "../input/document_reader.h"
#include "../shape/finder_options.h"
#include "../shape/found_shape.h"

#include <cstddef>
#include <functional>

namespace qvej {

// Walks `count` texts, 1 or more, in order; `open` gives the bytes of each.  A text that is not
// well formed gives the shape of what stands before the mistake.  `stopped`: see DocumentOptions.
// Throws Error when one cannot be read, and QV_STOPPED.
[[nodiscard]] FoundShape shapeOfTexts(const Engine& engine, std::size_t count,
                                      const std::function<ByteSource(std::size_t)>& open,
                                      const TextOptions& text, const FinderOptions& options,
                                      const std::function<bool()>& stopped = {});

}  // namespace qvej
