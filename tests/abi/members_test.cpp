// Every member that the plugin registers, read from its records and called: with good arguments, with nil for
// each object in turn, and on an empty wrapper. A member with a type for which the test has no argument fails
// its test, so a new member cannot be forgotten.
#include "asked_family.h"
#include "good_arguments.h"
#include "plugin_test.h"
#include "raising.h"

#include <algorithm>
#include <cctype>
#include <functional>

namespace {

using studio::Kind;
using studio::Method;
using studio::Parameter;
using studio::Value;

class Members : public PluginTest, protected GoodArguments, public testing::WithParamInterface<const char*> {
  protected:
    Members() : GoodArguments(host) {}

    // --- calls ---------------------------------------------------------------------------------------------

    // Runs a call whose exceptions, if any, are the host's known ones.
    Value tolerant(const std::function<Value()>& call) {
        try {
            return call();
        } catch (const studio::HostException& exception) {
            const std::vector<std::string> known = {"NilObjectException", "UnsupportedOperationException",
                                                    "OutOfBoundsException", "RuntimeException"};
            EXPECT_NE(std::find(known.begin(), known.end(), exception.className), known.end())
                << exception.what();
            return {};
        }
    }

    // Calls with good arguments, then with each object argument nil in turn.
    void callInEveryWay(const Method& method, const std::function<Value(std::vector<Value>)>& call) {
        SCOPED_TRACE(method.declaration);
        tolerant([&] { return call(goodArguments(method.signature)); });
        for (std::size_t i = 0; i < method.signature.parameters.size(); ++i) {
            if (!method.signature.parameters[i].type->isObject()) continue;
            if (method.signature.parameters[i].type->kind == Kind::Array) continue; // arrays are never nil
            std::vector<Value> arguments = goodArguments(method.signature);
            arguments[i] = Value();
            tolerant([&] { return call(arguments); });
        }
    }

    static bool isConstructor(const Method& method) {
        return equalNames(method.signature.name, "Constructor");
    }

    static bool isEmptyResult(const Value& value) {
        switch (value.type()->kind) {
        case Kind::String:
            return value.text().empty();
        case Kind::Array:
            return value.isNil() || value.count() == 0;
        default:
            return value.type()->isObject() ? value.isNil() : value.number() == 0;
        }
    }

    void assignInEveryWay(const Method& method, const Value& object) {
        if (!method.setter) return;
        SCOPED_TRACE("assigning " + method.declaration);
        Parameter value;
        value.name = "value";
        value.type = method.signature.result;
        std::vector<Value> arguments = goodArguments(method.signature);
        auto assign = [&](Value assigned) {
            tolerant([&] {
                host.assign(object, method.signature.name, arguments, assigned);
                return Value();
            });
        };
        assign(goodArgument(value));
        if (value.type->isObject()) assign(Value());
    }

    void expectCleanButForKeptLocks() {
        studio::Report report = host.report();
        EXPECT_TRUE(report.sound()) << report.text();
        // A context on a picture leaves the picture's description locked, which the host remarks on.
        for (const std::string& remark : report.remarks)
            EXPECT_NE(remark.find("description locked"), std::string::npos) << remark;
    }

