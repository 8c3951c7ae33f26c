// Filters of the program's own: subclasses of CIFilter, in the catalogue under the names that they register.
#include "support.h"

/// Darkens a picture, without a dealloc, as in Apple's guide.
@interface DarkenFilter : CIFilter {
    CIImage* inputImage;
    NSNumber* inputAmount;
    float _inputPower;
    id inputAnything;
    NSString* other;
}
@end

@implementation DarkenFilter
- (NSDictionary*)customAttributes {
    return @{
        @"inputAmount" : @{
            kCIAttributeDefault : @0.5,
            kCIAttributeMax : @1,
            kCIAttributeType : kCIAttributeTypeScalar,
        },
        @"inputPower" : @{kCIAttributeDefault : @2},
    };
}
- (CIImage*)outputImage {
    CIFilter* exposure = [CIFilter filterWithName:@"CIExposureAdjust"];
    [exposure setValue:inputImage forKey:kCIInputImageKey];
    [exposure setValue:@(-_inputPower * [inputAmount doubleValue]) forKey:kCIInputEVKey];
    return [exposure valueForKey:kCIOutputImageKey];
}
@end

/// A subclass of a program's filter, which releases what it holds itself.
@interface DarkenTwiceFilter : DarkenFilter {
    CIVector* inputCenter;
}
@end

@implementation DarkenTwiceFilter
+ (NSDictionary*)customAttributes {
    return @{@"inputCenter" : @{kCIAttributeDefault : [CIVector vectorWithX:3 Y:4]}};
}
- (void)dealloc {
    [inputCenter release];
    [super dealloc];
}
@end

@interface DarkenConstructor : NSObject <CIFilterConstructor>
@end

@implementation DarkenConstructor
- (CIFilter*)filterWithName:(NSString*)name {
    return [[[DarkenFilter alloc] init] autorelease];
}
@end

static std::string keysOf(CIFilter* filter) {
    return str([[filter inputKeys] componentsJoinedByString:@" "]);
}

TEST(CIFilterRegistering, ASubclassHasItsVariablesAsInputs) {
    CIFilter* filter = [[[DarkenFilter alloc] init] autorelease];
    EXPECT_EQ(keysOf(filter), "inputImage inputAmount inputPower inputAnything");
    EXPECT_EQ(str([[filter outputKeys] componentsJoinedByString:@" "]), "outputImage");
    EXPECT_EQ(str([filter name]), "DarkenFilter");
    EXPECT_EQ(keysOf([[[DarkenTwiceFilter alloc] init] autorelease]),
              "inputImage inputAmount inputPower inputAnything inputCenter");
    [filter setValue:@0.25 forKey:@"inputAmount"];
    EXPECT_EQ([[filter valueForKey:@"inputAmount"] doubleValue], 0.25);
    NSException* e = raised([&] { [filter setValue:@1 forKey:@"inputNone"]; });
    EXPECT_EQ(str([e name]), "NSUnknownKeyException");
    EXPECT_TRUE([[e reason] hasSuffix:@"The inputs of DarkenFilter are inputImage, inputAmount, inputPower, "
                                      @"inputAnything."]);
}

TEST(CIFilterRegistering, AttributesComeFromVariablesAndFromTheFilter) {
    CIFilter* filter = [[[DarkenFilter alloc] init] autorelease];
    NSDictionary* attributes = [filter attributes];
    NSDictionary* amount = [attributes objectForKey:@"inputAmount"];
    EXPECT_EQ(str([amount objectForKey:kCIAttributeClass]), "NSNumber");
    EXPECT_EQ(str([amount objectForKey:kCIAttributeType]), "CIAttributeTypeScalar");
    EXPECT_EQ([[amount objectForKey:kCIAttributeMax] intValue], 1);
    auto classOf = [&](NSString* key) {
        return str([[attributes objectForKey:key] objectForKey:kCIAttributeClass]);
    };
    EXPECT_EQ(classOf(@"inputImage"), "CIImage");
    EXPECT_EQ(classOf(@"inputPower"), "NSNumber");
    EXPECT_EQ(classOf(@"inputAnything"), "(nil)");
    EXPECT_EQ(classOf(@"outputImage"), "CIImage");
    EXPECT_EQ(str([attributes objectForKey:kCIAttributeFilterName]), "DarkenFilter");

    [filter setDefaults];
    EXPECT_EQ([[filter valueForKey:@"inputAmount"] doubleValue], 0.5);
    EXPECT_EQ([[filter valueForKey:@"inputPower"] doubleValue], 2);
    EXPECT_EQ([filter valueForKey:@"inputImage"], nil);
}

