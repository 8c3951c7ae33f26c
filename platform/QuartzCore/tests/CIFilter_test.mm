// CIFilter: keys, values, attributes and the catalogue.
#include "support.h"

TEST(CIFilter, ByName) {
    CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone"];
    ASSERT_TRUE(filter != nil);
    EXPECT_EQ(str([filter name]), "CISepiaTone");
    EXPECT_EQ(str(NSStringFromClass([filter class])), "CISepiaTone");
    EXPECT_TRUE([filter isKindOfClass:[CIFilter class]]);
    EXPECT_EQ([CIFilter filterWithName:@"CINoSuchFilter"], nil);
    EXPECT_EQ([CIFilter filterWithName:nil], nil);
    EXPECT_EQ([[CIFilter alloc] init], nil);
    EXPECT_NE([CIFilter filterWithName:@"CISepiaTone"], filter);
}

TEST(CIFilter, InputsAreUnsetUntilTheyAreSet) {
    CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone"];
    EXPECT_EQ([filter valueForKey:@"inputIntensity"], nil);
    [filter setDefaults];
    EXPECT_EQ([[filter valueForKey:@"inputIntensity"] doubleValue], 1);
    EXPECT_EQ([filter valueForKey:@"inputImage"], nil);
    [filter setValue:[NSNumber numberWithDouble:0.25] forKey:@"inputIntensity"];
    EXPECT_EQ([[filter valueForKey:@"inputIntensity"] doubleValue], 0.25);
    [filter setValue:nil forKey:@"inputIntensity"];
    EXPECT_EQ([filter valueForKey:@"inputIntensity"], nil);
}

TEST(CIFilter, UnknownKeysRaise) {
    CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone"];
    NSException* e = raised([&] { [filter valueForKey:@"foo"]; });
    EXPECT_EQ(str([e name]), "NSUnknownKeyException");
    EXPECT_EQ(str([e reason]),
              str([NSString stringWithFormat:@"[<CISepiaTone %p> valueForUndefinedKey:]: this class is not "
                                             @"key value coding-compliant for the key foo. The inputs of "
                                             @"CISepiaTone are inputImage, inputIntensity.",
                                             filter]));
    e = raised([&] { [filter setValue:@"x" forKey:@"bar"]; });
    EXPECT_EQ(str([e name]), "NSUnknownKeyException");
    EXPECT_TRUE([[e reason]
        hasSuffix:@"setValue:forUndefinedKey:]: this class is not key value coding-compliant for the key "
                  @"bar. The inputs of CISepiaTone are inputImage, inputIntensity."]);
    EXPECT_EQ(str([raised([&] { [filter setValue:nil forKey:@"outputImage"]; }) name]),
              "NSUnknownKeyException");
    // Instance variables are out of reach, too.
    EXPECT_EQ(str([raised([&] { [filter valueForKey:@"_state"]; }) name]), "NSUnknownKeyException");
    EXPECT_EQ(str([raised([&] { [filter setValue:nil forKey:nil]; }) name]), "NSUnknownKeyException");
}

TEST(CIFilter, ValuesAreRetained) {
    CIVector* vector = [[CIVector alloc] initWithX:1 Y:2];
    @autoreleasepool {
        CIFilter* filter = [CIFilter filterWithName:@"CICheckerboardGenerator"];
        [filter setValue:vector forKey:@"inputCenter"];
        EXPECT_EQ([vector retainCount], 2u);
        EXPECT_EQ([filter valueForKey:@"inputCenter"], vector);
    }
    EXPECT_EQ([vector retainCount], 1u);
    [vector release];
}

TEST(CIFilter, OutputIsARecipe) {
    CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone"];
    EXPECT_EQ([filter valueForKey:@"outputImage"], nil); // no image to work on
    [filter setValue:[CIImage imageWithCGImage:makePicture(4, 3).get()] forKey:@"inputImage"];
    CIImage* output = [filter valueForKey:@"outputImage"];
    EXPECT_TRUE(CGRectEqualToRect([output extent], CGRectMake(0, 0, 4, 3)));
    EXPECT_EQ([output colorSpace], nullptr);
}

