// Host arrays against NSArray.
#include <bridge/arrays.h>
#include <bridge/text.h>

void FillStringArray(REALstringArray array, NSArray* strings) {
    if (!array) return;
    std::int32_t index = 0;
    NSEnumerator* enumerator = [strings objectEnumerator];
    while (NSString* element = [enumerator nextObject]) {
        host::Held string(CFString2RBString((CFStringRef)element));
        REALInsertArrayValueString(array, index++, string.get());
    }
}

void FillObjectArray(REALarray array, NSArray* elements, REALobject (*convert)(id element)) {
    if (!array) return;
    std::int32_t index = 0;
    NSEnumerator* enumerator = [elements objectEnumerator];
    while (id element = [enumerator nextObject]) {
        host::Held object(convert(element));
        REALInsertArrayValueObject(array, index++, object.get());
    }
}
