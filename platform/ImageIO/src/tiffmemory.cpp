// libtiff on memory instead of a file.
#include "tiffmemory.h"

#include <cstdio>
#include <cstring>

namespace imageio {

namespace {

tmsize_t read(thandle_t handle, void* out, tmsize_t wanted) {
    auto* file = static_cast<MemoryFile*>(handle);
    const std::uint8_t* data = file->output ? file->output->data() : file->bytes.data();
    std::size_t left =
        file->position < file->size() ? file->size() - static_cast<std::size_t>(file->position) : 0;
    std::size_t n = std::min(left, static_cast<std::size_t>(wanted));
    if (n) std::memcpy(out, data + file->position, n);
    file->position += n;
    return static_cast<tmsize_t>(n);
}

tmsize_t write(thandle_t handle, void* from, tmsize_t size) {
    auto* file = static_cast<MemoryFile*>(handle);
    if (!file->output) return 0;
    try {
        auto end = static_cast<std::size_t>(file->position) + static_cast<std::size_t>(size);
        if (end > file->output->size()) file->output->resize(end);
    } catch (const std::exception&) {
        // No exception may pass through the library.
        file->failed = true;
        return 0;
    }
    std::memcpy(file->output->data() + file->position, from, static_cast<std::size_t>(size));
    file->position += static_cast<std::uint64_t>(size);
    return size;
}

toff_t seek(thandle_t handle, toff_t offset, int from) {
    auto* file = static_cast<MemoryFile*>(handle);
    std::uint64_t base = from == SEEK_CUR ? file->position : from == SEEK_END ? file->size() : 0;
    return file->position = base + offset;
}

int close(thandle_t) { return 0; }
toff_t size(thandle_t handle) { return static_cast<MemoryFile*>(handle)->size(); }

// Messages are not printed: the failing call returns an error.
int quiet(TIFF*, void*, const char*, const char*, va_list) { return 1; }

} // namespace

TIFF* openTiff(MemoryFile& file, const char* mode) {
    std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> options(TIFFOpenOptionsAlloc(),
                                                                         TIFFOpenOptionsFree);
    if (!options) return nullptr;
    // No strip of an image within the limit is larger.
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), memoryLimit);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), quiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), quiet, nullptr);
    return TIFFClientOpenExt("memory", mode, &file, read, write, seek, close, size, nullptr, nullptr,
                             options.get());
}

} // namespace imageio
