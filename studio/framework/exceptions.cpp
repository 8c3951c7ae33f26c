// RuntimeException and its subclasses.
#include "framework/exceptions.h"

#include "table.h"

namespace studio {

ExceptionData& exceptionData(REALobject exception) { return dataOf<ExceptionData>(exception); }

namespace {

FrameworkClass runtimeException() {
    FrameworkClass table = classWithData<ExceptionData>("RuntimeException");
    table.destructor = +[](REALobject self) {
        heap().release(dataOf<ExceptionData>(self).message);
        dataOf<ExceptionData>(self).~ExceptionData();
    };
    table.properties = {
        property(
            "Message", "String",
            [](REALobject self) { return Heap::retain(dataOf<ExceptionData>(self).message); },
            [](REALobject self, std::uint32_t, REALstring value) {
                REALstring old = std::exchange(dataOf<ExceptionData>(self).message, Heap::retain(value));
                heap().release(old);
            }),
        property(
            "ErrorNumber", "Integer", [](REALobject self) { return dataOf<ExceptionData>(self).errorNumber; },
            [](REALobject self, std::uint32_t, std::int32_t value) {
                dataOf<ExceptionData>(self).errorNumber = value;
            }),
    };
    table.methods = {
        method("Constructor", [](REALobject) {}),
        method("Constructor(message As String, errorNumber As Integer = 0)",
               [](REALobject self, REALstring message, std::int32_t errorNumber) {
                   dataOf<ExceptionData>(self).message = Heap::retain(message);
                   dataOf<ExceptionData>(self).errorNumber = errorNumber;
               }),
        method("Stack As String()",
               [](REALobject self) {
                   REALobject result = newArray(simpleType(Kind::String));
                   for (const std::string& place : dataOf<ExceptionData>(self).places)
                       arrayAppend(arrayOf(result), Bits::of(makeString(place)));
                   return result;
               }),
    };
    return table;
}

FrameworkPart exceptions() {
    FrameworkPart result{{runtimeException()}};
    for (const char* name :
         {"NilObjectException", "UnsupportedOperationException", "OutOfBoundsException",
          "OutOfMemoryException", "TypeMismatchException", "IllegalCastException", "InvalidArgumentException",
          "KeyNotFoundException", "IOException", "StackOverflowException", "AssertionFailed"}) {
        FrameworkClass subclass;
        subclass.name = name;
        subclass.superclass = "RuntimeException";
        result.classes.push_back(subclass);
    }
    return result;
}

const Registrar registrar(exceptions);

} // namespace

} // namespace studio
