// Data providers and their C functions.
#include <cg/dataprovider.h>

#include <files/wholefile.h>

#include <vector>

namespace cg {

static LiveCount live("CGDataProvider");

DataProvider::DataProvider(const std::uint8_t* bytes, std::size_t size, std::function<void()> release)
    : Payload(&live), bytes_(bytes), size_(size), release_(std::move(release)) {}

DataProvider::~DataProvider() {
    if (release_) release_();
}

CGDataProviderRef makeProvider(const std::uint8_t* bytes, std::size_t size,
                               std::shared_ptr<const void> owner) noexcept {
    return guarded([&] { return make<DataProvider>(bytes, size, [owner = std::move(owner)] {}); });
}

std::string filePath(CFURLRef url) {
    char text[4096];
    if (!url || !CFStringGetCString(CFURLGetString(url), text, sizeof text, kCFStringEncodingUTF8)) return {};
    if (std::string(text).rfind("file:", 0) != 0) return {};
    auto path = Retained<CFStringRef>::adopt(CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle));
    if (!path || !CFStringGetCString(path.get(), text, sizeof text, kCFStringEncodingUTF8)) return {};
    return text;
}

} // namespace cg

using namespace cg;

CGDataProviderRef CGDataProviderCreateWithData(void* info, const void* data, size_t size,
                                               CGDataProviderReleaseDataCallback releaseData) {
    return guarded([&] {
        std::function<void()> release;
        if (releaseData) release = [=] { releaseData(info, data, size); };
        return make<DataProvider>(static_cast<const std::uint8_t*>(data), size, std::move(release));
    });
}

CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data) {
    if (!data) return nullptr;
    return guarded([&] {
        Retained<CFDataRef> kept(data);
        return make<DataProvider>(CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data)),
                                  [kept = std::move(kept)] {});
    });
}

// Null for a URL that nothing loads.
static CGDataProviderRef providerOfResource(CFURLRef url) {
    CFDataRef loaded = nullptr;
    CFURLCreateDataAndPropertiesFromResource(kCFAllocatorDefault, url, &loaded, nullptr, nullptr, nullptr);
    auto data = Retained<CFDataRef>::adopt(loaded);
    return CGDataProviderCreateWithCFData(data.get());
}

CGDataProviderRef CGDataProviderCreateWithURL(CFURLRef url) {
    return guarded([&]() -> CGDataProviderRef {
        std::string path = filePath(url);
        if (path.empty()) return providerOfResource(url);
        try {
            auto bytes = std::make_shared<std::vector<std::uint8_t>>(wholefile::read(path));
            return makeProvider(bytes->data(), bytes->size(), bytes);
        } catch (const wholefile::Error&) {
            return nullptr;
        }
    });
}

CFDataRef CGDataProviderCopyData(CGDataProviderRef provider) {
    DataProvider* self = get<DataProvider>(provider);
    return self ? CFDataCreate(kCFAllocatorDefault, self->bytes(), static_cast<CFIndex>(self->size()))
                : nullptr;
}

CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider) {
    if (provider) CFRetain(provider);
    return provider;
}

void CGDataProviderRelease(CGDataProviderRef provider) {
    if (provider) CFRelease(provider);
}
