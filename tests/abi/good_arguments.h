// Good arguments for every member that the plugin registers, by the type and the name of the parameter.
#pragma once

#include <studio/host.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

inline bool equalNames(std::string a, std::string b) {
    auto lower = [](std::string& s) { std::transform(s.begin(), s.end(), s.begin(), ::tolower); };
    lower(a);
    lower(b);
    return a == b;
}

// The makers throw std::logic_error for a type that they know no argument for, so a new member cannot be
// forgotten.
class GoodArguments {
  public:
    using Kind = studio::Kind;
    using Method = studio::Method;
    using Parameter = studio::Parameter;
    using Value = studio::Value;

    explicit GoodArguments(studio::Host& host) : host_(host) {}

    std::string file = "no-such-file.png"; // what a FolderItem is

    Value image() {
        Value endless =
            host_.shared("CIImageKaz", "imageWithColor", {host_.function("NewCIColorKaz", {1.0, 0.5, 0.0})});
        return host_.call(endless, "imageByCroppingToRect", {rect()});
    }
    Value rect() { return host_.create("CGRectKaz", {0.0, 0.0, 8.0, 4.0}); }
    Value filter() {
        Value filter = host_.shared("CIFilterKaz", "FilterWithName", {"CIColorInvert"});
        host_.call(filter, "SetDefaults");
        return filter;
    }
    Value cgContext() { return host_.create("CGContextKaz", {8, 4}); }
    Value cgImage() { return host_.call(cgContext(), "CreateImage"); }
    // Nil on a system without detectors.
    Value detector() {
        Value type = host_.shared("CIDetectorKaz", "CIDetectorTypeFace");
        if (type.text().empty()) return {};
        return host_.create("CIDetectorKaz", {type, Value(), Value()});
    }
    Value face() {
        Value detector = this->detector();
        if (detector.isNil()) return {};
        const char* folder = std::getenv("KAZ_PHOTOS");
        Value file = host_.function("GetFolderItem", {std::string(folder ? folder : ".") + "/astronaut.png"});
        return host_.call(detector, "featuresInImage", {host_.function("NewCIImagewithFileKaz", {file})})
            .at(0);
    }
    Value context() { return host_.function("NewCIContextKaz", {cgContext()}); }

    // An object of the class in good working order; nil when the system makes none.
    Value sample(const std::string& className) {
        const std::map<std::string, std::function<Value()>> samples = {
            {"CIColorKaz",
             [&] {
                 return host_.function("NewCIColorKaz", {1.0, 0.5, 0.0});
             }},
            {"CIImageKaz", [&] { return image(); }},
            {"CIContextKaz", [&] { return context(); }},
            {"CIVectorKaz",
             [&] {
                 return host_.function("NewCIVectorWithXYKaz", {1.0, 2.0});
             }},
            {"CIFilterShapeKaz", [&] { return host_.create("CIFilterShapeKaz", {rect()}); }},
            {"CIFilterKaz", [&] { return filter(); }},
            {"CISamplerKaz", [&] { return host_.function("NewCISamplerKaz", {image()}); }},
            {"CIAttributeKaz", [&] { return host_.call(filter(), "AttributesItem", {0}); }},
            {"CGColorKaz",
             [&] {
                 return host_.create("CGColorKaz", {1.0, 0.0, 0.0});
             }},
            {"CGColorSpaceKaz", [&] { return host_.shared("CGColorSpaceKaz", "SRGB"); }},
            {"CGContextKaz", [&] { return cgContext(); }},
            {"CGImageKaz", [&] { return cgImage(); }},
            {"CGPointKaz",
             [&] {
                 return host_.create("CGPointKaz", {1.0, 2.0});
             }},
            {"CGRectKaz", [&] { return rect(); }},
            {"NSAffineTransformKaz", [&] { return host_.create("NSAffineTransformKaz"); }},
            {"MemoryBlock", [&] { return host_.memoryBlock(std::string(128, '\x7F')); }},
            {"FolderItem", [&] { return host_.function("GetFolderItem", {file}); }},
            {"Picture",
             [&] {
                 return host_.create("Picture", {8, 4, 32});
             }},
            {"Dictionary",
             [&] {
                 return host_.dictionary({{"key", 1}});
             }},
            {"CIDetectorKaz", [&] { return detector(); }},
            {"CIFeatureKaz", [&] { return face(); }},
            {"CIFaceFeatureKaz", [&] { return face(); }},
        };
        for (const auto& [name, make] : samples)
            if (equalNames(name, className)) return make();
        throw std::logic_error("no argument is known for the class " + className);
    }

    Value goodArgument(const Parameter& parameter) {
        // Numbers that suit each other, by what they are called.
        const std::map<std::string, int> integers = {
            {"BytesPerRow", 32}, {"Width", 8}, {"Height", 4}, {"Format", 23}, {"Length", 128},
            {"DataLength", 128}, {"index", 0}, {"x", 1},      {"y", 1},       {"Handle", 0},
        };
        const studio::Type& type = *parameter.type;
        switch (type.kind) {
        case Kind::Boolean:
            return true;
        case Kind::Int32:
        case Kind::UInt32:
            for (const auto& [name, value] : integers)
                if (equalNames(name, parameter.name))
                    return type.kind == Kind::Int32 ? Value(value) : Value(static_cast<unsigned>(value));
            break;
        case Kind::Single:
            return 0.5f;
        case Kind::Double:
            return 0.5;
        case Kind::String:
            return parameter.name == "key" ? "inputImage" : "CIColorInvert";
        case Kind::Object:
            return sample(type.name);
        case Kind::Array:
            if (type.element->kind == Kind::Single) return host_.array("Single", {1.0f, 2.0f});
            if (type.element->kind == Kind::Double) return host_.array("Double", {1.0, 2.0});
            if (type.element->kind == Kind::String) return host_.array("String", {"CICategoryBlur"});
            break;
        default:
            break;
        }
        throw std::logic_error("no argument is known for " + parameter.name + " as " + type.name);
    }

    std::vector<Value> goodArguments(const studio::Signature& signature) {
        std::vector<Value> arguments;
        for (const Parameter& parameter : signature.parameters) arguments.push_back(goodArgument(parameter));
        return arguments;
    }

  private:
    studio::Host& host_;
};