TEST(CIFilter, WrongValuesRaiseWhenTheOutputIsMade) {
    CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone"];
    [filter setValue:[CIImage emptyImage] forKey:@"inputImage"];
    CIColor* color = [CIColor colorWithRed:1 green:0 blue:0];
    [filter setValue:color forKey:@"inputIntensity"];
    EXPECT_EQ([filter valueForKey:@"inputIntensity"], color);
    NSException* e = raised([&] { [filter valueForKey:@"outputImage"]; });
    EXPECT_EQ(str([e name]), str(NSInvalidArgumentException));
    EXPECT_EQ(str([e reason]), "CISepiaTone: the value of inputIntensity must be a NSNumber, not a CIColor");
    // Text is parsed as a number.
    [filter setValue:@"0.5" forKey:@"inputIntensity"];
    EXPECT_TRUE([filter valueForKey:@"outputImage"] != nil);
    [filter setValue:@"an image" forKey:@"inputImage"];
    EXPECT_EQ(str([raised([&] { [filter outputImage]; }) name]), str(NSInvalidArgumentException));
}

TEST(CIFilter, KeysAndAttributes) {
    CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone"];
    EXPECT_TRUE([[filter inputKeys] containsObject:@"inputImage"]);
    EXPECT_TRUE([[filter inputKeys] containsObject:@"inputIntensity"]);
    EXPECT_EQ(str([[filter outputKeys] objectAtIndex:0]), "outputImage");
    NSDictionary* attributes = [filter attributes];
    EXPECT_EQ(str([attributes objectForKey:kCIAttributeFilterName]), "CISepiaTone");
    EXPECT_EQ(str([attributes objectForKey:@"CIAttributeFilterDisplayName"]), "Sepia Tone");
    EXPECT_TRUE(
        [[attributes objectForKey:@"CIAttributeFilterCategories"] containsObject:@"CICategoryColorEffect"]);
    NSDictionary* intensity = [attributes objectForKey:@"inputIntensity"];
    EXPECT_EQ(str([intensity objectForKey:@"CIAttributeClass"]), "NSNumber");
    EXPECT_EQ(str([intensity objectForKey:@"CIAttributeType"]), "CIAttributeTypeScalar");
    EXPECT_EQ([[intensity objectForKey:@"CIAttributeDefault"] doubleValue], 1);
    EXPECT_EQ([[intensity objectForKey:@"CIAttributeIdentity"] doubleValue], 0);
    EXPECT_EQ([[intensity objectForKey:@"CIAttributeSliderMax"] doubleValue], 1);
    EXPECT_EQ([[attributes objectForKey:@"inputImage"] objectForKey:@"CIAttributeDefault"], nil);
}

TEST(CIFilter, AttributesHaveCoreImagesTypes) {
    auto defaultOf = [](NSString* filter, NSString* key) {
        return [[[[CIFilter filterWithName:filter] attributes] objectForKey:key]
            objectForKey:kCIAttributeDefault];
    };
    EXPECT_TRUE([defaultOf(@"CICheckerboardGenerator", @"inputCenter") isKindOfClass:[CIVector class]]);
    EXPECT_TRUE([defaultOf(@"CIConstantColorGenerator", @"inputColor") isKindOfClass:[CIColor class]]);
    EXPECT_TRUE([defaultOf(@"CIAffineTransform", @"inputTransform") isKindOfClass:[NSAffineTransform class]]);
    NSAffineTransformStruct m = [defaultOf(@"CIAffineTransform", @"inputTransform") transformStruct];
    EXPECT_EQ(m.m11, 1);
    EXPECT_EQ(m.m12, 0);
}

TEST(CIFilter, TheFilterDescribesItself) {
    NSDictionary* attributes = [[CIFilter filterWithName:@"CIBoxBlur"] attributes];
    EXPECT_EQ(str([attributes objectForKey:@"CIAttributeFilterAvailable_Mac"]), "10.5");
    EXPECT_EQ(str([attributes objectForKey:@"CIAttributeDescription"]),
              str([CIFilter localizedDescriptionForFilterName:@"CIBoxBlur"]));
    NSURL* url = [attributes objectForKey:@"CIAttributeReferenceDocumentation"];
    EXPECT_TRUE([url isKindOfClass:[NSURL class]]);
    EXPECT_TRUE([[url absoluteString] hasSuffix:@"/CIBoxBlur"]);
}

