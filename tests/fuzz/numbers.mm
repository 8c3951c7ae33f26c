// Fuzzing the text of vectors, colours and URLs: what is read and written again reads as the same.
#import <QuartzCore/CoreImage.h>

#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSString* text = [[[NSString alloc] initWithBytes:bytes length:size
                                             encoding:NSUTF8StringEncoding] autorelease];
    if (text) {
        CIVector* vector = [CIVector vectorWithString:text];
        CIVector* again = [CIVector vectorWithString:[vector stringRepresentation]];
        if (vector && [vector count] > 0 && [again count] != [vector count]) std::abort();
        [[CIColor colorWithString:text] stringRepresentation];
        @try {
            [[[NSURL URLWithString:text] path] length];
        } @catch (NSException*) {
        }
    }
    [pool release];
    return 0;
}
