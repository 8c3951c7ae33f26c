// Compiles a parsed program: resolves every name, checks every type and makes the code that runs.
#pragma once

#include "language/program.h"
#include "runtime/arrays.h"
#include "runtime/class_table.h"

#include <set>

namespace studio {

namespace ast {
struct ClassDeclaration;
struct Delegate;
struct Enumeration;
struct Program;
struct Routine;
struct Statement;
struct Variable;
} // namespace ast

// A resolved expression.
struct Operand {
    const Type* type;
    Code code;
    Position position;
    std::optional<Literal> constant = {}; // a literal, or an expression of literals and constants
};

// Something that can be assigned to.
struct Target {
    const Type* type;
    std::function<void(Frame&, Bits)> store;   // takes the value over
    std::function<Bits*(Frame&)> address = {}; // variables only
};

struct Local {
    const Type* type;
    int slot = 0;
    Bits* address = nullptr; // globals and Static variables
    std::optional<Literal> constant = {};
    bool declaredYet = true; // a global is known to routines before its line, but not above it
};

class Compiler {
  public:
    Compiler(Program& program, const ast::Program& source) : program_(program), source_(source) {}
    void compile(); // throws SourceErrors

  private:
    // ---- declarations.cpp -------------------------------------------------------------------------------
    struct Field {
        std::string name;
        const Type* type;
        std::int32_t offset;
        std::int32_t length = -1; // of a Structure's String in bytes; negative: any
    };
    struct Event {
        std::string name;
        const Method* raise;  // calls the handler
        std::int32_t handler; // where an object keeps the delegate that AddHandler gave
    };
    struct PendingBody {
        const ast::Routine* source;
        Routine* routine;
    };
    void declareTypes();
    void declareClasses();
    void defineEnumeration(const ast::Enumeration& source);
    void defineDelegate(const ast::Delegate& source);
    void defineEvent(const ast::Signature& source, Class& cls, std::int32_t handler);
    void defineStructure(const ast::ClassDeclaration& source, Class& cls);
    void checkInterfaces(const ast::ClassDeclaration& source, const Class& cls);
    void declareShared(const ast::Variable& source, Class& cls);
    bool nameIsFree(const std::string& name, Position position);
    void declareMembers(const ast::ClassDeclaration& source, Class& cls);
    void declareMethods(const ast::ClassDeclaration& source, Class& cls);
    void declareRoutine(const ast::Routine& source, Class* owner);
    void declareGlobals();
    void declareGlobalConstants();
    void addGlobalVariable(const std::string& name, Position position, const Type* type, bool declaredYet);
    void addGlobal(const std::string& name, Position position, const Local& local);
    void compileBodies();
    void compileBody(const ast::Routine& source, Routine& routine);
    const Type* resolveType(const ast::TypeName& name); // defined classes only
    Local constantOf(const ast::Variable& variable);

    // ---- names ------------------------------------------------------------------------------------------
    Local* findVariable(std::string_view name);
    Local* findShared(const Class* cls, std::string_view name);
    const Event* findEvent(const Class* cls, std::string_view name) const;
    // Functions outside classes, and those of modules.
    std::vector<const Method*> functionsNamed(std::string_view name) const;
    const Constant* moduleConstant(std::string_view name) const;
    const Field* findField(const Class* cls, std::string_view name) const;
    Class* findClass(const ast::Expr& e) const; // the class named by `e`, unless a variable hides it
    int newSlot() { return slotCount_++; }
    Local& declareLocal(const std::string& name, Position position, const Type* type);
    [[noreturn]] void unknown(Position position, const std::string& what, std::string_view name,
                              const std::vector<std::string>& known);
    std::vector<std::string> namesInScope() const;
    std::vector<std::string> membersOf(const Type* type) const;

    // ---- expressions.cpp --------------------------------------------------------------------------------
    Operand expression(const ast::Expr& e);
    Operand computed(Operand operand); // a constant, when it is made of constants
    Operand value(const ast::Expr& e); // an expression that has a value
    Operand valueAs(const ast::Expr& e, const Type* type, const std::string& what);
    Operand coerce(Operand operand, const Type* type, const std::string& what);
    Operand condition(const ast::Expr& e);
    Operand literal(const Literal& value, Position position);
    Operand name(const ast::Expr& e);
    Operand variable(const Local& local, Position position);
    Operand member(const ast::Expr& e, const std::vector<const ast::Expr*>& arguments, bool called);
    Operand receiver(const ast::Expr& e);             // an object whose member is named; a temporary is kept
    Operand kept(const ast::Expr& e, Operand object); // a temporary lives until its statement ends
    Operand memberOf(Operand base, const ast::Expr& e, const std::vector<const ast::Expr*>& arguments,
                     bool called);
    Operand sharedMember(Class& cls, const ast::Expr& e, const std::vector<const ast::Expr*>& arguments,
                         bool called);
    Operand call(const ast::Expr& e);
    Operand arrayMember(Operand base, const ast::Expr& e, const std::vector<const ast::Expr*>& arguments);
    Operand arrayLiteral(const ast::Expr& e, const Type* wanted = nullptr); // the wanted type of the elements
    Operand conditional(const ast::Expr& e);
    Operand pair(const ast::Expr& e);
    Operand sort(Operand base, const ast::Expr& e, const std::vector<const ast::Expr*>& arguments);
    Operand copied(Operand structure);
    // Where an element is among all of an array's.
    using ElementIndex = std::function<std::int32_t(ArrayObject&, Frame&)>;
    ElementIndex elementIndex(const std::vector<const ast::Expr*>& indices, const Type* array,
                              Position position);
    Operand index(Operand array, const std::vector<const ast::Expr*>& arguments, Position position);
    Operand create(const ast::Expr& e);
    Operand cast(const Type* type, const ast::Expr& e);
    const Type* typeFrom(const ast::Expr& e); // the type that an expression names; null when it names none
    Operand isA(const ast::Expr& e);
    Operand selfOperand(Position position);
    Operand field(Operand object, const Field& field);

