#include "table.h"

#include "framework/framework.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace studio {

namespace {

using Part = FrameworkPart (*)();

// Local to a function, because Registrars run before main in no particular order.
std::vector<Part>& parts() {
    static std::vector<Part> all;
    return all;
}

std::string_view nameOf(const FrameworkMethod& row) {
    std::string_view declaration = row.declaration;
    return declaration.substr(0, declaration.find_first_of("( "));
}

char shapeOf(const Type* type) {
    if (!type) return 'v';
    switch (type->kind) {
    case Kind::Boolean:
        return 'b';
    case Kind::Single:
        return 'f';
    case Kind::Double:
        return 'd';
    case Kind::String:
        return 's';
    case Kind::Variant:
    case Kind::Object:
    case Kind::Array:
        return 'o';
    default:
        return char('0' + elementSize(type));
    }
}

void checkShape(const std::string& declaration, const Signature& signature, bool hasSelf,
                const std::string& shape) {
    std::string expected(1, shapeOf(signature.result));
    if (hasSelf) expected += 'o';
    for (const Parameter& p : signature.parameters) expected += shapeOf(p.type);
    if (expected != shape)
        throw std::logic_error("the function of " + declaration + " has the shape " + shape + ", not " +
                               expected);
}

std::unique_ptr<Method> makeMethod(ClassTable& classes, const FrameworkMethod& row, Class* owner,
                                   bool shared) {
    auto result = classes.makeMethod(row.declaration, owner, shared, Origin::Framework);
    result->function = row.function;
    result->setter = row.setter;
    checkShape(row.declaration, result->signature, !shared, row.shape);
    if (row.setter) checkShape(row.declaration, result->setterSignature(), !shared, row.setterShape);
    return result;
}

void define(ClassTable& classes, const FrameworkClass& table) {
    Class& cls = *classes.named(table.name);
    cls.name = table.name;
    cls.constructor = reinterpret_cast<void*>(table.constructor);
    cls.destructor = reinterpret_cast<void*>(table.destructor);
    classes.define(cls, Origin::Framework, table.superclass ? classes.named(table.superclass) : nullptr,
                   table.dataSize);
    for (const FrameworkProperty& row : table.properties) {
        Property property;
        property.name = row.name;
        property.typeName = row.type;
        property.type = classes.typeNamed(row.type);
        property.getter = row.getter;
        property.setter = row.setter;
        property.owner = &cls;
        std::string getter{shapeOf(property.type), 'o'}, setter{'v', 'o', '4', shapeOf(property.type)};
        if (row.getterShape != getter || (row.setter && row.setterShape != setter))
            throw std::logic_error(std::string("the accessors of ") + table.name + "." + row.name +
                                   " do not have its type");
        cls.properties.push_back(property);
    }
    for (const FrameworkMethod& row : table.methods)
        cls.methods.push_back(makeMethod(classes, row, &cls, false));
    for (const FrameworkMethod& row : table.sharedMethods)
        cls.sharedMethods.push_back(makeMethod(classes, row, &cls, true));
    for (const char* constant : table.constants) cls.constants.push_back(classes.parseConstant(constant));
    for (const char* event : table.events) cls.events.push_back(event);
    cls.variantType = table.variantType;
    cls.fromString = table.fromString;
    cls.toString = table.toString;
    cls.setHandler = table.setHandler;
    if (table.atYield) runtime().yieldHooks.push_back(table.atYield);
    if (table.atEnd) runtime().endHooks.push_back(table.atEnd);
}

// Defines the class, but first its superclass if that is still among the tables.
void defineNext(ClassTable& classes, std::map<std::string_view, FrameworkClass>& tables,
                std::string_view name) {
    auto next = tables.extract(name);
    if (next.empty()) return;
    if (const char* superclass = next.mapped().superclass) defineNext(classes, tables, superclass);
    define(classes, next.mapped());
}

} // namespace

Registrar::Registrar(Part part) { parts().push_back(part); }

// Sorted by name, so that the result does not depend on the order of the Registrars.
void defineFramework(ClassTable& classes) {
    std::map<std::string_view, FrameworkClass> tables;
    FrameworkFunctions functions;
    for (Part part : parts()) {
        FrameworkPart added = part();
        for (FrameworkClass& table : added.classes) tables.emplace(table.name, std::move(table));
        functions.insert(functions.end(), added.functions.begin(), added.functions.end());
    }
    while (!tables.empty()) defineNext(classes, tables, tables.begin()->first);
    std::stable_sort(
        functions.begin(), functions.end(),
        [](const FrameworkMethod& a, const FrameworkMethod& b) { return nameOf(a) < nameOf(b); });
    for (const FrameworkMethod& row : functions) classes.addFunction(makeMethod(classes, row, nullptr, true));
}

} // namespace studio
