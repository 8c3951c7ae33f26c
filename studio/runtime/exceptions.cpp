#include "runtime/exceptions.h"

#include "runtime/calls.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/strings.h"

namespace studio {

namespace {

constexpr std::string_view kOutOfMemory = "OutOfMemoryException";
constexpr std::string_view kNoMemory = "There is not enough memory.";

} // namespace

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
    try {
        if (runtime().noteRaised) runtime().noteRaised(exception.object());
    } catch (const std::bad_alloc&) { // then it goes without its places
    }
    throw Raised{std::move(exception)};
}

void raise(std::string_view className, std::string_view message) {
    raise(Value::adopt(makeException(className, message)));
}

void raiseOutOfMemory() {
    REALobject exception = nullptr;
    try {
        exception = makeException(kOutOfMemory, kNoMemory);
    } catch (const std::bad_alloc&) {
        exception = Heap::retain(runtime().outOfMemory);
    }
    raise(Value::adopt(exception));
}

void prepareForNoMemory() {
    REALobject spare = makeException(kOutOfMemory, kNoMemory);
    header(spare).flags |= ObjectHeader::kPermanent;
    StringRef message(readProperty(*classOf(spare).property("Message"), spare).string);
    StringCell::of(message).permanent = true;
    runtime().outOfMemory = spare;
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
