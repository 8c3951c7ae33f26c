// Variants, the language's implicit conversions, and values as text.
//
// A variant is an object: nil, any object or array as it is, and a box for everything else.
#pragma once

#include "runtime/types.h"

namespace studio {

// ---- variants --------------------------------------------------------------------------------------------

REALobject boxVariant(const Type* type, Bits bits);    // takes over
Bits unboxVariant(REALobject variant, const Type* to); // borrows; owned result
std::int32_t variantType(REALobject variant);          // VarType's result
bool variantsEqual(REALobject a, REALobject b);        // strings without regard to case

// For the class Variant: the bytes that a box adds to an object, and its destructor.
std::int32_t boxSize();
void releaseBox(REALobject variant);

// ---- conversions -----------------------------------------------------------------------------------------

// How far apart the types are; negative when the language does not convert implicitly.
int conversionCost(const Type* from, const Type* to);
// Takes the bits over and returns bits of the other type. May raise.
Bits convert(const Type* from, const Type* to, Bits bits);

// ---- text ------------------------------------------------------------------------------------------------

std::string display(const Type* type, Bits bits); // as Print and Str show it
std::string display(REALobject variant);
std::string formatDouble(double value);
std::string formatSingle(float value);
double parseNumber(std::string_view text); // the number that the text begins with, as Val reads it

} // namespace studio
