// Every filter's attributes against a table of Core Image's.
#include "support.h"

#include <fstream>
#include <map>

namespace {

/// The lines of one filter in the table.
struct Facts {
    std::string filter;
    std::map<std::string, std::string> inputs;
};

std::map<std::string, Facts> readFacts() {
    std::map<std::string, Facts> all;
    std::ifstream file(KAZ_FILTER_FACTS);
    Facts* current = nullptr;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        bool isInput = line[0] == ' ';
        if (isInput) line.erase(0, 2);
        std::string name = line.substr(0, line.find(' '));
        if (isInput) {
            current->inputs[name] = line;
        } else {
            current = &all[name];
            current->filter = line;
        }
    }
    return all;
}

std::string numbers(const char* open, const std::vector<double>& values, const char* close) {
    std::string out = open;
    for (double v : values) {
        char text[40];
        std::snprintf(text, sizeof text, "%.6g", v);
        out += (out.size() > 1 ? " " : "") + std::string(text);
    }
    return out + close;
}

/// A value as the table writes it.
std::string valueText(id value) {
    auto is = [value](Class c) { return [value isKindOfClass:c]; };
    if (is([NSNumber class])) return numbers("", {[value doubleValue]}, "");
    if (is([NSString class])) return "\"" + str(value) + "\"";
    if (is([NSData class])) return std::to_string([(NSData*)value length]) + " bytes";
    if (is([CIVector class])) {
        std::vector<double> values;
        for (size_t i = 0; i < [(CIVector*)value count]; ++i) values.push_back([value valueAtIndex:i]);
        return numbers("[", values, "]");
    }
    if (is([CIColor class])) {
        CIColor* c = value;
        return numbers("(", {[c red], [c green], [c blue], [c alpha]}, ")");
    }
    if (is([NSAffineTransform class])) {
        NSAffineTransformStruct m = [(NSAffineTransform*)value transformStruct];
        return numbers("[", {m.m11, m.m12, m.m21, m.m22, m.tX, m.tY}, "]");
    }
    return "a " + str(NSStringFromClass([value class]));
}

std::string withoutPrefix(NSString* name, const std::string& prefix) {
    std::string text = str(name);
    return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

std::string inputText(NSString* key, NSDictionary* attributes) {
    std::string out = str(key) + " \"" + str([attributes objectForKey:kCIAttributeDisplayName]) + "\" " +
                      str([attributes objectForKey:kCIAttributeClass]);
    if (NSString* type = [attributes objectForKey:kCIAttributeType])
        out += " " + withoutPrefix(type, "CIAttributeType");
    for (NSString* fact in @[
             kCIAttributeDefault, kCIAttributeIdentity, kCIAttributeMin, kCIAttributeMax,
             kCIAttributeSliderMin, kCIAttributeSliderMax
         ])
        if (id value = [attributes objectForKey:fact])
            out += " " + withoutPrefix(fact, "CIAttribute") + " " + valueText(value);
    return out;
}

std::string filterText(NSDictionary* attributes) {
    std::string out = str([attributes objectForKey:kCIAttributeFilterName]) + " \"" +
                      str([attributes objectForKey:kCIAttributeFilterDisplayName]) + "\" " +
                      str([attributes objectForKey:kCIAttributeFilterAvailable_Mac]);
    NSArray* categories = [attributes objectForKey:kCIAttributeFilterCategories];
    for (NSString* category in [categories sortedArrayUsingSelector:@selector(compare:)])
        out += " " + withoutPrefix(category, "CICategory");
    return out;
}

} // namespace

TEST(CIFilterFacts, EveryFilterIsAsInTheTable) {
    auto facts = readFacts();
    for (NSString* name in [CIFilter filterNamesInCategory:nil]) {
        SCOPED_TRACE(str(name));
        ASSERT_EQ(facts.count(str(name)), 1u) << "not a filter of these systems";
        const Facts& expected = facts[str(name)];
        CIFilter* filter = [CIFilter filterWithName:name];
        NSDictionary* attributes = [filter attributes];
        EXPECT_EQ(filterText(attributes), expected.filter);
        EXPECT_EQ([[filter inputKeys] count], expected.inputs.size());
        for (const auto& [key, line] : expected.inputs) {
            NSString* input = [NSString stringWithUTF8String:key.c_str()];
            EXPECT_TRUE([[filter inputKeys] containsObject:input]) << key;
            EXPECT_EQ(inputText(input, [attributes objectForKey:input]), line);
        }
    }
}

TEST(CIFilterFacts, ValuesHaveTheClassOfTheirInput) {
    for (NSString* name in [CIFilter filterNamesInCategory:nil]) {
        CIFilter* filter = [CIFilter filterWithName:name];
        for (NSString* key in [filter inputKeys]) {
            NSDictionary* attributes = [[filter attributes] objectForKey:key];
            Class declared = NSClassFromString([attributes objectForKey:kCIAttributeClass]);
            ASSERT_TRUE(declared != nil) << str(name) << str(key);
            for (NSString* fact in @[ kCIAttributeDefault, kCIAttributeIdentity ])
                if (id value = [attributes objectForKey:fact])
                    EXPECT_TRUE([value isKindOfClass:declared]) << str(name) << str(key);
            for (NSString* fact in
                 @[ kCIAttributeMin, kCIAttributeMax, kCIAttributeSliderMin, kCIAttributeSliderMax ])
                if (id value = [attributes objectForKey:fact])
                    EXPECT_TRUE([value isKindOfClass:[NSNumber class]]) << str(name) << str(key);
        }
    }
}
