// Fitting the class records to the running host, and registering them.
#include <hostapi/records.h>
#include <hostapi/registration.h>
#include <hostapi/services.h>

#include <cstdlib>
#include <cstring>
#include <limits>

REALResolver gResolver = nullptr;
double rbversion_rbversion = 0.0;
std::int32_t CurrentREALControlVersion = 12;

namespace {

constexpr double kConsoleFlagsVersion = 2010.029;

void fixFlags(std::uint32_t& flags) {
    if (rbversion_rbversion >= kConsoleFlagsVersion) {
        if (flags & host::kConsoleSafe) flags |= 4;
        if (flags & host::kConsoleSafe8) flags |= 8;
    }
    flags &= ~(host::kConsoleSafe | host::kConsoleSafe8 | host::kDesktopOnly);
}

template <class Record>
void fixTable(void* table, std::int32_t count) {
    if (!table || count < 1) return;
    for (std::int32_t i = 0; i < count; ++i) fixFlags(static_cast<Record*>(table)[i].flags);
}

// A table of `Old` records, each the beginning of a `New` one. Null when there is nothing to copy or the size
// does not fit a signed length.
template <class Old, class New>
Old* shortened(const void* table, std::int32_t count) {
    static_assert(sizeof(Old) < sizeof(New));
    if (!table || count <= 0) return nullptr;
    if (count > std::numeric_limits<std::int32_t>::max() / static_cast<std::int32_t>(sizeof(Old)))
        return nullptr;
    Old* copy = static_cast<Old*>(std::calloc(static_cast<std::size_t>(count), sizeof(Old)));
    if (!copy) return nullptr;
    for (std::int32_t i = 0; i < count; ++i)
        std::memcpy(copy + i, static_cast<const New*>(table) + i, sizeof(Old));
    return copy;
}

REALmethodDefinition9* fixMethods(const void* table, std::int32_t count) {
    return shortened<REALmethodDefinition9, REALmethodDefinition>(table, count);
}

std::int32_t roundedUp(std::int32_t size) { return (size + 15) & ~15; }

} // namespace

std::int32_t RecordVersionForHost(double hostVersion) {
    if (hostVersion >= 2013.03) return 12;
    if (hostVersion >= 2013.0) return 11;
    if (hostVersion >= 2012.0) return 10;
    return 9;
}

void NegotiateRecordVersion(REALResolver resolver) {
    gResolver = resolver;
    auto registerVersion =
        reinterpret_cast<host::service::RegisterPluginVersion>(resolver("RegisterPluginVersion"));
    if (auto hostVersion = reinterpret_cast<host::service::REALGetRBVersion>(resolver("REALGetRBVersion")))
        rbversion_rbversion = hostVersion();
    CurrentREALControlVersion = RecordVersionForHost(rbversion_rbversion);
    registerVersion(CurrentREALControlVersion);
}

void FixConsoleFlags(REALclassDefinition* definition) {
    fixFlags(definition->flags);
    fixTable<REALmethodDefinition>(definition->methods, definition->methodCount);
    fixTable<REALmethodDefinition>(definition->sharedMethods, definition->sharedMethodCount);
    fixTable<REALproperty>(definition->properties, definition->propertyCount);
    fixTable<REALproperty>(definition->sharedProperties, definition->sharedPropertyCount);
}

REALproperty9* FixProperties(const REALproperty* table, std::int32_t count) {
    return shortened<REALproperty9, REALproperty>(table, count);
}

void MyREALRegisterClass(REALclassDefinition* definition) {
    definition->dataSize = roundedUp(definition->dataSize);
    if (CurrentREALControlVersion > 9) {
        definition->version = CurrentREALControlVersion;
        REALRegisterClass(definition);
        return;
    }

    // The oldest host: shorter tables, and a record that ends before the reserved words.
    REALclassDefinition old = {};
    constexpr std::size_t oldSize = kREALClassDefinition9Words * sizeof(std::uint32_t);
    std::memcpy(&old, definition, oldSize);
    old.version = CurrentREALControlVersion;
    old.properties =
        FixProperties(static_cast<REALproperty*>(definition->properties), definition->propertyCount);
    old.methods = fixMethods(definition->methods, definition->methodCount);
    old.events = shortened<REALevent9, REALevent>(definition->events, definition->eventCount);
    old.unused[0] = old.unused[1] = 0;
    old.constants = shortened<REALconstant9, REALconstant>(definition->constants, definition->constantCount);
    old.sharedProperties = FixProperties(static_cast<REALproperty*>(definition->sharedProperties),
                                         definition->sharedPropertyCount);
    old.sharedMethods = fixMethods(definition->sharedMethods, definition->sharedMethodCount);
    std::memcpy(definition, &old, oldSize);
    REALRegisterClass(definition);
}