    const studio::Class& subject() { return *host.findClass(GetParam()); }
};

TEST_P(Members, OfAnObjectInGoodOrder) {
    testing::internal::CaptureStderr();
    for (const auto& method : subject().methods) {
        Value object = isConstructor(*method) || equalNames(method->signature.name, "Destructor")
                           ? host.instantiate(GetParam())
                           : sample(GetParam());
        if (object.isNil()) object = host.instantiate(GetParam());
        callInEveryWay(*method, [&](std::vector<Value> arguments) {
            return host.call(isConstructor(*method) ? host.instantiate(GetParam()) : object,
                             method->declaration, std::move(arguments));
        });
        assignInEveryWay(*method, object);
    }
    Value object = sample(GetParam());
    if (!object.isNil())
        for (const studio::Property& property : subject().properties) host.get(object, property.name);
    object = {};
    testing::internal::GetCapturedStderr();
    expectCleanButForKeptLocks();
}

TEST_P(Members, OfAnEmptyWrapperGiveEmptyResults) {
    testing::internal::CaptureStderr();
    for (const auto& method : subject().methods) {
        if (isConstructor(*method)) continue;
        SCOPED_TRACE(method->declaration);
        Value object = host.instantiate(GetParam());
        Value result = tolerant(
            [&] { return host.call(object, method->declaration, goodArguments(method->signature)); });
        if (method->signature.result) EXPECT_TRUE(isEmptyResult(result));
        assignInEveryWay(*method, object);
    }
    for (const studio::Property& property : subject().properties) {
        SCOPED_TRACE(property.name);
        EXPECT_TRUE(isEmptyResult(host.get(host.instantiate(GetParam()), property.name)));
    }
    testing::internal::GetCapturedStderr();
    expectCleanButForKeptLocks();
}

TEST_P(Members, SharedWithTheClass) {
    testing::internal::CaptureStderr();
    for (const auto& method : subject().sharedMethods)
        callInEveryWay(*method, [&](std::vector<Value> arguments) {
            return host.shared(GetParam(), method->declaration, std::move(arguments));
        });
    for (const studio::Constant& constant : subject().constants) host.constant(GetParam(), constant.name);
    testing::internal::GetCapturedStderr();
    expectCleanButForKeptLocks();
}

// Constructors, and the functions and methods that return the wrapper of a new object, make sure of the
// family first; so does every method of CIImageKaz, and no other.
class Preparing : public Members {
  protected:
    Preparing() { withholdRegistry(); }

    // Whether the plugin asked for the wrapper registry during the call. A new wrapper would have it asked
    // once more, so no wrapper is made.
    bool prepares(const std::function<Value()>& call) {
        int before = timesAskedForRegistry();
        host.failService("PluginNewInstance");
        tolerant(call);
        int after = timesAskedForRegistry();
        host.stopFailing();
        return after != before;
    }

    static bool isAmong(const std::string& declaration, const std::vector<std::string>& names) {
        return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            return declaration.starts_with(name) && !std::isalnum(declaration[name.size()]);
        });
    }
    static bool shouldPrepare(const std::string& className, const std::string& declaration) {
        if (className == "CIImageKaz") return true;
        if (declaration == "Constructor") return false; // a sampler's, which does nothing
        return isAmong(declaration,
                       {"Constructor", "copy", "TransformBy", "InsetByX", "UnionWith", "UnionWithRect",
                        "IntersectWith", "IntersectWithRect", "vectorWithX", "vectorWithXY", "vectorWithXYZ",
                        "vectorWithXYZW", "vectorWithString", "FilterWithHandle", "FilterWithName"});
    }
    std::vector<Value> argumentsFor(const Method& method) {
        if (method.declaration != "Constructor(Handle as Integer)") return goodArguments(method.signature);
        kept = sample(GetParam());
        return {kept.isNil() ? Value(0) : host.get(kept, "Handle")};
    }

    Value kept;
};

TEST_P(Preparing, IsForConstructorsAndFactoriesAndForImages) {
    testing::internal::CaptureStderr();
    for (const auto& method : subject().methods) {
        SCOPED_TRACE(method->declaration);
        bool fresh = isConstructor(*method) || equalNames(method->signature.name, "Destructor");
        Value object = fresh ? host.instantiate(GetParam()) : sample(GetParam());
        if (object.isNil()) continue; // the system makes none
        std::vector<Value> arguments = argumentsFor(*method);
        if (arguments.size() == 1 && method->declaration == "Constructor(Handle as Integer)" && kept.isNil())
            continue;
        EXPECT_EQ(prepares([&] { return host.call(object, method->declaration, arguments); }),
                  shouldPrepare(GetParam(), method->declaration));
        if (!method->setter) continue;
        Parameter assigned;
        assigned.type = method->signature.result;
        Value value = goodArgument(assigned);
        EXPECT_FALSE(prepares([&] {
            host.assign(object, method->signature.name, arguments, value);
            return Value();
        }));
    }
    for (const auto& method : subject().sharedMethods) {
        SCOPED_TRACE(method->declaration);
        std::vector<Value> arguments = goodArguments(method->signature);
        EXPECT_EQ(prepares([&] { return host.shared(GetParam(), method->declaration, arguments); }),
                  shouldPrepare(GetParam(), method->declaration));
    }
    Value object = sample(GetParam());
    for (const studio::Property& property : subject().properties) {
        if (object.isNil()) break;
        SCOPED_TRACE(property.name);
        EXPECT_FALSE(prepares([&] { return host.get(object, property.name); }));
    }
    testing::internal::GetCapturedStderr();
}

