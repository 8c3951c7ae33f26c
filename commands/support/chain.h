// A chain of filters: what a picture becomes when it is sent through.
#pragma once

#include "pictures.h"
#include "values.h"

#include <engine/engine.h>

#include <string>
#include <utility>
#include <vector>

namespace commands {

/// A filter with the values that differ from its defaults, as they are spelled.
struct Step {
    const engine::FilterInfo* filter;
    /// In the order given.
    std::vector<std::pair<const engine::InputInfo*, std::string>> values;

    bool takesPicture() const { return filter->findInput("inputImage") != nullptr; }
    /// Null if the input has its default.
    const std::string* valueOf(const engine::InputInfo& input) const {
        for (auto& [given, text] : values)
            if (given == &input) return &text;
        return nullptr;
    }
};

struct Size {
    /// To fit into; 0 for what comes out, or what keeps the shape.
    double width = 0, height = 0;
    double scale = 1;
};

struct Chain {
    std::vector<Step> steps;
    Size size;
};

struct Result {
    /// Nil if there is none.
    CIImage* image = nil;
    /// The part to be rendered. What is endless ends with the picture that was read, or at the chain's size.
    CGRect area;
    Picture original;
};

/// The result for a file, "-" for the standard input, or "" for a chain that begins with a generator. Nothing
/// is rendered. Without a result, `failure` says why.
Result resultOf(const Chain& chain, const std::string& input, std::string& failure);

} // namespace commands
