// The arrangement of displays as an SVG picture.
#pragma once

#include <string>

#include "devhost/tool/layout/layout.h"

namespace devhost::tool {

/// A whole document, in UTF-8. Every box is a group with a rectangle, to one scale and one origin, and what it shows in
/// data attributes; see docs/json.md. The picture has no background: its colours suit a light page and a dark one, and
/// follow the reader's preference where the viewer knows it.
std::string drawSvg(const Layout& layout);

}  // namespace devhost::tool
