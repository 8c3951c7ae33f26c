// Who reads whom in a graph.
#pragma once

#include <engine/engine.h>

#include <map>

namespace engine {

/// All nodes of a graph with the number of places that read them.
std::map<const Node*, int> readers(const Image& image);
/// Whether a node is worth keeping for its second reader. Sources are as quick as a copy.
inline bool isKept(const Node& node, int readers) { return readers > 1 && !node.inputs().empty(); }

} // namespace engine
