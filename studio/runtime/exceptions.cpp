#include "runtime/exceptions.h"

#include "runtime/calls.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/strings.h"

namespace studio {

REALobject makeException(std::string_view className, std::string_view message) {
    REALobject object = newInstance(className);
    const Property* property = classOf(object).property("Message");
    writeProperty(*property, object, Bits::of(makeString(message)));
    return object;
}

std::string exceptionMessage(REALobject exception) {
    const Property* property = exception ? classOf(exception).property("Message") : nullptr;
    if (!property) return {};
    StringRef message(readProperty(*property, exception).string);
    return toUtf8(message);
}

void raise(Value exception) {
    if (runtime().noteRaised) runtime().noteRaised(exception.object());
    throw Raised{std::move(exception)};
}

void raise(std::string_view className, std::string_view message) {
    raise(Value::adopt(makeException(className, message)));
}

void throwPending() {
    if (auto code = std::exchange(runtime().quit, std::nullopt)) throw QuitRequest{*code};
    if (REALobject exception = std::exchange(runtime().pending, nullptr)) raise(Value::adopt(exception));
}

void leavePending(const Raised& raised) {
    Runtime& host = runtime();
    if (!host.pending) host.pending = Heap::retain(raised.exception.object());
}

} // namespace studio
