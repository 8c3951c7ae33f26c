// Timers fire whenever the program yields.
#pragma once

#include "runtime/runtime.h"

namespace studio {

class TimerQueue {
  public:
    void add(REALobject timer) { timers_.push_back(timer); } // not counted: timers leave when they go
    void remove(REALobject timer);
    void fireDue();

  private:
    std::vector<REALobject> timers_;
};

// Gives an object's event a handler of the program: a Sub, called with the object; takes the place of any
// earlier one. Null takes it away.
void setHandler(REALobject object, std::string_view event, const Method* handler);

} // namespace studio