    // Calls.
    struct PreparedArguments {
        std::vector<Operand> operands;
        std::vector<Target> places; // of arguments by reference; the others have no store
    };
    Operand argumentValue(const ast::Expr& e);
    Operand invokeMethod(const std::vector<const Method*>& candidates, std::optional<Operand> self,
                         const std::vector<const ast::Expr*>& arguments, std::string_view name,
                         Position position, bool virtualCall = true, std::optional<Operand> first = {});
    PreparedArguments prepare(const Method& method, const Signature& signature, std::vector<Operand> given,
                              const std::vector<const ast::Expr*>& sources);
    Operand emitCall(const Method& method, std::optional<Operand> self, PreparedArguments arguments,
                     Position position, bool virtualCall, bool setter);

    // Assignment.
    Target place(const ast::Expr& e); // variables, fields, properties, elements
    Target placeOf(const Local& local, const ast::Expr& e);
    Action assign(const ast::Expr& target, const ast::Expr& value);
    Action assignThroughMethod(const std::vector<const Method*>& candidates, std::optional<Operand> self,
                               const std::vector<const ast::Expr*>& arguments, Operand value,
                               std::string_view name, Position position, std::optional<Operand> first = {});

    // ---- delegates.cpp ----------------------------------------------------------------------------------
    struct Addressed { // what follows AddressOf
        std::vector<const Method*> candidates;
        std::optional<Operand> self;
    };
    Addressed addressed(const ast::Expr& e);
    Class& delegateFor(const Signature& signature); // one class for equal parameters and results
    Operand addressOf(const ast::Expr& e, Class* wanted);
    Operand makeDelegate(const ast::Expr& e, Class& type, const Method& method, std::optional<Operand> self);
    Operand invokeDelegate(Operand delegate, const std::vector<const ast::Expr*>& arguments,
                           Position position);
    Operand raiseEvent(const ast::Expr& e, const std::vector<const ast::Expr*>& arguments);
    Action handlerStatement(const ast::Statement& s);

    // ---- operators.cpp ----------------------------------------------------------------------------------
    Operand unary(const std::string& operation, Operand a, Position position);
    Operand binary(const std::string& operation, Operand a, Operand b, Position position);
    Operand arithmetic(const std::string& operation, Operand a, Operand b, Position position);
    Operand comparison(const std::string& operation, Operand a, Operand b, Position position);
    Operand logical(const std::string& operation, Operand a, Operand b, Position position);
    // The class's own operator, if it has one for these operands.
    std::optional<Operand> ownUnary(const std::string& operation, Operand& a, Position position);
    std::optional<Operand> ownBinary(const std::string& operation, Operand& a, Operand& b, Position position);
    std::optional<Operand> ownComparison(const std::string& operation, Operand& a, Operand& b,
                                         Position position);
    std::optional<Operand> callOwn(std::string_view method, const Operand& self,
                                   std::vector<Operand> arguments, Position position);

    // ---- statements.cpp ---------------------------------------------------------------------------------
    Action block(const std::vector<std::unique_ptr<ast::Statement>>& statements);
    Action statement(const ast::Statement& s);
    Action dim(const ast::Statement& s);
    Action declare(const ast::Variable& v);
    Action ifStatement(const ast::Statement& s);
    Action forStatement(const ast::Statement& s);
    Action forEachStatement(const ast::Statement& s);
    Action whileStatement(const ast::Statement& s);
    Action selectStatement(const ast::Statement& s);
    Action tryStatement(const ast::Statement& s);
    Action jump(const ast::Statement& s);
    Action returnStatement(const ast::Statement& s);
    int openLoop(const std::string& kind, const std::string& variable); // its id
    std::vector<Code> upperBounds(const std::vector<std::unique_ptr<ast::Expr>>& bounds, int rank,
                                  Position position);
    static std::vector<std::int32_t> extentsOf(const std::vector<Code>& bounds, Frame& frame);
    Code emptyValue(const ast::Variable& v, const Type* type);

    struct Loop {
        std::string kind; // "for", "while", "do"
        int id;
        std::string variable; // of For
        std::string label;    // in the line above
    };
    struct Scope {
        std::map<std::string, Local> names;
        std::map<std::string, int> labels;
        std::vector<std::pair<int, const Type*>> counted; // slots to release at the end
    };
    // Opens a scope for the body's declarations.
    Action scoped(const std::function<Action()>& body);

    Program& program_;
    const ast::Program& source_;
    std::vector<SourceError> errors_;
    std::set<std::string> spoilt_; // names whose declaration is a mistake, so that using them is none
    std::map<std::string, Local> globals_;
    std::map<const Class*, std::vector<Field>> fields_;
    std::map<const Class*, std::map<std::string, Local>> shared_; // properties, by folded name
    std::map<const Class*, std::vector<Event>> events_;
    std::vector<Class*> modules_;
    std::vector<Action> preparations_; // of shared properties
    std::vector<PendingBody> bodies_;

    // Of the routine being compiled.
    Routine* routine_ = nullptr;
    Class* owner_ = nullptr; // its class
    bool hasSelf_ = false;
    std::vector<Scope> scopes_;
    std::vector<Loop> loops_;
    int slotCount_ = 0;
    int nextLoop_ = 1;
    std::string label_;           // in the line above
    bool keepsReceivers_ = false; // what was compiled last keeps temporaries
};

} // namespace studio
