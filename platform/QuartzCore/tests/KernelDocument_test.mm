// docs/kernels.md: its example is a filter, and its kernels are kernels.
#include "kernel_example.h"
#include "support.h"

#include <fstream>
#include <sstream>

namespace {

std::string contentsOf(const char* path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The code blocks of the document that are in a language.
std::vector<std::string> blocks(const std::string& language) {
    std::string page = contentsOf(KAZ_KERNELS_PAGE), begin = "```" + language + "\n";
    std::vector<std::string> found;
    for (size_t at = 0; (at = page.find(begin, at)) != page.npos;) {
        at += begin.size();
        found.push_back(page.substr(at, page.find("```", at) - at));
    }
    return found;
}

} // namespace

TEST(KernelDocument, ShowsTheFilterThatIsTestedHere) {
    ASSERT_EQ(blocks("objc").size(), 1u);
    EXPECT_NE(contentsOf(KAZ_KERNEL_EXAMPLE).find(blocks("objc")[0]), std::string::npos);
}

TEST(KernelDocument, ItsFilterMixesTwoColoursByLuminance) {
    CIFilter* filter = [[[DuotoneFilter alloc] init] autorelease];
    CIImage* grey = [CIImage imageWithColor:[CIColor colorWithRed:0.5 green:0.5 blue:0.5]];
    [filter setValue:[grey imageByCroppingToRect:CGRectMake(0, 0, 2, 2)] forKey:@"inputImage"];
    [filter setValue:[CIColor colorWithRed:0 green:0 blue:1] forKey:@"inputDark"];
    [filter setValue:[CIColor colorWithRed:1 green:0 blue:0] forKey:@"inputLight"];
    CIImage* output = [filter valueForKey:kCIOutputImageKey];
    EXPECT_TRUE(CGRectEqualToRect([output extent], CGRectMake(0, 0, 2, 2)));
    Bitmap canvas(2, 2);
    CGRect all = CGRectMake(0, 0, 2, 2);
    [[CIContext contextWithCGContext:canvas.get() options:nil] drawImage:output inRect:all fromRect:all];
    // The luminance of the grey is 0.214: so much red light, and the rest of the blue.
    expectNear(canvas.pixel(1, 1), {128, 0, 228, 255}, 1);
}

TEST(KernelDocument, ItsKernelsAreKernels) {
    auto kernels = blocks("glsl");
    EXPECT_EQ(kernels.size(), 3u);
    for (const std::string& text : kernels)
        EXPECT_EQ([[CIKernel kernelsWithString:[NSString stringWithUTF8String:text.c_str()]] count], 1u)
            << text;
}
