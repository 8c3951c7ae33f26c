// RuntimeException and its subclasses.
#include "framework/exceptions.h"

#include "table.h"

namespace studio {

ExceptionData& exceptionData(REALobject exception) { return dataOf<ExceptionData>(exception); }

namespace {

/// What Raise raises and Catch catches. An exception that nobody catches ends the program.
///     Dim trouble As New RuntimeException("no fruit left", 7)
FrameworkClass runtimeException() {
    FrameworkClass table = classWithData<ExceptionData>("RuntimeException");
    table.destructor = +[](REALobject self) {
        heap().release(dataOf<ExceptionData>(self).message);
        dataOf<ExceptionData>(self).~ExceptionData();
    };
    table.properties = {
        /// What happened, in words.
        ///     Print trouble.Message
        property(
            "Message", "String",
            [](REALobject self) { return Heap::retain(dataOf<ExceptionData>(self).message); },
            [](REALobject self, std::uint32_t, REALstring value) {
                REALstring old = std::exchange(dataOf<ExceptionData>(self).message, Heap::retain(value));
                heap().release(old);
            }),
        /// The number of the error, or 0 if it has none.
        ///     Print Str(trouble.ErrorNumber)
        property(
            "ErrorNumber", "Integer", [](REALobject self) { return dataOf<ExceptionData>(self).errorNumber; },
            [](REALobject self, std::uint32_t, std::int32_t value) {
                dataOf<ExceptionData>(self).errorNumber = value;
            }),
    };
    table.methods = {
        /// Makes an exception without a message.
        ///     Dim e As New RuntimeException
        method("Constructor", [](REALobject) {}),
        /// Makes an exception with a message and a number.
        ///     Dim e As New RuntimeException("no fruit left")
        method("Constructor(message As String, errorNumber As Integer = 0)",
               [](REALobject self, REALstring message, std::int32_t errorNumber) {
                   dataOf<ExceptionData>(self).message = Heap::retain(message);
                   dataOf<ExceptionData>(self).errorNumber = errorNumber;
               }),
        /// Where the exception was raised: a place in the program for each call, the innermost first; empty
        /// until it is raised.
        ///     For Each place As String In trouble.Stack
        ///       Print place
        ///     Next
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

const Registrar registrar([] {
    return FrameworkPart{{
        runtimeException(),
        /// A member of Nil was used, or an argument that must be an object is Nil.
        exceptionClass("NilObjectException"),
        /// The object cannot do this, or not any more.
        exceptionClass("UnsupportedOperationException"),
        /// An index or offset is outside of the array or object.
        exceptionClass("OutOfBoundsException"),
        /// There is no memory left for what was to be made.
        exceptionClass("OutOfMemoryException"),
        /// A variant holds a value that cannot be converted to the type that is wanted.
        exceptionClass("TypeMismatchException"),
        /// An object is not of the class that it was to be converted to.
        exceptionClass("IllegalCastException"),
        /// An argument has a value that the method does not take.
        exceptionClass("InvalidArgumentException"),
        /// A dictionary or JSONItem has no value with this key.
        exceptionClass("KeyNotFoundException"),
        /// A file cannot be read, written, moved or deleted; the message says why.
        exceptionClass("IOException"),
        /// Calls are nested too deep.
        exceptionClass("StackOverflowException"),
        /// An assertion does not hold.
        exceptionClass("AssertionFailed"),
    }};
});

} // namespace

} // namespace studio
