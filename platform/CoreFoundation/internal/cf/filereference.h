// The contents of an FSRef: the number of an interned path. CFURL and Carbon's file manager share it.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <cstddef>

struct FSRef; // <Carbon/Files.h> declares its bytes

namespace cf {

/// The size of an FSRef. A reference of zeroes names no item.
constexpr std::size_t fileReferenceSize = 80;

/// Fills `ref` in for an absolute path, which need not exist. "/a/b/" and "/a/b" give the same reference.
void makeFileReference(const char* path, FSRef* ref);
/// The path, valid for the life of the process; null unless makeFileReference filled `ref` in.
const char* pathOfFileReference(const FSRef* ref);

/// The number behind the reference of `path`, for records that have no room for an FSRef.
UInt32 numberOfPath(const char* path);
/// The path with that number, valid for the life of the process; null for an unknown number.
const char* pathOfNumber(UInt32 number);

} // namespace cf
