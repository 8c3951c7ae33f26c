// Fuzzing the product's members on the strict host: any calls in any order, with nil, huge counts, negative
// sizes, what is not a number, and options that contain themselves. The host must find nothing misused and
// nothing left alive.
#include "../abi/good_arguments.h"
#include "choices.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <new>

#include <fcntl.h>
#include <unistd.h>

extern "C" void REALPluginMain(REALResolver resolver);

#if __has_feature(address_sanitizer)
// The sanitizer's own ends the process when there is not enough memory.
void* operator new(std::size_t size) {
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace {

using fuzz::Choices;
using studio::Kind;
using studio::Value;

class Calls {
  public:
    Calls(studio::Host& host, Choices& choices) : host_(host), choices_(choices), good_(host) {
        // Those of the family are given, not called.
        for (const studio::Class* cls : host.pluginClasses())
            if (cls->name.starts_with("CI")) classes_.push_back(cls);
        for (const studio::Method* function : host.pluginFunctions())
            if (function->declaration.find("CI") != std::string::npos) functions_.push_back(function);
        if (const char* folder = std::getenv("KAZ_PHOTOS")) good_.file = std::string(folder) + "/coffee.png";
    }
    ~Calls() {
        for (Value& cycle : cycles_) host_.call(cycle, "Clear");
    }

    void make() {
        std::size_t which = choices_.below(classes_.size() + 1);
        if (which == classes_.size()) {
            const studio::Method& function = *choices_.among(functions_);
            keep(host_.function(function.declaration, arguments(function.signature)));
            return;
        }
        const studio::Class& cls = *classes_[which];
        std::size_t members = cls.methods.size() + cls.sharedMethods.size() + cls.properties.size();
        std::size_t member = choices_.below(members);
        if (member < cls.methods.size()) {
            callMethod(cls, *cls.methods[member]);
        } else if (member -= cls.methods.size(); member < cls.sharedMethods.size()) {
            const studio::Method& method = *cls.sharedMethods[member];
            keep(host_.shared(cls.name, method.declaration, arguments(method.signature)));
        } else if (member < members) {
            const studio::Property& property = cls.properties[member - cls.sharedMethods.size()];
            Value self = object(cls.name);
            if (!self.isNil()) keep(host_.get(self, property.name));
        }
    }

  private:
    void callMethod(const studio::Class& cls, const studio::Method& method) {
        if (equalNames(method.signature.name, "Constructor")) {
            Value fresh = host_.instantiate(cls.name);
            keep(fresh);
            host_.call(fresh, method.declaration, arguments(method.signature));
            return;
        }
        Value self = object(cls.name);
        if (self.isNil()) return;
        std::vector<Value> given = arguments(method.signature);
        if (method.setter && choices_.below(2))
            host_.assign(self, method.signature.name, given, argument({"value", method.signature.result}));
        else
            keep(host_.call(self, method.declaration, given));
    }

    void keep(Value value) {
        if (!value.isNil() && kept_.size() < 40) kept_.push_back(std::move(value));
    }

    std::vector<Value> arguments(const studio::Signature& signature) {
        std::vector<Value> result;
        for (const studio::Parameter& parameter : signature.parameters)
            result.push_back(argument({parameter.name, parameter.type}));
        return result;
    }

    struct Wanted {
        std::string name;
        const studio::Type* type;
    };
    Value argument(const Wanted& wanted) {
        switch (wanted.type->kind) {
        case Kind::Boolean:
            return choices_.below(2) == 1;
        case Kind::Int32:
            return number(wanted.name);
        case Kind::UInt32:
            return static_cast<unsigned>(number(wanted.name));
        case Kind::Single:
            return static_cast<float>(real());
        case Kind::Double:
            return real();
        case Kind::String:
            return text();
        case Kind::Object:
            return object(wanted.type->name);
        case Kind::Array:
            return array(*wanted.type->element);
        default:
            throw std::logic_error("no argument is known for " + wanted.name);
        }
    }

    // Addresses and lengths of memory are taken at their word, on every host: those are right or 0.
    int number(const std::string& name) {
        if (equalNames(name, "Handle")) {
            if (kept_.empty() || choices_.below(4) == 0) return 0;
            Value& object = choices_.among(kept_);
            try {
                return static_cast<int>(host_.get(object, "Handle").integer());
            } catch (const studio::UsageError&) { // it has none
                return 0;
            }
        }
        constexpr int kLengths[] = {128, 0, 1, 64};
        if (equalNames(name, "Length") || equalNames(name, "DataLength")) return choices_.among(kLengths);
        constexpr int kInts[] = {
            8, 0, 1, -1, 4, 16, 32, 23, 27, 34, 100, -100, 700, 65536, -65536, 0x7FFFFFFF, -0x7FFFFFFF - 1};
        return choices_.among(kInts);
    }

    double real() {
        constexpr double kInfinite = std::numeric_limits<double>::infinity();
        static const double kReals[] = {
            0.5,  0,    1,     -1,        2,          10,           100,        -100,   1e-9,  1e6,
            -1e6, 1e30, -1e30, kInfinite, -kInfinite, std::nan(""), 3.14159265, 1e-300, 1e300, 2147483648.0};
        return choices_.among(kReals);
    }

    Value text() {
        static const std::string kTexts[] = {"inputImage",
                                             "",
                                             "CIColorInvert",
                                             "CIGaussianBlur",
                                             "inputRadius",
                                             "CIAffineTransform",
                                             "inputTransform",
                                             "outputImage",
                                             "inputColor",
                                             "inputCenter",
                                             "CIFalseColor",
                                             "CITwirlDistortion",
                                             "CICategoryBlur",
                                             "[1 2 3 4]",
                                             "1 0 0 1",
                                             "[nan inf -inf 1e999]",
                                             "inputNothing",
                                             std::string(100000, 'x'),
                                             std::string("a\0b", 3),
                                             "\xFF\xFE\xC0",
                                             "file:///dev/zero",
                                             "no-such:url",
                                             "clamp",
                                             "nearest",
                                             "8"};
        return Value(choices_.among(kTexts));
    }

    // An object of the class: one of before, a good one, or nil.
    Value object(const std::string& className) {
        if (equalNames(className, "Dictionary")) return dictionary();
        std::size_t how = choices_.below(8);
        if (how == 7) return {};
        if (how < 4)
            for (auto kept = kept_.rbegin(); kept != kept_.rend(); ++kept)
                if (equalNames(kept->className(), className)) return *kept;
        Value made = good_.sample(className);
        keep(made);
        return made;
    }

    Value dictionary() {
        Value inner = choices_.below(2) ? Value(real()) : text();
        switch (choices_.below(6)) {
        case 0:
            return {};
        case 1: { // contains itself
            Value cycle = host_.dictionary();
            host_.assign(cycle, "Value", {"self"}, cycle);
            cycles_.push_back(cycle);
            return cycle;
        }
        case 2:
            for (int i = 0; i < 1000; ++i) inner = host_.array("Variant", {inner});
            return host_.dictionary(
                {{"CIDetectorAccuracy", inner}, {inner.isNil() ? Value(1) : Value("k"), inner}});
        case 3:
            return host_.dictionary({{"CIDetectorMinFeatureSize", real()}, {"CIDetectorTracking", true}});
        case 4:
            return host_.dictionary({{text(), inner}, {real(), text()}});
        default:
            return host_.dictionary();
        }
    }

    Value array(const studio::Type& element) {
        std::vector<Value> elements;
        constexpr std::size_t kCounts[] = {2, 0, 1, 4, 100, 20000};
        std::size_t count = choices_.among(kCounts);
        for (std::size_t i = 0; i < count; ++i) {
            if (element.kind == Kind::String)
                elements.push_back(text());
            else if (element.kind == Kind::Single)
                elements.push_back(static_cast<float>(real()));
            else
                elements.push_back(real());
        }
        return host_.array(element.name, elements);
    }

    studio::Host& host_;
    Choices& choices_;
    GoodArguments good_;
    std::vector<const studio::Class*> classes_;
    std::vector<const studio::Method*> functions_;
    std::vector<Value> kept_, cycles_;
};

studio::Host& theHost() {
    static studio::Host* host = [] {
        auto* made = new studio::Host;
        made->loadPlugin(KAZ_FAMILY);
        made->loadPlugin(REALPluginMain);
        return made;
    }();
    return *host;
}

void fail(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    studio::Host& host = theHost();
    {
        Choices choices(bytes, size);
        Calls calls(host, choices);
        for (int i = 0; i < 12 && choices.left(); ++i) {
            try {
                calls.make();
            } catch (const studio::HostException&) {
            } catch (const studio::UsageError&) {
            } catch (const std::bad_alloc&) { // of an array that was to be handed over
            }
        }
    }
    host.takePendingException();
    studio::Report report = host.report();
    if (!report.sound()) fail(report.faults());
    return 0;
}
