// Records are read in the layout that the plugin announced.
#include "runtime/registration.h"

#include "runtime/runtime.h"
#include "syntax/source_error.h"

#include <cstring>

namespace studio {

namespace {

// The tables of each layout. The members that the host reads have the same names in both.
struct Layout12 {
    using MethodRecord = REALmethodDefinition;
    using PropertyRecord = REALproperty;
    using ConstantRecord = REALconstant;
    using EventRecord = REALevent;
};
struct Layout9 {
    using MethodRecord = REALmethodDefinition9;
    using PropertyRecord = REALproperty9;
    using ConstantRecord = REALconstant9;
    using EventRecord = REALevent9;
};

// A faulty declaration is the plugin's mistake: it is reported, and its row is skipped.
template <class Body>
void guarded(const std::string& where, Body body) {
    try {
        body();
    } catch (const SourceError& error) {
        heap().violation("registration of " + where + ": " + error.what());
    }
}

template <class Record>
std::unique_ptr<Method> readMethod(const Record& record, Class* owner, bool shared) {
    auto method = classes().makeMethod(record.declaration, owner, shared, Origin::Plugin);
    method->function = record.function;
    method->setter = record.setter;
    method->flags = record.flags;
    return method;
}

template <class Record>
void readMethods(Class& cls, const void* table, std::int32_t count, bool shared) {
    auto& list = shared ? cls.sharedMethods : cls.methods;
    for (std::int32_t i = 0; table && i < count; ++i) {
        const Record& record = static_cast<const Record*>(table)[i];
        guarded(cls.name, [&] { list.push_back(readMethod(record, &cls, shared)); });
    }
}

template <class Record>
void readProperties(Class& cls, const void* table, std::int32_t count, bool shared) {
    for (std::int32_t i = 0; table && i < count; ++i) {
        const Record& record = static_cast<const Record*>(table)[i];
        guarded(cls.name, [&] {
            Property property;
            property.name = record.name;
            property.typeName = record.type;
            property.type = classes().typeNamed(record.type);
            property.flags = record.flags;
            property.getter = record.getter;
            property.setter = record.setter;
            property.parameter = record.parameter;
            property.owner = &cls;
            property.shared = shared;
            (shared ? cls.sharedProperties : cls.properties).push_back(std::move(property));
        });
    }
}

template <class Layout>
void readTables(Class& cls, const REALclassDefinition& record) {
    readProperties<typename Layout::PropertyRecord>(cls, record.properties, record.propertyCount, false);
    readProperties<typename Layout::PropertyRecord>(cls, record.sharedProperties, record.sharedPropertyCount,
                                                    true);
    readMethods<typename Layout::MethodRecord>(cls, record.methods, record.methodCount, false);
    readMethods<typename Layout::MethodRecord>(cls, record.sharedMethods, record.sharedMethodCount, true);
    auto* constants = static_cast<const typename Layout::ConstantRecord*>(record.constants);
    for (std::int32_t i = 0; constants && i < record.constantCount; ++i)
        guarded(cls.name,
                [&] { cls.constants.push_back(classes().parseConstant(constants[i].declaration)); });
    auto* events = static_cast<const typename Layout::EventRecord*>(record.events);
    for (std::int32_t i = 0; events && i < record.eventCount; ++i)
        cls.events.push_back(events[i].declaration);
}

bool usesLayout9() { return runtime().recordVersion.value_or(12) <= 9; }

} // namespace

void registerPluginClass(REALclassDefinition* record) {
    Class* cls = classes().named(record->name);
    if (cls->isDefined()) {
        heap().violation("PluginRegisterClass: the class " + cls->name + " already exists");
        return;
    }
    Class* superclass = nullptr;
    if (record->superclass) {
        superclass = classes().find(record->superclass);
        if (!superclass) {
            heap().violation("PluginRegisterClass: " + cls->name + " inherits from " + record->superclass +
                             ", which is not registered");
            return;
        }
        cls->superclassName = record->superclass;
    }
    if (runtime().recordVersion && record->version != *runtime().recordVersion)
        heap().violation("PluginRegisterClass: the record of " + cls->name + " is of version " +
                         std::to_string(record->version) + ", but version " +
                         std::to_string(*runtime().recordVersion) + " was announced");
    cls->name = record->name;
    cls->record = record;
    cls->recordVersion = record->version;
    cls->flags = record->flags;
    cls->constructor = record->constructor;
    cls->destructor = record->destructor;
    classes().define(*cls, Origin::Plugin, superclass, record->dataSize);
    if (usesLayout9())
        readTables<Layout9>(*cls, *record);
    else
        readTables<Layout12>(*cls, *record);
    record->dataOffset = cls->dataOffset;
}

void registerPluginFunction(const void* record) {
    const char* declaration = static_cast<const REALmethodDefinition*>(record)->declaration;
    guarded(declaration, [&] {
        classes().addFunction(
            usesLayout9() ? readMethod(*static_cast<const REALmethodDefinition9*>(record), nullptr, true)
                          : readMethod(*static_cast<const REALmethodDefinition*>(record), nullptr, true));
    });
}

} // namespace studio