TEST(CIFilterRegistering, ARegisteredFilterIsInTheCatalogue) {
    NSDictionary* own = @{
        kCIAttributeFilterDisplayName : @"Darken",
        kCIAttributeFilterCategories : @[ kCICategoryColorAdjustment, @"OurEffects" ],
        kCIAttributeDescription : @"Makes a picture darker.",
        kCIAttributeReferenceDocumentation : [NSURL URLWithString:@"http://example.org/darken"],
    };
    EXPECT_EQ([CIFilter filterWithName:@"ADarkening"], nil);
    EXPECT_EQ([CIFilter localizedNameForCategory:@"OurEffects"], nil);
    [CIFilter registerFilterName:@"ADarkening" constructor:[DarkenFilter class] classAttributes:own];

    CIFilter* filter = [CIFilter filterWithName:@"ADarkening" keysAndValues:@"inputPower", @4, nil];
    EXPECT_TRUE([filter isKindOfClass:[DarkenFilter class]]);
    EXPECT_EQ(str([filter name]), "ADarkening");
    EXPECT_EQ([[filter valueForKey:@"inputAmount"] doubleValue], 0.5);
    EXPECT_EQ([[filter valueForKey:@"inputPower"] doubleValue], 4);
    EXPECT_EQ(str([[filter attributes] objectForKey:kCIAttributeFilterDisplayName]), "Darken");
    EXPECT_EQ(str([[filter attributes] objectForKey:kCIAttributeFilterName]), "ADarkening");

    NSArray* adjustments = [CIFilter filterNamesInCategory:kCICategoryColorAdjustment];
    EXPECT_TRUE([adjustments containsObject:@"ADarkening"]);
    EXPECT_TRUE([adjustments isEqual:[adjustments sortedArrayUsingSelector:@selector(compare:)]]);
    NSArray* both = @[ kCICategoryColorAdjustment, @"OurEffects" ];
    EXPECT_TRUE([[CIFilter filterNamesInCategories:both] isEqual:@[ @"ADarkening" ]]);
    EXPECT_FALSE([[CIFilter filterNamesInCategory:kCICategoryBlur] containsObject:@"ADarkening"]);
    EXPECT_TRUE([[CIFilter filterNamesInCategory:nil] containsObject:@"ADarkening"]);

    EXPECT_EQ(str([CIFilter localizedNameForFilterName:@"ADarkening"]), "Darken");
    EXPECT_EQ(str([CIFilter localizedDescriptionForFilterName:@"ADarkening"]), "Makes a picture darker.");
    EXPECT_EQ(str([[CIFilter localizedReferenceDocumentationForFilterName:@"ADarkening"] absoluteString]),
              "http://example.org/darken");
    EXPECT_EQ(str([CIFilter localizedNameForCategory:@"OurEffects"]), "OurEffects");
}

