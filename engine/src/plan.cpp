// Who reads whom in a graph, and how many passes it takes.
#include "plan.h"

#include <set>
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

Plan planSummary(const Image& image) {
    Plan plan;
    if (!image) return plan;
    auto all = readers(image);
    plan.steps = static_cast<int>(all.size());
    plan.passes = 1;
    for (const auto& [node, count] : all) plan.passes += node->materialises() || isKept(*node, count);

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