TEST(CIFilter, TheOutputHasOnlyAClass) {
    NSDictionary* output = [[[CIFilter filterWithName:@"CIBoxBlur"] attributes] objectForKey:@"outputImage"];
    EXPECT_EQ([output count], 1u);
    EXPECT_EQ(str([output objectForKey:@"CIAttributeClass"]), "CIImage");
}

TEST(CIFilter, InputKeysAreInTheOrderOfTheFilter) {
    CIFilter* filter = [CIFilter filterWithName:@"CIColorControls"];
    EXPECT_EQ(str([[filter inputKeys] componentsJoinedByString:@" "]),
              "inputImage inputSaturation inputBrightness inputContrast");
    EXPECT_EQ(str([[filter outputKeys] componentsJoinedByString:@" "]), "outputImage");
}

TEST(CIFilter, NamesByCategory) {
    NSArray* all = [CIFilter filterNamesInCategory:nil];
    NSArray* effects = [CIFilter filterNamesInCategory:kCICategoryColorEffect];
    EXPECT_TRUE([effects containsObject:@"CISepiaTone"]);
    EXPECT_FALSE([effects containsObject:@"CICheckerboardGenerator"]);
    EXPECT_GT([all count], [effects count]);
    NSArray* both = [CIFilter filterNamesInCategories:@[ kCICategoryColorEffect, kCICategoryBuiltIn ]];
    EXPECT_EQ([both count], [effects count]);
    EXPECT_EQ([[CIFilter filterNamesInCategory:@"CICategoryNonsense"] count], 0u);
    // Only filters in both categories.
    NSArray* blurs = @[ kCICategoryColorEffect, kCICategoryBlur ];
    EXPECT_EQ([[CIFilter filterNamesInCategories:blurs] count], 0u);
    // No category: all filters.
    EXPECT_TRUE([[CIFilter filterNamesInCategories:nil] isEqual:all]);
    EXPECT_TRUE([[CIFilter filterNamesInCategories:@[]] isEqual:all]);
    NSArray* sorted = [all sortedArrayUsingSelector:@selector(compare:)];
    EXPECT_TRUE([all isEqual:sorted]);
}

TEST(CIFilter, FiltersOfNoCategoryAreFoundByNameOnly) {
    for (NSString* name in @[ @"CIFaceBalance", @"CIRedEyeCorrections" ]) {
        CIFilter* filter = [CIFilter filterWithName:name];
        ASSERT_TRUE(filter != nil) << str(name);
        EXPECT_EQ([[[filter attributes] objectForKey:kCIAttributeFilterCategories] count], 0u);
        EXPECT_FALSE([[CIFilter filterNamesInCategory:nil] containsObject:name]);
        EXPECT_FALSE([[CIFilter filterNamesInCategory:kCICategoryBuiltIn] containsObject:name]);
    }
}

TEST(CIFilter, EveryFilterCanBeMadeAndDescribed) {
    for (NSString* name in [CIFilter filterNamesInCategory:nil]) {
        CIFilter* filter = [CIFilter filterWithName:name];
        EXPECT_EQ(str([filter name]), str(name));
        [filter setDefaults];
        NSDictionary* attributes = [filter attributes];
        // Six entries of the filter, and one of its output.
        EXPECT_EQ([attributes count], [[filter inputKeys] count] + 7) << str(name);
        for (NSString* key in [filter inputKeys])
            EXPECT_TRUE([[attributes objectForKey:key] objectForKey:kCIAttributeClass] != nil)
                << str(name) << str(key);
        // With nothing but defaults there may or may not be an image, but no exception.
        EXPECT_EQ(raised([&] { [filter outputImage]; }), nil) << str(name);
    }
}

TEST(CIFilter, TextsForUsers) {
    EXPECT_EQ(str([CIFilter localizedNameForFilterName:@"CISepiaTone"]), "Sepia Tone");
    EXPECT_EQ(str([CIFilter localizedNameForCategory:kCICategoryBlur]), "Blur");
    EXPECT_EQ([CIFilter localizedNameForCategory:@"CICategoryNonsense"], nil);
    EXPECT_EQ([CIFilter localizedNameForFilterName:@"CINoSuchFilter"], nil);
    EXPECT_GT([[CIFilter localizedDescriptionForFilterName:@"CISepiaTone"] length], 0u);
    NSURL* url = [CIFilter localizedReferenceDocumentationForFilterName:@"CISepiaTone"];
    EXPECT_TRUE([[url absoluteString] hasSuffix:@"/CISepiaTone"]);
    EXPECT_EQ([CIFilter localizedReferenceDocumentationForFilterName:@"CINoSuchFilter"], nil);
}