TEST(CIFilterRegistering, AConstructorMakesTheFilter) {
    DarkenConstructor* constructor = [[[DarkenConstructor alloc] init] autorelease];
    [CIFilter registerFilterName:@"OurOther" constructor:constructor classAttributes:nil];
    CIFilter* filter = [CIFilter filterWithName:@"OurOther"];
    EXPECT_TRUE([filter isKindOfClass:[DarkenFilter class]]);
    EXPECT_EQ(str([filter name]), "OurOther");
    EXPECT_EQ(str([CIFilter localizedNameForFilterName:@"OurOther"]), "OurOther");
    EXPECT_TRUE([[CIFilter filterNamesInCategory:nil] containsObject:@"OurOther"]);
    // Registered again, the name stands for the new constructor.
    [CIFilter registerFilterName:@"OurOther" constructor:[DarkenTwiceFilter class] classAttributes:nil];
    EXPECT_TRUE([[CIFilter filterWithName:@"OurOther"] isKindOfClass:[DarkenTwiceFilter class]]);
    EXPECT_EQ([[[CIFilter filterNamesInCategory:nil]
                  filteredArrayUsingPredicate:[NSPredicate predicateWithFormat:@"SELF = 'OurOther'"]] count],
              1u);
}

TEST(CIFilterRegistering, NamesAndConstructorsAreNeeded) {
    auto refused = [](NSString* name, id constructor) {
        NSException* e =
            raised([&] { [CIFilter registerFilterName:name constructor:constructor classAttributes:nil]; });
        return str([e name]) + ": " + str([e reason]);
    };
    EXPECT_EQ(refused(nil, [DarkenFilter class]),
              "NSInvalidArgumentException: registerFilterName: a name is needed");
    EXPECT_EQ(refused(@"OurNothing", nil),
              "NSInvalidArgumentException: registerFilterName: a constructor is needed");
    EXPECT_EQ(refused(@"CISepiaTone", [DarkenFilter class]),
              "NSInvalidArgumentException: registerFilterName: CISepiaTone is a built-in filter");
    EXPECT_EQ([CIFilter filterWithName:@"OurNothing"], nil);
}

TEST(CIFilterRegistering, ItRendersAndCopies) {
    CIFilter* filter = [[[DarkenFilter alloc] init] autorelease];
    [filter setDefaults];
    [filter setValue:[CIImage imageWithColor:[CIColor colorWithRed:1 green:1 blue:1]]
              forKey:kCIInputImageKey];
    // An exposure of -1 halves the light.
    auto red = [](CIFilter* f) {
        std::uint8_t pixel[4] = {};
        cg::Retained<CGColorSpaceRef> linear =
            cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceGenericRGBLinear));
        [[CIContext contextWithCGContext:nullptr options:nil] render:[f valueForKey:kCIOutputImageKey]
                                                            toBitmap:pixel
                                                            rowBytes:4
                                                              bounds:CGRectMake(0, 0, 1, 1)
                                                              format:kCIFormatRGBA8
                                                          colorSpace:linear.get()];
        return int(pixel[0]);
    };
    EXPECT_NEAR(red(filter), 128, 2);
    CIFilter* copy = [[filter copy] autorelease];
    [filter setValue:@0 forKey:@"inputAmount"];
    EXPECT_NEAR(red(filter), 255, 1);
    EXPECT_NEAR(red(copy), 128, 2);
}

TEST(CIFilterRegistering, InputsAreReleasedOnce) {
    int images = liveObjects()["CIImage"], filters = liveObjects()["CIFilter"],
        vectors = liveObjects()["CIVector"];
    @autoreleasepool {
        for (Class own : {[DarkenFilter class], [DarkenTwiceFilter class]}) {
            CIFilter* filter = [[own alloc] init];
            EXPECT_EQ(liveObjects()["CIFilter"], filters + 1);
            [filter setDefaults];
            CIImage* first = [CIImage emptyImage];
            [filter setValue:first forKey:kCIInputImageKey];
            [filter setValue:[CIImage emptyImage] forKey:kCIInputImageKey];
            EXPECT_EQ([first retainCount], 1u);
            // The class with a dealloc of its own has to release what it inherits, too.
            if (own == [DarkenTwiceFilter class]) [filter setValue:nil forKey:kCIInputImageKey];
            [filter release];
            EXPECT_EQ(liveObjects()["CIFilter"], filters);
        }
    }
    EXPECT_EQ(liveObjects()["CIImage"], images);
    EXPECT_EQ(liveObjects()["CIVector"], vectors);
}
