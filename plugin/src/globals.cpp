// The table of the plugin's global functions.
#include "globals.h"

#include <coreimage/classes.h>

using namespace coreimage;
using host::method;

namespace {

// Declarations are the host's to read, letter for letter.
/// The functions make objects of the plugin's classes, and return Nil where a constructor would leave its
/// object empty.
///     Dim file As FolderItem = SamplePhoto("coffee.png")
///     Dim stream As BinaryStream = BinaryStream.Open(file)
///     Dim bytes As MemoryBlock = stream.Read(stream.Length)
///     Dim pixels As New MemoryBlock(4 * 4 * 4)
///     Dim sRGB As CGColorSpaceKaz = CGColorSpaceKaz.SRGB
///     Dim bitmap As CGImageKaz = CGImageKaz.ImageWithFile(file)
///     Dim canvas As New CGContextKaz(300, 200)
REALmethodDefinition table[] = {
    /// Returns a sampler that reads the image as it is.
    ///     Print NewCISamplerKaz(NewCIImagewithFileKaz(file)).Extent.Description
    method("NewCISamplerKaz(ciImage as CIImageKaz) as CISamplerKaz", samplerWithImage),
    /// Returns a sampler that reads the image through a transform, with modes from the constants of
    /// CISamplerKaz; Nil without an image.
    ///     Dim near As CISamplerKaz = _
    ///       NewCISamplerKaz(NewCIImagewithFileKaz(file), New NSAffineTransformKaz, "clamp", "nearest")
    method("NewCISamplerKaz(ciImage as CIImageKaz, matrix as NSAffineTransformKaz, WrapMode as String, "
           "FilterMode "
           "as string) as CISamplerKaz",
           samplerWithImageAndOptions),
    /// Returns a colour from red, green, blue and alpha, each from 0 to 1.
    ///     Print NewCIColorKaz(1, 0.5, 0).StringRepresentation
    method("NewCIColorKaz(red as single, green as single, blue as single, alpha as single=1.0) as CIColorKaz",
           colorWithComponents),
    /// Returns a colour from components separated by spaces, or Nil for empty text.
    ///     Print NewCIColorWithStringKaz("1 0.5 0 1").StringRepresentation
    method("NewCIColorWithStringKaz(s as String) as CIColorKaz", colorWithString),
    /// Returns a Core Graphics colour in its own colour space, or Nil without one.
    ///     Print NewCIColorWithCGColorKaz(New CGColorKaz(1, 0, 0)).StringRepresentation
    method("NewCIColorWithCGColorKaz(col as CGColorKaz) as CIColorKaz", colorWithCGColor),
    /// Returns an image of a Core Graphics image, or Nil without one.
    ///     Print Str(NewCIImagewithCGImageKaz(bitmap).Width)
    method("NewCIImagewithCGImageKaz(cgimage as CGImageKaz) as CIImageKaz", imageWithCGImage),
    /// Returns an image of a Core Graphics image, whose numbers are taken to be in the colour space. Raises
    /// NilObjectException without an image.
    ///     Print Str(NewCIImagewithCGImageKaz(bitmap, sRGB).Width)
    method("NewCIImagewithCGImageKaz(cgimage as CGImageKaz, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithCGImageAndColorSpace),
    /// Returns an image of the file at an address, or Nil if it holds no image.
    ///     Print Str(NewCIImagewithURLKaz(file.URLPath).Width)
    method("NewCIImagewithURLKaz(url as String) as CIImageKaz", imageWithContentsOfURL),
    /// Returns an image of the file at an address, whose numbers are taken to be in the colour space, or Nil
    /// if it holds no image.
    ///     Print Str(NewCIImagewithURLKaz(file.URLPath, sRGB).Width)
    method("NewCIImagewithURLKaz(url as String, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfURLAndColorSpace),
    /// Returns an image of an image file's bytes, or Nil if they are none. Raises NilObjectException for Nil.
    ///     Print Str(NewCIImagewithDataKaz(bytes).Width)
    method("NewCIImagewithDataKaz(Data as Memoryblock) as CIImageKaz", imageWithData),
    /// Returns an image of an image file's bytes, whose numbers are taken to be in the colour space. Raises
    /// NilObjectException for Nil.
    ///     Print Str(NewCIImagewithDataKaz(bytes, sRGB).Width)
    method("NewCIImagewithDataKaz(Data as Memoryblock, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithDataAndColorSpace),
    /// Returns an image of a file, or Nil if it holds no image.
    ///     Print Str(NewCIImagewithFileKaz(file).Width)
    method("NewCIImagewithFileKaz(file as folderitem) as CIImageKaz", imageWithContentsOfFile),
    /// Returns an image of a file, whose numbers are taken to be in the colour space, or Nil if it holds no
    /// image. Raises NilObjectException without a file.
    ///     Print Str(NewCIImagewithFileKaz(file, sRGB).Width)
    method("NewCIImagewithFileKaz(file as folderitem, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfFileAndColorSpace),
    /// Returns an image of a copy of bare pixels: sizes in pixels, rows from the top, format from the
    /// constants of CIImageKaz. Raises NilObjectException for Nil.
    ///     Print Str(NewCIImagewithBitmapDataKaz(pixels, 16, 4, 4, CIImageKaz.kCIFormatARGB8, sRGB).Width)
    method("NewCIImagewithBitmapDataKaz(data as Memoryblock, BytesPerRow as integer, Width as integer, "
           "Height as "
           "integer, Format as integer, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithBitmapData),
    /// Returns an image of bare pixels in place: the block must hold DataLength bytes and outlive the image
    /// unchanged. Raises NilObjectException for Nil.
    ///     Print Str(NewCIImagewithBitmapMemoryKaz(pixels, 64, 16, 4, 4, CIImageKaz.kCIFormatARGB8, _
    ///       sRGB).Width)
    method("NewCIImagewithBitmapMemoryKaz(data as Memoryblock, DataLength as Integer, BytesPerRow as "
           "integer, Width "
           "as integer, Height as integer, Format as integer, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithBitmapMemory),
    /// Returns a context that draws into a Core Graphics context; Nil for a colour space takes the usual one,
    /// and True renders on the processor. Nil without a Core Graphics context.
    ///     Print NewCIContextKaz(canvas, sRGB, Nil, True).Description
    method("NewCIContextKaz(cgcontext as CGContextKaz, OutputColorSpace as CGColorSpaceKaz, "
           "WorkingColorSpace as "
           "CGColorSpaceKaz, UseSoftwareRenderer as Boolean) as CIContextKaz",
           contextWithCGContextAndOptions),
    /// Returns a context that draws into a Core Graphics context, or Nil without one.
    ///     Print NewCIContextKaz(canvas).Description
    method("NewCIContextKaz(cgcontext as CGContextKaz) as CIContextKaz", contextWithCGContext),
    /// Returns a vector of one number.
    ///     Print NewCIVectorWithXKaz(1).stringRepresentation
    method("NewCIVectorWithXKaz(x as single) as CIVectorKaz", vectorWithX),
    /// Returns a vector of two numbers, such as a position.
    ///     Print NewCIVectorWithXYKaz(1, 2).stringRepresentation
    method("NewCIVectorWithXYKaz(x as single, y as single) as CIVectorKaz", vectorWithXY),
    /// Returns a vector of three numbers.
    ///     Print NewCIVectorWithXYZKaz(1, 2, 3).stringRepresentation
    method("NewCIVectorWithXYZKaz(x as single, y as single, z as single) as CIVectorKaz", vectorWithXYZ),
    /// Returns a vector of four numbers, such as a rectangle's x, y, width and height.
    ///     Print NewCIVectorWithXYZWKaz(1, 2, 3, 4).stringRepresentation
    method("NewCIVectorWithXYZWKaz(x as single, y as single, z as single, w as single) as CIVectorKaz",
           vectorWithXYZW),
    /// Returns a vector of numbers in brackets, or Nil for empty text.
    ///     Print NewCIVectorWithStringKaz("[1 2]").stringRepresentation
    method("NewCIVectorWithStringKaz(s as string) as CIVectorKaz", vectorWithString),
};
static_assert(std::size(table) == 22);

} // namespace

host::Table<REALmethodDefinition> plugin::globalsMethods() { return table; }
