// Classes by name.
#pragma once

#include <objc/objc.h>

__BEGIN_DECLS
id objc_getClass(const char* name);
Class class_getSuperclass(Class cls);
const char* class_getName(Class cls);
__END_DECLS
