// Filters a picture and saves it: ./kaz-clang examples/objective-c/main.m -o sepia && ./sepia photo.jpg
// sepia.png
#import <Cocoa/Cocoa.h>
#import <QuartzCore/QuartzCore.h>

int main(int argc, const char* argv[]) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    if (argc != 3) {
        fprintf(stderr, "usage: %s PICTURE OUTPUT.png\n", argv[0]);
        return 2;
    }
    NSFileManager* files = [NSFileManager defaultManager];
    NSString* input = [files stringWithFileSystemRepresentation:argv[1] length:strlen(argv[1])];
    NSString* output = [files stringWithFileSystemRepresentation:argv[2] length:strlen(argv[2])];

    CIImage* photo = [CIImage imageWithContentsOfURL:[NSURL fileURLWithPath:input]];
    if (!photo) {
        fprintf(stderr, "%s: cannot read %s\n", argv[0], argv[1]);
        return 1;
    }
    CIFilter* sepia = [CIFilter filterWithName:@"CISepiaTone"];
    [sepia setDefaults];
    [sepia setValue:photo forKey:kCIInputImageKey];
    [sepia setValue:[NSNumber numberWithDouble:0.8] forKey:@"inputIntensity"];
    CIImage* result = [sepia valueForKey:kCIOutputImageKey];

    CIContext* context = [CIContext contextWithCGContext:NULL options:nil];
    CGImageRef pixels = [context createCGImage:result fromRect:[result extent]];
    NSBitmapImageRep* bitmap = [[[NSBitmapImageRep alloc] initWithCGImage:pixels] autorelease];
    CGImageRelease(pixels);
    NSData* png = [bitmap representationUsingType:NSPNGFileType properties:nil];
    if (![png writeToFile:output atomically:YES]) {
        fprintf(stderr, "%s: cannot write %s\n", argv[0], argv[2]);
        return 1;
    }
    [pool release];
    return 0;
}
