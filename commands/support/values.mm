// From words of a command line to the values of a filter's inputs.
#include "values.h"

#include "catalogue.h"
#include "colors.h"
#include "command.h"
#include "pictures.h"

#include <syntax/names.h>

#include <algorithm>
#include <cmath>

namespace commands {

namespace {

using engine::InputKind;
using engine::Numbers;

/// A number with its unit. `whole` is what 100 % are.
bool measure(std::string_view text, double whole, double& number) {
    if (text.ends_with("%")) {
        if (!parseNumber(text.substr(0, text.size() - 1), number)) return false;
        number *= whole / 100;
        return true;
    }
    if (text.ends_with("px")) text.remove_suffix(2);
    return parseNumber(text, number);
}

bool number(const engine::InputInfo& input, const std::string& text, CGRect extent, double& out) {
    for (const char* yes : {"yes", "true", "on"})
        if (input.type == "Boolean" && studio::sameName(text, yes)) return out = 1, true;
    for (const char* no : {"no", "false", "off"})
        if (input.type == "Boolean" && studio::sameName(text, no)) return out = 0, true;
    if (input.type == "Angle" && text.ends_with("deg")) {
        if (!parseNumber(text.substr(0, text.size() - 3), out)) return false;
        out *= M_PI / 180;
        return true;
    }
    double shorter = std::min(extent.size.width, extent.size.height);
    return measure(text, isInPixels(input) ? shorter : 1, out);
}

/// Positions are counted from the corner of the extent when they are percentages, offsets and sizes are not.
bool numbers(const engine::InputInfo& input, const std::string& text, CGRect extent, Numbers& out) {
    out.clear();
    for (const std::string& part : split(text, ',')) {
        if (studio::sameName(part, "center") || studio::sameName(part, "centre")) {
            out.insert(out.end(), {CGRectGetMidX(extent), CGRectGetMidY(extent)});
            continue;
        }
        if (studio::sameName(part, "extent")) {
            out.insert(out.end(), {extent.origin.x, extent.origin.y, extent.size.width, extent.size.height});
            continue;
        }
        std::size_t i = out.size();
        bool across = i % 2 == 0, place = i < 2 && !isInPixels(input);
        double value = 0;
        if (!measure(part, across ? extent.size.width : extent.size.height, value)) return false;
        if (place && part.ends_with('%')) value += across ? extent.origin.x : extent.origin.y;
        out.push_back(value);
    }
    return true;
}

/// How many numbers a vector has; 0 if any number will do.
std::size_t lengthOf(const engine::InputInfo& input) {
    auto* standard = input.defaultValue ? std::get_if<Numbers>(&*input.defaultValue) : nullptr;
    return standard && !input.type.empty() ? standard->size() : 0;
}

bool color(const std::string& text, engine::Color& out) {
    if (text.starts_with('#')) {
        std::string digits = text.substr(1);
        if (digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) return false;
        if (digits.size() == 3) {
            std::string doubled;
            for (char digit : digits) doubled += {digit, digit};
            digits = doubled;
        }
        if (digits.size() == 6) digits += "ff";
        if (digits.size() != 8) return false;
        auto part = [&](std::size_t i) { return std::stoi(digits.substr(2 * i, 2), nullptr, 16) / 255.0; };
        out = {part(0), part(1), part(2), part(3)};
        return true;
    }
    for (const NamedColor& known : namedColors)
        if (studio::sameName(known.name, text)) {
            out = {(known.rgb >> 16) / 255.0, (known.rgb >> 8 & 255) / 255.0, (known.rgb & 255) / 255.0, 1};
            return true;
        }
    std::vector<std::string> parts = split(text, ',');
    if (parts.size() != 3 && parts.size() != 4) return false;
    double values[4] = {0, 0, 0, 1};
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (!measure(parts[i], 1, values[i])) return false;
    out = {values[0], values[1], values[2], values[3]};
    return true;
}

bool step(const std::string& text, engine::Affine& out) {
    std::vector<std::string> parts = split(text, ':');
    if (parts.size() != 2) return false;
    Numbers n;
    for (const std::string& part : split(parts[1], ',')) {
        n.push_back(0);
        if (!measure(part, 1, n.back())) return false;
    }
    if (parts[0] == "scale" && n.size() <= 2)
        out = engine::Affine::scale(n[0], n.back());
    else if (parts[0] == "rotate" && n.size() == 1)
        out = engine::Affine::rotation(n[0] * M_PI / 180);
    else if (parts[0] == "move" && n.size() == 2)
        out = engine::Affine::translation(n[0], n[1]);
    else
        return false;
    return true;
}

bool transform(const std::string& text, engine::Affine& out) {
    std::vector<std::string> parts = split(text, ',');
    double n[6];
    bool plain = parts.size() == 6;
    for (std::size_t i = 0; plain && i < 6; ++i) plain = parseNumber(parts[i], n[i]);
    if (plain) return out = {n[0], n[1], n[2], n[3], n[4], n[5]}, true;
    out = {};
    for (const std::string& part : split(text, '+')) {
        engine::Affine next;
        if (!step(part, next)) return false;
        out = out.then(next);
    }
    return true;
}

id transformObject(const engine::Affine& m) {
    auto f = [](double v) { return static_cast<CGFloat>(v); };
    NSAffineTransform* object = [NSAffineTransform transform];
    [object setTransformStruct:{f(m.a), f(m.b), f(m.c), f(m.d), f(m.tx), f(m.ty)}];
    return object;
}

id fileData(const std::string& path, std::string& mistake) {
    NSData* data = [NSData dataWithContentsOfFile:[NSString stringWithUTF8String:path.c_str()]];
    if (!data) mistake = "cannot read " + path;
    return data;
}

std::string colorHint(const std::string& text) {
    std::vector<std::string> names;
    for (const NamedColor& known : namedColors) names.push_back(known.name);
    return studio::suggestion(text, names);
}

} // namespace

std::string expectation(const engine::InputInfo& input) {
    switch (input.kind) {
    case InputKind::number:
        if (input.type == "Angle") return "an angle in radians, or in degrees such as 45deg";
        if (input.type == "Boolean") return "yes or no";
        return isInPixels(input) ? "a number of pixels, or a percentage such as 5%" : "a number";
    case InputKind::vector:
        if (std::size_t count = lengthOf(input))
            return std::to_string(count) + " numbers, such as " + defaultOf(input) +
                   (count == 2 ? ", 50%,50% or center" : "");
        return "numbers separated by commas";
    case InputKind::color:
        return "a colour, such as #ff8000, #ff800080, orange or 1,0.5,0";
    case InputKind::transform:
        return "six numbers, or steps such as scale:0.5+rotate:30+move:10,20";
    case InputKind::image:
        return "the path of a picture, or @ for the one that was read";
    case InputKind::text:
        return "text";
    case InputKind::data:
        return "text, or file: and a path";
    case InputKind::colorSpace:
        return "the path of an ICC profile";
    }
}

id parseValue(const engine::InputInfo& input, const std::string& text, const Surroundings& around,
              std::string& mistake) {
    double value = 0;
    Numbers list;
    engine::Color shade;
    engine::Affine matrix;
    switch (input.kind) {
    case InputKind::number:
        if (number(input, text, around.extent, value)) return [NSNumber numberWithDouble:value];
        break;
    case InputKind::vector: {
        std::size_t count = lengthOf(input);
        if (!numbers(input, text, around.extent, list) || (count && list.size() != count)) break;
        std::vector<CGFloat> floats(list.begin(), list.end());
        return [CIVector vectorWithValues:floats.data() count:floats.size()];
    }
    case InputKind::color:
        if (color(text, shade))
            return [CIColor colorWithRed:CGFloat(shade.r)
                                   green:CGFloat(shade.g)
                                    blue:CGFloat(shade.b)
                                   alpha:CGFloat(shade.a)];
        break;
    case InputKind::transform:
        if (transform(text, matrix)) return transformObject(matrix);
        break;
    case InputKind::image:
        if (text == "@" && around.original) return around.original;
        if (text == "@") mistake = "@ stands for the picture that was read, but none was";
        return text == "@" ? nil : readPicture(text, mistake).image;
    case InputKind::text:
        return [NSString stringWithUTF8String:text.c_str()];
    case InputKind::data:
        if (text.starts_with("file:")) return fileData(text.substr(5), mistake);
        return [NSData dataWithBytes:text.data() length:text.size()];
    case InputKind::colorSpace:
        return fileData(text, mistake);
    }
    mistake = "'" + text + "' is not " + expectation(input) +
              (input.kind == InputKind::color ? colorHint(text) : "");
    return nil;
}

bool isSpelledRight(const engine::InputInfo& input, const std::string& text, std::string& mistake) {
    bool readsFile = input.kind == InputKind::image || input.kind == InputKind::data ||
                     input.kind == InputKind::colorSpace;
    return readsFile || parseValue(input, text, {CGRectMake(0, 0, 100, 100), nil}, mistake);
}

} // namespace commands
