// From words of a command line to the values of a filter's inputs.
#pragma once

#import <Foundation/Foundation.h>
#import <QuartzCore/QuartzCore.h>

#include <engine/engine.h>

#include <string>

namespace commands {

/// What words can refer to.
struct Surroundings {
    /// The picture that the filter is applied to: percentages are of its sides, "center" is its middle.
    CGRect extent;
    /// The picture as it was read, for "@"; may be nil.
    CIImage* original;
};

/// How the values of an input are written, for messages: "a number, such as 0.5".
std::string expectation(const engine::InputInfo& input);

/// The value that `text` spells, autoreleased, or nil and why in `mistake`:
///   number    0.5, 10px, 50% (of the shorter side if it is a distance), 90deg, yes, no
///   vector    150,150  50%,50%  center  center,100 (in three dimensions)  extent (as x, y, width, height)
///   colour    #rgb, #rrggbb, #rrggbbaa, a name, or r,g,b[,a] from 0 to 1
///   transform a,b,c,d,tx,ty, or steps joined by "+": scale:0.5  scale:2,1  rotate:30 (degrees)  move:10,20
///   image     a path, or @ for the picture as it was read
///   data      text, or file:PATH for what a file holds
///   space     a file with an ICC profile
id parseValue(const engine::InputInfo& input, const std::string& text, const Surroundings& around,
              std::string& mistake);

/// Whether `text` spells a value of the input, for whatever picture. Files are not read.
bool isSpelledRight(const engine::InputInfo& input, const std::string& text, std::string& mistake);

} // namespace commands
