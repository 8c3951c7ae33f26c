// A compiled program and what runs it.
#pragma once

#include "runtime/heap.h"
#include "runtime/model.h"
#include "syntax/source_error.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace studio {

// One call of a routine.
struct Frame {
    Bits* slots;
    REALobject self;
    Bits result;
    int target = 0; // the loop that Exit or Continue refers to, the label of Goto
};

enum class Flow { Next, Exit, Continue, Return, Goto };

// A function of the frame. Copies share one closure: each operator takes those of its operands, so copying
// would make a long sum quadratic.
template <class Result>
class Compiled {
  public:
    Compiled(std::nullptr_t = nullptr) {}
    template <class F>
    requires std::is_invocable_r_v<Result, const F&, Frame&> Compiled(F f)
        : body_(std::make_shared<const Body<F>>(std::move(f))) {}

    explicit operator bool() const { return bool(body_); }
    Result operator()(Frame& frame) const { return body_->run(frame); }

  private:
    struct Base {
        virtual ~Base() = default;
        virtual Result run(Frame& frame) const = 0;
    };
    template <class F>
    struct Body final : Base {
        explicit Body(F f) : f(std::move(f)) {}
        Result run(Frame& frame) const override { return f(frame); }
        F f;
    };
    std::shared_ptr<const Base> body_;
};

// Compiled code. A value of a counted type comes with a reference that the receiver owns.
using Code = Compiled<Bits>;
using Action = Compiled<Flow>;

struct Routine {
    const Method* method = nullptr;
    Class* owner = nullptr;
    std::vector<const Type*> parameters; // the first slots
    std::vector<bool> byRef;
    int slotCount = 0;
    Action body;
};

struct Global {
    std::string name;
    const Type* type;
    Bits bits;
};

// Where in a program's files.
struct Place {
    int line = 0;
    int file = 0;
};

class Program {
  public:
    explicit Program(std::string fileName) : files{std::move(fileName)} {}
    ~Program();

    std::vector<std::string> files; // as Position::file counts them
    std::deque<Global> globals;     // code holds their addresses
    std::deque<Routine> routines;
    std::vector<REALstring> literals;
    std::deque<Method> events; // their routines call the handlers
    Routine prepare;           // gives the shared properties their initial values
    Routine main;

    // Prepares the global state and runs the statements outside routines.
    void begin(const std::vector<std::string>& arguments);
    void run(const Routine& routine); // without arguments or result
    void end();                       // releases the global state
    std::vector<const Routine*> tests() const;

    // Takes the arguments over. Afterwards those by reference hold their new value, which the caller owns.
    Bits call(const Routine& routine, REALobject self, Bits* arguments);
    // The method that overrides this one in the object's class; the routine itself when none does.
    const Routine& dispatch(const Routine& routine, REALobject self);

    // Calls what a delegate stands for. The arguments as for call().
    Bits callDelegate(REALobject delegate, Bits* arguments);

    Place at; // of the running statement

    // Keeps an object until the running statement ends: a native handle that was read from a temporary stays
    // valid that long.
    void keep(REALobject object) {
        kept_.push_back(object);
        Heap::retain(object);
    }

    // The time of a statement, or of a condition that is evaluated again and again.
    class Statement {
      public:
        explicit Statement(Program& program) : program_(program), bottom_(program.kept_.size()) {}
        ~Statement() {
            if (program_.kept_.size() > bottom_) program_.releaseKept(bottom_);
        }
        Statement(const Statement&) = delete;
        Statement& operator=(const Statement&) = delete;

      private:
        Program& program_;
        std::size_t bottom_;
    };

  private:
    void noteRaised(REALobject exception);
    void releaseKept(std::size_t bottom);

    struct Context;
    void exchange(Context& other);

    std::vector<Bits> stack_ = std::vector<Bits>(1 << 18);
    std::size_t top_ = 0;
    std::vector<Place> callers_; // where each running routine was called
    std::vector<REALobject> kept_;
    std::map<std::pair<const Routine*, const Class*>, const Routine*> overrides_;
};

// Mistakes found in a program's text, in order.
struct SourceErrors {
    std::vector<SourceError> errors;
    std::vector<std::string> files; // as their positions count them
};

// Checks and resolves a program for the current host; throws SourceErrors. Files that it includes are read
// from the folder of the one that names them.
std::unique_ptr<Program> compileProgram(const std::string& fileName, std::string_view source);

} // namespace studio
