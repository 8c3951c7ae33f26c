// Who reads whom in a graph, and how many passes it takes.
#include "plan.h"

#include <algorithm>
#include <sstream>

namespace engine {

std::map<const Node*, int> readers(const Image& image) {
    std::map<const Node*, int> found;
    std::vector<const Node*> open;
    auto visit = [&](const Node* node) {
        if (node && found[node]++ == 0) open.push_back(node);
    };
    visit(image.get());
    while (!open.empty()) {
        const Node* node = open.back();
        open.pop_back();
        for (const Image& input : node->inputs()) visit(input.get());
    }
    return found;
}

std::vector<const Node*> readersFirst(const Image& image) {
    std::vector<const Node*> order;
    if (!image) return order;
    auto unread = readers(image);
    std::vector<const Node*> open{image.get()};
    while (!open.empty()) {
        const Node* node = open.back();
        open.pop_back();
        order.push_back(node);
        for (const Image& input : node->inputs())
            if (input && --unread[input.get()] == 0) open.push_back(input.get());
    }
    return order;
}

bool readsAround(const Node& last) {
    auto all = readers(last.shared_from_this());
    return std::any_of(all.begin(), all.end(), [](const auto& found) { return found.first->materialises(); });
}

std::set<const Node*> keptNodes(const Image& image) {
    std::set<const Node*> kept;
    if (!image) return kept;
    // Where no step reads around itself, a few steps on a span take no longer than the trip to memory and
    // back.
    int quick = readsAround(*image) ? 0 : 4;
    auto count = readers(image);
    auto order = readersFirst(image);
    std::map<const Node*, int> steps; // that reading a node takes
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        int& own = steps[*node];
        if (!(*node)->inputs().empty()) own = 1;
        for (const Image& input : (*node)->inputs())
            if (input) own += steps[input.get()];
        if (count[*node] > 1 && own > quick) kept.insert(*node), own = 0;
    }
    return kept;
}

Plan planSummary(const Image& image) {
    Plan plan;
    if (!image) return plan;
    auto all = readers(image);
    plan.steps = static_cast<int>(all.size());
    plan.passes = 1;
    auto kept = keptNodes(image);
    for (const auto& [node, count] : all) plan.passes += node->materialises() || kept.contains(node);

    std::ostringstream text;
    std::set<const Node*> written;
    std::vector<std::pair<const Node*, int>> open{{image.get(), 0}};
    while (!open.empty()) {
        auto [node, depth] = open.back();
        open.pop_back();
        bool again = !written.insert(node).second;
        text << std::string(2 * depth, ' ') << node->name();
        if (node->materialises()) text << ", keeps its input";
        if (again) text << ", as above";
        text << '\n';
        if (again) continue;
        const auto& inputs = node->inputs();
        for (auto input = inputs.rbegin(); input != inputs.rend(); ++input)
            if (*input) open.emplace_back(input->get(), depth + 1);
    }
    plan.text = text.str();
    return plan;
}

} // namespace engine