const auto kClasses = testing::Values("CIColorKaz", "CIImageKaz", "CIContextKaz", "CIVectorKaz",
                                      "CIFilterShapeKaz", "CIFilterKaz", "CISamplerKaz", "CIAttributeKaz",
                                      "CIFeatureKaz", "CIFaceFeatureKaz", "CIDetectorKaz");

INSTANTIATE_TEST_SUITE_P(Classes, Preparing, kClasses,
                         [](const auto& info) { return std::string(info.param); });

INSTANTIATE_TEST_SUITE_P(Classes, Members, kClasses,
                         [](const auto& info) { return std::string(info.param); });

class Functions : public Members {};

TEST_P(Functions, InEveryWay) {
    for (const Method* function : host.pluginFunctions())
        callInEveryWay(*function, [&](std::vector<Value> arguments) {
            return host.function(function->declaration, std::move(arguments));
        });
    expectCleanButForKeptLocks();
}

INSTANTIATE_TEST_SUITE_P(Global, Functions, testing::Values("CIColorKaz"));

class PreparingFunctions : public Preparing {};

TEST_P(PreparingFunctions, IsForAllOfThem) {
    for (const Method* function : host.pluginFunctions()) {
        SCOPED_TRACE(function->declaration);
        std::vector<Value> arguments = goodArguments(function->signature);
        EXPECT_TRUE(prepares([&] { return host.function(function->declaration, arguments); }));
    }
}

INSTANTIATE_TEST_SUITE_P(Global, PreparingFunctions, testing::Values("CIColorKaz"));

// --- guards -----------------------------------------------------------------------------------------------

// A Cocoa exception in any member becomes one host exception, and one line in the log.
class Guards : public Members {
  protected:
    // Members that send no message: fields, constants, and what only gives back or passes on.
    static bool sendsNothing(const std::string& name) {
        return isAmong(name + " ",
                       {"Handle", "Picture", "CGContext", "Constructor ", "Destructor", "Flush",
                        "kCIImageAutoAdjustEnhance", "kCIImageAutoAdjustRedEye", "kCIImageAutoAdjustFeatures",
                        "CIFeatureTypeFace", "CIDetectorTypeFace", "CIDetectorAccuracy",
                        "CIDetectorAccuracyLow", "CIDetectorAccuracyHigh", "FilterWithHandle"});
    }
    bool systemHas(const std::string& className) {
        bool ofDetectors = className == "CIDetectorKaz" || className.starts_with("CIFeature") ||
                           className == "CIFaceFeatureKaz";
        return !ofDetectors || !detector().isNil();
    }
    static bool loadsOnWorker(const std::string& name) {
        return isAmong(name, {"imageWithDataMT", "imageWithContentsOfFileMT"});
    }
    static bool isAmong(const std::string& declaration, const std::vector<std::string>& names) {
        return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            return declaration == name ||
                   (declaration.starts_with(name) && !std::isalnum(declaration[name.size()]));
        });
    }

    // A wrapper whose native object raises.
    Value raisingSubject() {
        Value object = host.instantiate(GetParam());
        *reinterpret_cast<const void**>(reinterpret_cast<char*>(object.object()) + kREALInstanceDataOffset) =
            raisingObject();
        return object;
    }
    // What would be released with the wrapper is not its own.
    static void emptied(const Value& object) {
        *reinterpret_cast<const void**>(reinterpret_cast<char*>(object.object()) + kREALInstanceDataOffset) =
            nullptr;
    }

    void expectOneException(const std::string& declaration, const std::function<void()>& call) {
        SCOPED_TRACE(declaration);
        std::string raised;
        testing::internal::CaptureStderr();
        auto calls = host.callsDuring([&] { raised = raisedBy(call); });
        std::string log = testing::internal::GetCapturedStderr();
        int exceptions = 0, lines = 0;
        for (const studio::ServiceCall& service : calls)
            exceptions += service.service == "RuntimeRaiseException";
        std::string line = std::string("A Raised: ") + kRaisedReason;
        for (std::size_t at = 0; (at = log.find(line, at)) != std::string::npos; ++at) ++lines;

        bool silent = sendsNothing(declaration);
        bool worker = loadsOnWorker(declaration);
        EXPECT_EQ(exceptions, silent || worker ? 0 : 1);
        EXPECT_EQ(lines, silent || worker ? 0 : 1);
        EXPECT_EQ(raised, silent || worker ? "(none)" : std::string("RuntimeException: ") + kRaisedReason);
        if (worker) EXPECT_NE(log.find(kRaisedReason), std::string::npos);
    }
};

