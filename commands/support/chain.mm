// A chain of filters: what a picture becomes when it is sent through.
#include "chain.h"

#include "catalogue.h"
#include "command.h"

#include <algorithm>
#include <cmath>

namespace commands {

namespace {

using engine::InputInfo;
using engine::InputKind;

/// The infinite parts of an extent cut to the canvas.
CGRect cut(CGRect extent, CGRect canvas) {
    bool endless = CGRectIsInfinite(extent) || extent.size.width > 1e7f || extent.size.height > 1e7f;
    return endless ? CGRectIntersection(extent, canvas) : extent;
}

NSString* text(const std::string& s) { return [NSString stringWithUTF8String:s.c_str()]; }

/// The picture after one filter; nil, and why in `failure`, if there is none.
CIImage* applied(const Step& step, CIImage* image, const Surroundings& around, std::string& failure) {
    CIFilter* filter = [CIFilter filterWithName:text(step.filter->name)];
    [filter setDefaults];
    if (image) [filter setValue:image forKey:kCIInputImageKey];
    for (auto& [input, word] : step.values) {
        id value = parseValue(*input, word, around, failure);
        if (!value) {
            failure = step.filter->name + ": " + shortKey(input->key) + ": " + failure;
            return nil;
        }
        [filter setValue:value forKey:text(input->key)];
    }
    CIImage* output = nil;
    @try {
        output = [filter outputImage];
    } @catch (NSException* exception) {
        failure = [[exception reason] UTF8String];
        return nil;
    }
    if (output) return output;
    std::vector<std::string> missing;
    for (const InputInfo& input : step.filter->inputs)
        if (input.kind == InputKind::image && !step.valueOf(input) && input.key != "inputImage")
            missing.push_back(shortKey(input.key));
    failure = step.filter->name + " makes no picture" +
              (missing.empty() ? "" : "; it may need " + joined(missing, ", ") + ", each a path");
    return nil;
}

/// The picture scaled so that its area has whole sides, and cut to them.
void resize(Result& result, const Size& size) {
    double w = result.area.size.width, h = result.area.size.height;
    double scale = size.scale;
    if (size.width) scale = size.height ? std::min(size.width / w, size.height / h) : size.width / w;
    double width = std::max(1.0, std::round(w * scale)), height = std::max(1.0, std::round(h * scale));
    if (width == w && height == h) return;
    CIImage* image =
        [result.image imageByApplyingTransform:CGAffineTransformMakeTranslation(-result.area.origin.x,
                                                                                -result.area.origin.y)];
    CIFilter* filter = [CIFilter filterWithName:@"CILanczosScaleTransform"];
    [filter setDefaults];
    [filter setValue:image forKey:kCIInputImageKey];
    [filter setValue:[NSNumber numberWithDouble:height / h] forKey:@"inputScale"];
    [filter setValue:[NSNumber numberWithDouble:(width / w) / (height / h)] forKey:@"inputAspectRatio"];
    result.image = [filter outputImage];
    result.area = CGRectMake(0, 0, CGFloat(width), CGFloat(height));
}

} // namespace

Result resultOf(const Chain& chain, const std::string& input, std::string& failure) {
    Result result;
    if (!input.empty()) {
        result.original = readPicture(input, failure);
        if (!result.original.image) return {};
        result.image = result.original.image;
    }
    // What is endless is as large as the picture that was read, or as the size that is asked for.
    CGRect canvas = result.image ? [result.image extent]
                                 : CGRectMake(0, 0, CGFloat(chain.size.width), CGFloat(chain.size.height));
    for (const Step& step : chain.steps) {
        CGRect extent = result.image ? cut([result.image extent], canvas) : canvas;
        result.image = applied(step, result.image, {extent, result.original.image}, failure);
        if (!result.image) return {};
    }
    CGRect extent = [result.image extent];
    result.area = CGRectIntegral(cut(extent, canvas));
    bool endless = !CGRectEqualToRect(cut(extent, canvas), extent);
    if (CGRectIsEmpty(result.area)) {
        failure = endless && CGRectIsEmpty(canvas)
                      ? "the result has no end; give it a --size, such as 400x300"
                      : "nothing is left of the picture";
        return {};
    }
    if (chain.size.width || chain.size.scale != 1)
        if (!(endless && input.empty())) resize(result, chain.size);
    return result;
}

} // namespace commands
