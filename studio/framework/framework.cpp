// The list of everything the framework has. A new class or a new group of functions is one file and one line
// here.
#include "framework/table.h"

namespace studio {

std::vector<FrameworkClass> exceptionClasses();
FrameworkClass variantClassTable();
FrameworkClass memoryBlockClass();
FrameworkClass dictionaryClass();
FrameworkClass dateClass();
FrameworkClass randomClass();
FrameworkClass timerClass();
FrameworkClass folderItemClass();
FrameworkClass textInputStreamClass();
FrameworkClass textOutputStreamClass();
FrameworkClass graphicsClass();
FrameworkClass surfaceClass();
FrameworkClass pictureClass();
FrameworkClass systemClass();
FrameworkClass appClass();
FrameworkClass encodingsClass();

FrameworkFunctions stringFunctions();
FrameworkFunctions mathFunctions();
FrameworkFunctions colorFunctions();
FrameworkFunctions consoleFunctions();
FrameworkFunctions assertionFunctions();
FrameworkFunctions fileFunctions();

namespace {

std::vector<FrameworkClass> allClasses() {
    std::vector<FrameworkClass> result = exceptionClasses();
    for (auto* table : {variantClassTable, memoryBlockClass, dictionaryClass, dateClass, randomClass,
                        timerClass, folderItemClass, textInputStreamClass, textOutputStreamClass,
                        graphicsClass, surfaceClass, pictureClass, systemClass, appClass, encodingsClass})
        result.push_back(table());
    return result;
}

constexpr FrameworkFunctions (*kFunctions[])() = {stringFunctions,  mathFunctions,      colorFunctions,
                                                  consoleFunctions, assertionFunctions, fileFunctions};

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
}

} // namespace

void defineFramework(ClassTable& classes) {
    for (const FrameworkClass& table : allClasses()) define(classes, table);
    for (auto* functions : kFunctions)
        for (const FrameworkMethod& row : functions())
            classes.addFunction(makeMethod(classes, row, nullptr, true));
}

} // namespace studio