TEST(CIFilter, EveryCategoryAndEveryFilterHasItsTexts) {
    for (NSString* category in @[
             kCICategoryDistortionEffect,
             kCICategoryGeometryAdjustment,
             kCICategoryCompositeOperation,
             kCICategoryHalftoneEffect,
             kCICategoryColorAdjustment,
             kCICategoryColorEffect,
             kCICategoryTransition,
             kCICategoryTileEffect,
             kCICategoryGenerator,
             kCICategoryGradient,
             kCICategoryStylize,
             kCICategorySharpen,
             kCICategoryBlur,
             kCICategoryVideo,
             kCICategoryStillImage,
             kCICategoryInterlaced,
             kCICategoryNonSquarePixels,
             kCICategoryHighDynamicRange,
             kCICategoryBuiltIn,
             kCICategoryReduction
         ]) {
        NSString* name = [CIFilter localizedNameForCategory:category];
        ASSERT_TRUE(name != nil) << str(category);
        // The words of the key, taken apart.
        NSString* squeezed = [[name stringByReplacingOccurrencesOfString:@" " withString:@""]
            stringByReplacingOccurrencesOfString:@"-"
                                      withString:@""];
        EXPECT_EQ("CICategory" + str(squeezed), str(category));
    }
    EXPECT_EQ([CIFilter localizedNameForCategory:nil], nil);
    NSMutableSet* descriptions = [NSMutableSet set];
    NSArray* all = [CIFilter filterNamesInCategory:nil];
    for (NSString* name in all) {
        EXPECT_GT([[CIFilter localizedNameForFilterName:name] length], 0u) << str(name);
        NSString* description = [CIFilter localizedDescriptionForFilterName:name];
        EXPECT_TRUE([description hasSuffix:@"."]) << str(name);
        [descriptions addObject:description];
        EXPECT_TRUE([[[CIFilter localizedReferenceDocumentationForFilterName:name] absoluteString]
            hasSuffix:[@"/" stringByAppendingString:name]]);
    }
    EXPECT_EQ([descriptions count], [all count]) << "two filters share a description";
    EXPECT_EQ([CIFilter localizedDescriptionForFilterName:@"CINoSuchFilter"], nil);
    EXPECT_EQ([CIFilter localizedReferenceDocumentationForFilterName:nil], nil);
}

TEST(CIFilter, DefaultsAreThoseOfTheAttributes) {
    for (NSString* name in [CIFilter filterNamesInCategory:nil]) {
        CIFilter* filter = [CIFilter filterWithName:name];
        [filter setDefaults];
        for (NSString* key in [filter inputKeys]) {
            id declared = [[[filter attributes] objectForKey:key] objectForKey:kCIAttributeDefault];
            id value = [filter valueForKey:key];
            EXPECT_EQ(declared == nil, value == nil) << str(name) << str(key);
            // Colours and the like are compared by their descriptions.
            if (declared)
                EXPECT_EQ(str([value description]), str([declared description])) << str(name) << str(key);
        }
    }
}

TEST(CIFilter, DefaultsLeaveInputsWithoutADefault) {
    CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone"];
    CIImage* image = [CIImage emptyImage];
    [filter setValue:image forKey:@"inputImage"];
    [filter setDefaults];
    EXPECT_EQ([filter valueForKey:@"inputImage"], image);
}

TEST(CIFilter, CopiesHaveTheirOwnValues) {
    CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone" keysAndValues:@"inputIntensity", @0.5, nil];
    EXPECT_EQ([[filter valueForKey:@"inputIntensity"] doubleValue], 0.5);
    CIFilter* copy = [[filter copy] autorelease];
    [copy setValue:@0.75 forKey:@"inputIntensity"];
    EXPECT_EQ([[filter valueForKey:@"inputIntensity"] doubleValue], 0.5);
    EXPECT_EQ(str([copy name]), "CISepiaTone");
}
