// The table of the plugin's global functions.
#include "globals.h"

#include <coreimage/classes.h>

using namespace coreimage;
using host::method;

namespace {

// Declarations are the host's to read, letter for letter.
REALmethodDefinition table[] = {
    method("NewCISamplerKaz(ciImage as CIImageKaz) as CISamplerKaz", samplerWithImage),
    method("NewCISamplerKaz(ciImage as CIImageKaz, matrix as NSAffineTransformKaz, WrapMode as String, "
           "FilterMode "
           "as string) as CISamplerKaz",
           samplerWithImageAndOptions),
    method("NewCIColorKaz(red as single, green as single, blue as single, alpha as single=1.0) as CIColorKaz",
           colorWithComponents),
    method("NewCIColorWithStringKaz(s as String) as CIColorKaz", colorWithString),
    method("NewCIColorWithCGColorKaz(col as CGColorKaz) as CIColorKaz", colorWithCGColor),
    method("NewCIImagewithCGImageKaz(cgimage as CGImageKaz) as CIImageKaz", imageWithCGImage),
    method("NewCIImagewithCGImageKaz(cgimage as CGImageKaz, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithCGImageAndColorSpace),
    method("NewCIImagewithURLKaz(url as String) as CIImageKaz", imageWithContentsOfURL),
    method("NewCIImagewithURLKaz(url as String, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfURLAndColorSpace),
    method("NewCIImagewithDataKaz(Data as Memoryblock) as CIImageKaz", imageWithData),
    method("NewCIImagewithDataKaz(Data as Memoryblock, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithDataAndColorSpace),
    method("NewCIImagewithFileKaz(file as folderitem) as CIImageKaz", imageWithContentsOfFile),
    method("NewCIImagewithFileKaz(file as folderitem, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfFileAndColorSpace),
    method("NewCIImagewithBitmapDataKaz(data as Memoryblock, BytesPerRow as integer, Width as integer, "
           "Height as "
           "integer, Format as integer, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithBitmapData),
    method("NewCIImagewithBitmapMemoryKaz(data as Memoryblock, DataLength as Integer, BytesPerRow as "
           "integer, Width "
           "as integer, Height as integer, Format as integer, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithBitmapMemory),
    method("NewCIContextKaz(cgcontext as CGContextKaz, OutputColorSpace as CGColorSpaceKaz, "
           "WorkingColorSpace as "
           "CGColorSpaceKaz, UseSoftwareRenderer as Boolean) as CIContextKaz",
           contextWithCGContextAndOptions),
    method("NewCIContextKaz(cgcontext as CGContextKaz) as CIContextKaz", contextWithCGContext),
    method("NewCIVectorWithXKaz(x as single) as CIVectorKaz", vectorWithX),
    method("NewCIVectorWithXYKaz(x as single, y as single) as CIVectorKaz", vectorWithXY),
    method("NewCIVectorWithXYZKaz(x as single, y as single, z as single) as CIVectorKaz", vectorWithXYZ),
    method("NewCIVectorWithXYZWKaz(x as single, y as single, z as single, w as single) as CIVectorKaz",
           vectorWithXYZW),
    method("NewCIVectorWithStringKaz(s as string) as CIVectorKaz", vectorWithString),
};
static_assert(std::size(table) == 22);

} // namespace

host::Table<REALmethodDefinition> plugin::globalsMethods() { return table; }
