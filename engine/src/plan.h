// Who reads whom in a graph.
#pragma once

#include <engine/engine.h>

#include <map>
#include <set>

namespace engine {

/// All nodes of a graph with the number of places that read them.
std::map<const Node*, int> readers(const Image& image);
/// All nodes of a graph, each after everything that reads it.
std::vector<const Node*> readersFirst(const Image& image);
/// Whether some step of the graph reads pixels around its own, so that two areas side by side share work.
bool readsAround(const Node& last);
/// The nodes that are worth keeping for their second reader.
std::set<const Node*> keptNodes(const Image& image);

} // namespace engine
