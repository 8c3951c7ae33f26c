// The Objective-C run-time's types, as fragile classes have them.
#pragma once

#include <stddef.h>
#include <sys/cdefs.h>

typedef struct objc_class* Class;
typedef struct objc_object {
    Class isa;
} * id;
typedef struct objc_selector* SEL;
typedef id (*IMP)(id, SEL, ...);
typedef signed char BOOL;

#define YES ((BOOL)1)
#define NO ((BOOL)0)
#ifndef Nil
#define Nil __null
#define nil __null
#endif
