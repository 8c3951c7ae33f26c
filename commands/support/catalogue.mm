// The filters as texts for people: names, inputs with their ranges and defaults, sources.
#include "catalogue.h"

#include "command.h"

#import <QuartzCore/QuartzCore.h>

#include <syntax/names.h>

#include <algorithm>
#include <cmath>

namespace commands {

namespace {

std::string utf8(NSString* text) { return text ? [text UTF8String] : ""; }

/// Categories that name what a filter can be used on, not what it does.
bool saysWhere(const std::string& category) {
    static const std::vector<std::string> uses{"Video",           "StillImage",       "Interlaced",
                                               "NonSquarePixels", "HighDynamicRange", "BuiltIn"};
    return std::find(uses.begin(), uses.end(), category) != uses.end();
}

std::string categoryName(const std::string& category) {
    NSString* key = [NSString stringWithUTF8String:("CICategory" + category).c_str()];
    return utf8([CIFilter localizedNameForCategory:key]);
}

std::string hexColor(const engine::Color& c) {
    bool fits = true;
    std::string text = "#";
    for (double part : {c.r, c.g, c.b, c.a}) {
        fits = fits && part >= 0 && part <= 1;
        char digits[8];
        std::snprintf(digits, sizeof digits, "%02x", int(std::lround(std::clamp(part, 0.0, 1.0) * 255)));
        text += digits;
    }
    if (fits) return c.a == 1 ? text.substr(0, 7) : text;
    return valueText(engine::Numbers{c.r, c.g, c.b, c.a});
}

struct ToText {
    std::string operator()(double v) const { return shortNumber(v); }
    std::string operator()(const engine::Numbers& v) const {
        std::vector<std::string> parts;
        for (double number : v) parts.push_back(shortNumber(number));
        return joined(parts, ",");
    }
    std::string operator()(const engine::Color& c) const { return hexColor(c); }
    std::string operator()(const engine::Affine& m) const {
        return (*this)(engine::Numbers{m.a, m.b, m.c, m.d, m.tx, m.ty});
    }
    std::string operator()(const std::string& v) const { return v; }
    std::string operator()(const engine::Image&) const { return {}; }
    std::string operator()(const engine::Bytes&) const { return {}; }
};

std::string between(const std::optional<double>& low, const std::optional<double>& high) {
    if (low && high) return shortNumber(*low) + " to " + shortNumber(*high);
    if (low) return "at least " + shortNumber(*low);
    if (high) return "at most " + shortNumber(*high);
    return {};
}

} // namespace

const engine::FilterInfo* filterNamed(const std::string& name) {
    if (const engine::FilterInfo* exact = engine::findFilter(name)) return exact;
    for (const engine::FilterInfo* filter : engine::allFilters())
        if (studio::sameName(filter->name, name)) return filter;
    return nullptr;
}

std::string filterSuggestion(const std::string& name) {
    std::vector<std::string> names;
    for (const engine::FilterInfo* filter : engine::allFilters()) names.push_back(filter->name);
    bool prefixed = studio::folded(name).starts_with("ci");
    return studio::suggestion(prefixed ? name : "CI" + name, names);
}

std::string mainCategory(const engine::FilterInfo& filter) {
    for (const std::string& category : filter.categories)
        if (!saysWhere(category)) return categoryName(category);
    return "Automatic Adjustment";
}

std::vector<std::string> categoryNames(const engine::FilterInfo& filter) {
    std::vector<std::string> names;
    for (const std::string& category : filter.categories) names.push_back(categoryName(category));
    return names;
}

std::string shortKey(const std::string& key) {
    if (!key.starts_with("input") || key.size() == 5) return key;
    std::string rest = key.substr(5);
    // "EV", "GCR" and "UCR" are abbreviations.
    bool abbreviation = rest.size() > 1 && std::isupper((unsigned char)rest[1]);
    if (!abbreviation) rest[0] = char(std::tolower((unsigned char)rest[0]));
    return rest;
}

const engine::InputInfo* inputNamed(const engine::FilterInfo& filter, const std::string& key) {
    for (const engine::InputInfo& input : filter.inputs) {
        std::string brief = shortKey(input.key);
        if (studio::sameName(input.key, key) || studio::sameName(brief, key)) return &input;
        // "mask" will do for inputMaskImage.
        if (brief.ends_with("Image") && studio::sameName(brief.substr(0, brief.size() - 5), key))
            return &input;
    }
    return nullptr;
}

std::string inputSuggestion(const engine::FilterInfo& filter, const std::string& key) {
    std::vector<std::string> keys;
    for (const engine::InputInfo& input : filter.inputs) keys.push_back(shortKey(input.key));
    return studio::suggestion(shortKey(key), keys);
}

std::string keysOf(const engine::FilterInfo& filter) {
    std::vector<std::string> keys;
    for (const engine::InputInfo& input : filter.inputs) keys.push_back(shortKey(input.key));
    return joined(keys, ", ");
}

std::string classOf(const engine::FilterInfo& filter, const engine::InputInfo& input) {
    CIFilter* made = [CIFilter filterWithName:[NSString stringWithUTF8String:filter.name.c_str()]];
    NSDictionary* attributes =
        [[made attributes] objectForKey:[NSString stringWithUTF8String:input.key.c_str()]];
    return utf8([attributes objectForKey:kCIAttributeClass]);
}

bool isInPixels(const engine::InputInfo& input) {
    if (input.type == "Distance" || input.type == "Offset") return true;
    // Some are called scalars; a slider that ends early is one of shares, and so are radii of radii.
    bool length =
        input.key.ends_with("Radius") || input.key.ends_with("Width") || input.key.ends_with("Height");
    bool share = input.key.ends_with("StriationRadius") || (input.sliderMax && *input.sliderMax <= 2);
    return input.kind == engine::InputKind::number && length && !share;
}

std::string meaningOf(const engine::InputInfo& input) {
    constexpr std::pair<std::string_view, std::string_view> units[] = {
        {"Position", "pixels x,y"}, {"Position3", "pixels x,y,z"}, {"Offset", "pixels x,y"},
        {"Rectangle", "x,y,w,h"},   {"Angle", "radians"},          {"Time", "0 to 1"},
        {"Boolean", "0 or 1"},      {"Count", "whole number"},     {"Integer", "whole number"}};
    if (input.kind == engine::InputKind::number && isInPixels(input)) return input.type + ", pixels";
    for (auto& [type, unit] : units)
        if (type == input.type) return input.type + ", " + std::string(unit);
    return input.type == "Image" ? "" : input.type;
}

std::string rangeOf(const engine::InputInfo& input) {
    std::string hard = between(input.min, input.max), slider = between(input.sliderMin, input.sliderMax);
    if (slider.empty() || slider == hard) return hard;
    return hard.empty() ? "slider " + slider : hard + ", slider " + slider;
}

std::string valueText(const engine::Value& value) { return std::visit(ToText(), value); }

std::string defaultOf(const engine::InputInfo& input) {
    return input.defaultValue ? valueText(*input.defaultValue) : "";
}

std::string sourceText(const engine::Source& source) {
    std::string what(source.text);
    switch (source.kind) {
    case engine::Source::Kind::publicDefinition:
        return "public definition: " + what;
    case engine::Source::Kind::ourOwn:
        return "our own: " + what;
    case engine::Source::Kind::fitted:
        break;
    }
    std::string residual =
        source.residual ? ", mean residual " + shortNumber(*source.residual) + " of 255" : "";
    return "fitted to Core Image's pictures" + residual + ": " + what;
}

} // namespace commands
