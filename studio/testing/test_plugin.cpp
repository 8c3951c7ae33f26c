#include "test_plugin.h"

#include <cstring>

std::string testPluginLog;
REALResolver testPluginResolver;

namespace {

namespace service = host::service;

#define SERVICE(name) testService<service::name>(#name)

REALclassDefinition counterClass, subCounterClass;

struct CounterData {
    std::int32_t count;
    REALobject friendObject;
};
CounterData& data(REALobject self) {
    return *reinterpret_cast<CounterData*>(reinterpret_cast<char*>(self) + counterClass.dataOffset);
}

void raise(const char* className, const char* message) {
    REALobject exception = SERVICE(PluginNewInstance)(className);
    REALstring text = SERVICE(REALBuildString)(message, std::int32_t(std::strlen(message)));
    SERVICE(REALSetPropValueString)(exception, "Message", text);
    SERVICE(RuntimeRaiseException)(exception);
    SERVICE(REALUnlockString)(text);
    SERVICE(REALUnlockObject)(exception);
}

// ---- the class -------------------------------------------------------------------------------------------

void construct(REALobject self) {
    testPluginLog += "+Counter ";
    data(self).count = 100;
}
void destruct(REALobject) { testPluginLog += "-Counter "; }
void destructorMethod(REALobject) { testPluginLog += "Destructor "; }
void constructSub(REALobject) { testPluginLog += "+Sub "; }
void destructSub(REALobject) { testPluginLog += "-Sub "; }

void constructWith(REALobject self, std::int32_t start) { data(self).count = start; }
void constructPlain(REALobject self) { data(self).count = 7; }

std::int32_t addInteger(REALobject self, std::int32_t amount) { return data(self).count += amount; }
double addDouble(REALobject self, double amount) { return data(self).count + amount; }
float half(REALobject self) { return float(data(self).count) / 2; }
bool isBig(REALobject self, std::int64_t limit) { return data(self).count > limit; }

REALstring describe(REALobject, REALstring prefix) {
    REALstringData bytes;
    if (!SERVICE(PluginGetStringData)(prefix, kREALTextEncodingUTF8, &bytes)) return nullptr;
    std::string text = std::string(static_cast<char*>(bytes.data), bytes.length) + "!";
    SERVICE(PluginDisposeStringData)(&bytes);
    REALstring result = SERVICE(REALBuildString)(text.data(), std::int32_t(text.size()));
    SERVICE(REALSetStringEncoding)(result, kREALTextEncodingUTF8);
    return result;
}

REALobject itself(REALobject self) {
    SERVICE(REALLockObject)(self);
    return self;
}
REALobject itselfUnlocked(REALobject self) { return self; }
void overRelease(REALobject, REALobject other) { SERVICE(REALUnlockObject)(other); }
void leak(REALobject self) { SERVICE(REALLockObject)(self); }
std::int32_t fail(REALobject self) {
    raise("NilObjectException", "image is nil");
    return data(self).count;
}
void raiseUnknown(REALobject) {
    // An unknown class gives null.
    if (!SERVICE(PluginNewInstance)("NoSuchException")) raise("RuntimeException", "fallback");
}

double stored = 0;
double valueFor(REALobject, REALstring key) {
    return stored +
           double(testService<std::int32_t (*)(REALstring)>("StringGetCString") ? key != nullptr : 0);
}
void setValueFor(REALobject, REALstring, double value) { stored = value; }

std::int32_t getDouble(REALobject self, std::uint32_t parameter) {
    return data(self).count * std::int32_t(parameter);
}
void setDouble(REALobject self, std::uint32_t parameter, std::int32_t value) {
    data(self).count = value / std::int32_t(parameter);
}

REALarray squares(std::int32_t count) {
    REALarray array = SERVICE(RuntimeArrayCreateSingleDimBoundedArray)(kREALArrayInt32, -1);
    using Insert = void (*)(REALarray, std::int32_t, std::int32_t);
    for (std::int32_t i = 0; i < count; ++i)
        reinterpret_cast<Insert>(SERVICE(RuntimeArrayDirectGetInsertProc)(array))(array, i, i * i);
    return array;
}

float sum(REALarray values) {
    using Get = void (*)(REALarray, std::int32_t, float*);
    float total = 0;
    for (std::int32_t i = 0; i <= SERVICE(RuntimeUBound)(values); ++i) {
        float value;
        reinterpret_cast<Get>(SERVICE(RuntimeArrayDirectGetGetProc)(values))(values, i, &value);
        total += value;
    }
    return total;
}

REALobject fillDictionary() {
    REALobject dictionary = SERVICE(PluginNewInstance)("Dictionary");
    auto set = reinterpret_cast<void (*)(REALobject, REALobject, REALobject)>(
        SERVICE(REALLoadObjectMethod)(dictionary, "Value(key As Variant, Assigns _value As Variant)"));
    REALobject key = SERVICE(Int32ToVariant)(5), value = SERVICE(DoubleToVariant)(2.5);
    set(dictionary, key, value);
    SERVICE(REALUnlockObject)(key);
    SERVICE(REALUnlockObject)(value);
    return dictionary;
}

double lookup(REALobject dictionary, std::int32_t index) {
    auto keyAt = reinterpret_cast<REALobject (*)(REALobject, std::int32_t)>(
        SERVICE(REALLoadObjectMethod)(dictionary, "Key(index As Integer) As Variant"));
    auto valueOf = reinterpret_cast<REALobject (*)(REALobject, REALobject)>(
        SERVICE(REALLoadObjectMethod)(dictionary, "Value(key As Variant) As Variant"));
    REALobject key = keyAt(dictionary, index);
    if (!key) return -1;
    REALobject value = valueOf(dictionary, key);
    double result = SERVICE(VariantToDouble)(value);
    SERVICE(REALUnlockObject)(key);
    SERVICE(REALUnlockObject)(value);
    return result;
}

std::int32_t waitAround(std::int32_t times) {
    for (std::int32_t i = 0; i < times; ++i) SERVICE(REALYieldToRB)();
    return times;
}

// ---- the tables ------------------------------------------------------------------------------------------

#define FUNCTION(f) reinterpret_cast<void*>(&f)

REALmethodDefinition methods[] = {
    {FUNCTION(destructorMethod), nullptr, "Destructor", 4, {}},
    {FUNCTION(constructPlain), nullptr, "Constructor", 4, {}},
    {FUNCTION(constructWith), nullptr, "Constructor(Start as Integer)", 4, {}},
    {FUNCTION(addInteger), nullptr, "Add(amount as integer) as Integer", 4, {}},
    {FUNCTION(addDouble), nullptr, "Add(amount as DOUBLE) as double", 0x40000, {}},
    {FUNCTION(half), nullptr, "half as single", 4, {}},
    {FUNCTION(isBig), nullptr, "IsBig(limit as Int64 = 50) as Boolean", 4, {}},
    {FUNCTION(describe), nullptr, "Describe(prefix as string = \"none\") as String", 4, {}},
    {FUNCTION(itself), nullptr, "Itself as CounterTest", 4, {}},
    {FUNCTION(itselfUnlocked), nullptr, "ItselfUnlocked as CounterTest", 4, {}},
    {FUNCTION(overRelease), nullptr, "OverRelease(other as Object)", 4, {}},
    {FUNCTION(leak), nullptr, "Leak", 4, {}},
    {FUNCTION(fail), nullptr, "Fail as Integer", 4, {}},
    {FUNCTION(raiseUnknown), nullptr, "RaiseUnknown", 4, {}},
    {FUNCTION(valueFor), FUNCTION(setValueFor), "ValueFor(key as string) as double", 4, {}},
};
REALmethodDefinition sharedMethods[] = {
    {FUNCTION(squares), nullptr, "Squares(count as integer) as integer()", 4, {}},
    {FUNCTION(sum), nullptr, "Sum(values() as single) as single", 4, {}},
};
REALproperty properties[] = {
    {nullptr, "Handle", "Integer", 6, kREALStandardAccessor, nullptr, 0, {}},
    {nullptr, "Companion", "CounterTest", 6, kREALStandardAccessor, kREALStandardAccessor, 4, {}},
    {nullptr, "Tripled", "Integer", 6, FUNCTION(getDouble), FUNCTION(setDouble), 3, {}},
};
REALconstant constants[] = {
    {"kName = \"counter\"", {}},
    {"kLimit = 23", {}},
};
REALmethodDefinition functions[] = {
    {FUNCTION(fillDictionary), nullptr, "NewTestDictionary as Dictionary", 4, {}},
    {FUNCTION(lookup), nullptr, "LookupTest(d as dictionary, index as integer) as double", 4, {}},
    {FUNCTION(waitAround), nullptr, "WaitTest(times as integer) as integer", 4, {}},
};

template <class Record>
struct Old;
template <>
struct Old<REALmethodDefinition> {
    using type = REALmethodDefinition9;
};
template <>
struct Old<REALproperty> {
    using type = REALproperty9;
};
template <>
struct Old<REALconstant> {
    using type = REALconstant9;
};

// The older layouts are prefixes of the newer ones.
template <class Record, std::size_t count>
void* table(Record (&records)[count], bool old) {
    using Short = typename Old<Record>::type;
    static Short shortened[count];
    for (std::size_t i = 0; i < count; ++i) std::memcpy(&shortened[i], &records[i], sizeof(Short));
    return old ? static_cast<void*>(shortened) : records;
}

void registerAll(REALResolver resolver, std::int32_t version) {
    testPluginResolver = resolver;
    testPluginLog.clear();
    stored = 0;
    SERVICE(RegisterPluginVersion)(version);
    bool old = version == 9;
    counterClass = {};
    counterClass.version = version;
    counterClass.name = "CounterTest";
    counterClass.dataSize = 16;
    counterClass.constructor = FUNCTION(construct);
    counterClass.destructor = FUNCTION(destruct);
    counterClass.properties = table(properties, old);
    counterClass.propertyCount = 3;
    counterClass.methods = table(methods, old);
    counterClass.methodCount = std::size(methods);
    counterClass.constants = table(constants, old);
    counterClass.constantCount = 2;
    counterClass.flags = 4;
    // A table of its own: the template above keeps one per type and length.
    counterClass.sharedMethods = table(sharedMethods, old);
    counterClass.sharedMethodCount = 2;
    SERVICE(PluginRegisterClass)(&counterClass);
    subCounterClass = {};
    subCounterClass.version = version;
    subCounterClass.name = "SubCounterTest";
    subCounterClass.superclass = "CounterTest";
    subCounterClass.constructor = FUNCTION(constructSub);
    subCounterClass.destructor = FUNCTION(destructSub);
    subCounterClass.flags = 4;
    SERVICE(PluginRegisterClass)(&subCounterClass);
    for (REALmethodDefinition& function : functions) SERVICE(PluginRegisterMethod)(&function);
}

} // namespace

void testPlugin12(REALResolver resolver) { registerAll(resolver, 12); }
void testPlugin9(REALResolver resolver) { registerAll(resolver, 9); }