TEST_P(Guards, AreAroundEveryMethodAndProperty) {
    for (const auto& method : subject().methods) {
        if (isConstructor(*method)) continue;
        std::vector<Value> arguments = goodArguments(method->signature);
        Value object = raisingSubject();
        expectOneException(method->declaration, [&] { host.call(object, method->declaration, arguments); });
        if (method->setter) {
            Parameter assigned;
            assigned.type = method->signature.result;
            Value value = goodArgument(assigned);
            expectOneException(method->declaration,
                               [&] { host.assign(object, method->signature.name, arguments, value); });
        }
        emptied(object);
    }
    for (const studio::Property& property : subject().properties) {
        if (property.name == "Name") continue; // an attribute's own text
        Value object = raisingSubject();
        expectOneException(property.name, [&] { host.get(object, property.name); });
        emptied(object);
    }
    expectCleanButForKeptLocks();
}

TEST_P(Guards, AreAroundEveryConstructor) {
    for (const auto& method : subject().methods) {
        if (!isConstructor(*method)) continue;
        std::vector<Value> arguments = goodArguments(method->signature);
        bool takesHandle = method->declaration == "Constructor(Handle as Integer)";
        if (!systemHas(GetParam())) continue; // nothing raises where there are no detectors
        if (takesHandle) arguments = {static_cast<int>(reinterpret_cast<std::intptr_t>(raisingObject()))};
        Value object = host.instantiate(GetParam());
        RaisingClasses raising;
        expectOneException(method->declaration, [&] { host.call(object, method->declaration, arguments); });
        EXPECT_EQ(host.get(object, "Handle").integer(), 0) << method->declaration;
    }
    expectCleanButForKeptLocks();
}

TEST_P(Guards, AreAroundEverySharedMethod) {
    for (const auto& method : subject().sharedMethods) {
        std::vector<Value> arguments = goodArguments(method->signature);
        RaisingClasses raising;
        expectOneException(method->declaration,
                           [&] { host.shared(GetParam(), method->declaration, arguments); });
    }
    expectCleanButForKeptLocks();
}

INSTANTIATE_TEST_SUITE_P(Classes, Guards, kClasses, [](const auto& info) { return std::string(info.param); });

class GuardedFunctions : public Guards {};

TEST_P(GuardedFunctions, AreAll) {
    for (const Method* function : host.pluginFunctions()) {
        std::vector<Value> arguments = goodArguments(function->signature);
        RaisingClasses raising;
        expectOneException(function->declaration, [&] { host.function(function->declaration, arguments); });
    }
    expectCleanButForKeptLocks();
}

INSTANTIATE_TEST_SUITE_P(Global, GuardedFunctions, testing::Values("CIColorKaz"));

} // namespace
