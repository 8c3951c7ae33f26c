// The class table: every class, type and global function, by name.
#pragma once

#include "runtime/model.h"

#include <map>

namespace studio {

namespace ast {
struct Expr;
struct Signature;
struct TypeName;
} // namespace ast

class ClassTable {
  public:
    ClassTable();

    Class* named(std::string_view name);      // made, still undefined, when the name is new
    Class* find(std::string_view name) const; // null when it is not defined
    Class* root() const { return root_; }     // Object
    const Type* arrayOf(const Type* element, int rank = 1);
    // From now on the class's name stands for integers of that kind.
    void makeEnumeration(Class& cls, Kind kind);
    // Another name for a type, such as "Module.Class".
    void alias(std::string_view name, const Type* type);
    const Type* typeNamed(const ast::TypeName& name); // a class may still be undefined
    const Type* typeNamed(std::string_view text);     // "Integer", "CIFilterKaz()"

    // Declarations. Each throws SourceError.
    Signature resolve(const ast::Signature& parsed);
    Signature parse(std::string_view declaration);
    Constant parseConstant(std::string_view declaration);
    Literal literal(const ast::Expr& expression); // SourceError when it is not a literal

    // Places the class's data behind its superclass's and makes the class known.
    void define(Class& cls, Origin origin, Class* superclass, std::int32_t dataSize);
    std::unique_ptr<Method> makeMethod(std::string_view declaration, Class* owner, bool shared,
                                       Origin origin);
    Method* addFunction(std::unique_ptr<Method> function);
    const std::vector<const Method*>& functionsNamed(std::string_view name) const;
    const std::vector<std::unique_ptr<Method>>& functions() const { return functions_; }
    const std::vector<Class*>& definitionOrder() const { return order_; }

  private:
    std::map<std::string, std::unique_ptr<Class>, std::less<>> classes_;
    std::map<const Class*, std::unique_ptr<Type>> classTypes_;
    std::map<std::pair<const Type*, int>, std::unique_ptr<Type>> arrayTypes_;
    std::map<const Class*, std::unique_ptr<Type>> enumerationTypes_;
    std::map<std::string, const Type*, std::less<>> aliases_;
    std::vector<Class*> order_;
    std::vector<std::unique_ptr<Method>> functions_;
    std::map<std::string, std::vector<const Method*>, std::less<>> functionIndex_;
    Class* root_;
};

// The class's method with that very signature, its own or inherited; `setter` says whether the method's
// setter has it. Null when there is none.
const Method* findMethodBySignature(const Class& cls, const Signature& wanted, bool& setter);

} // namespace studio
