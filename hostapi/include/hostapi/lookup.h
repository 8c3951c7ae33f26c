// Pointers and functions that are looked up on first use.
#pragma once

namespace host {

// A pointer that is looked up on first use and then kept. Null is not kept: the next use looks again.
template <class Pointer>
class LookedUp {
  public:
    template <class Find>
    Pointer get(Find&& find) {
        if (!found) found = find();
        return found;
    }

    // The pointer if it has been found; does not look.
    Pointer known() const { return found; }

  private:
    Pointer found = nullptr;
};

template <class Function, void* (*find)(const char* name)>
class LookedUpFunction;

// A function that `find` looks up by name. While it is missing, a call does nothing and returns 0, null or
// false.
template <class Result, class... Arguments, void* (*find)(const char* name)>
class LookedUpFunction<Result (*)(Arguments...), find> {
  public:
    using Function = Result (*)(Arguments...);

    explicit constexpr LookedUpFunction(const char* name) : name(name) {}

    // The function's address, or null.
    Function resolve() {
        return address.get([this] { return reinterpret_cast<Function>(find(name)); });
    }

    Result operator()(Arguments... arguments) {
        if (Function function = resolve()) return function(arguments...);
        return Result();
    }

  private:
    const char* name;
    LookedUp<Function> address;
};

} // namespace host
