// Watches the messages that the plugin sends to Core Image, and replaces some of the answers.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

// Each message of the plugin as its selector and its arguments, in order, such as
// "contextWithCGContext:options: {software_renderer=0}". What Core Image sends itself is not among them.
extern std::vector<std::string> nativeCalls;

// The bytes of the data that came with the last bitmap, and with the last image file in memory.
extern const void* lastBitmapBytes;
extern const void* lastDataBytes;

// The objects in the last options that came with a message, by key.
extern std::map<std::string, const void*> lastOptions;

// The Cocoa objects that the work leaves alive, by class and number. What is made once and kept is made in a
// first run that does not count.
std::map<std::string, int> cocoaObjectsLeftBy(const std::function<void()>& work);

// The URL of every image is from here on "name.png" below "http://localhost/folder/".
void answerURLsWithABase();

// From here on messages are noted. Bitmaps are not made, since their length may be a lie.
void watchNativeCalls();

// Replace the answers of the class or the object.
void answerUnionsWithTheOther();
void answerDefinitionsWith(int shape);
void answerContextsWith(int context); // 0 for nil
void answerGraphicsPortsWithNull();
void raiseWhenDrawing(const char* reason); // into a rectangle or at a point
void raiseWhenAdjusting(const char* reason);
void raiseWhenInsetting(const char* reason);

// Whether an image or a view has the focus.
bool somethingHasTheFocus();
