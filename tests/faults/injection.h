// Makes the process's own calls fail: memory, files, and Cocoa messages to Core Image.
#pragma once

namespace faults {

enum class Kind { none, memory, file, message };

// The n-th call of the kind from now on fails (1 is the next), and with `onwards` every one after it. A file
// call is cut short instead where `cut` is set and it transfers bytes. n = 0 only counts.
void arm(Kind kind, long n, bool onwards, bool cut = false);
// Ends it; returns how many calls of the kind there were.
long disarm();

// Lets the calling thread handle the end of its stack. Threads that are started later do so by themselves.
void useSpareStack();

// Finds the faces in a photograph, so that processes forked later have the model.
void loadFaces(const char* photograph);

// For the interposed functions: counts the call, and tells whether it is to fail.
bool strikes(Kind kind);
bool cuts();

} // namespace faults
