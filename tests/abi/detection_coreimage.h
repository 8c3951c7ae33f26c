// Replaces parts of Core Image for the tests of detection; a unit of its own, because no C++ catch works in
// Objective-C++.
#pragma once

#include <string>
#include <vector>

// From now on every detector finds these native features, whatever the image.
void detectorsFind(std::vector<void*> features);
// From now on every search raises an exception of that name and reason.
void breakDetectors(const char* name, const char* reason);

// Features that were made by hand; each comes with a reference that is given back by releaseNative.
void* newPlainFeature();
void* newFaceFeature();

// A kind of face that has what is said of it, at points of its own.
struct Face {
    bool leftEye, rightEye, mouth, trackingID, trackingFrameCount;
};
void* newFace(Face face);
int retainCount(void* object);
void releaseNative(void* object);

// What the last detector was made with.
struct DetectorArguments {
    std::string type;
    void* context = nullptr;
    std::string accuracy;
};
// From now on these are noted, and no detector is made.
void recordDetectors();
DetectorArguments lastDetector();
// The orientation in the options of the last search; 0 without options.
void recordSearches();
int lastOrientation();
