// The filters as texts for people: names, inputs with their ranges and defaults, sources.
#pragma once

#include <engine/engine.h>

#include <string>
#include <vector>

namespace commands {

/// Finds a filter by its name in any case. Null if there is none.
const engine::FilterInfo* filterNamed(const std::string& name);
/// "; did you mean 'CISepiaTone'?", or empty if no name is near. The CI may be missing.
std::string filterSuggestion(const std::string& name);

/// The category that says what a filter does, such as "Color Effect"; "Automatic Adjustment" for those in
/// none.
std::string mainCategory(const engine::FilterInfo& filter);
/// All of them, in words for people.
std::vector<std::string> categoryNames(const engine::FilterInfo& filter);

/// A key without its "input": "radius" for "inputRadius", "EV" for "inputEV".
std::string shortKey(const std::string& key);
/// Finds an input by its key, with or without "input" and, for a further image, "Image", in any case. Null if
/// there is none.
const engine::InputInfo* inputNamed(const engine::FilterInfo& filter, const std::string& key);
std::string inputSuggestion(const engine::FilterInfo& filter, const std::string& key);
/// The short keys, separated by commas.
std::string keysOf(const engine::FilterInfo& filter);

/// The class that Core Image names for the input, such as "NSNumber".
std::string classOf(const engine::FilterInfo& filter, const engine::InputInfo& input);
/// Whether its numbers are pixels. Core Image calls most of those distances.
bool isInPixels(const engine::InputInfo& input);
/// What its values mean, such as "Distance, in pixels"; empty when there is nothing more to say.
std::string meaningOf(const engine::InputInfo& input);
/// "0 to 1", "at least 0", with the slider's ends where they differ; empty without limits.
std::string rangeOf(const engine::InputInfo& input);
/// A value as the command line takes it: 0.5, 150,150, #ff8000, 1,0,0,1,0,0. Empty for data and images.
std::string valueText(const engine::Value& value);
/// The default as valueText, or empty.
std::string defaultOf(const engine::InputInfo& input);

/// "fitted to Core Image's pictures (mean residual 0.23 of 255)" and what the formula is.
std::string sourceText(const engine::Source& source);

} // namespace commands
