// The eleven host classes, one record each, and the functions behind the global ones.
#pragma once

#include <hostapi/abi.h>

namespace coreimage {

extern REALclassDefinition CIColorKazClass;
extern REALclassDefinition CIImageKazClass;
extern REALclassDefinition CIContextKazClass;
extern REALclassDefinition CIVectorKazClass;
extern REALclassDefinition CIFilterShapeKazClass;
extern REALclassDefinition CIFilterKazClass;
extern REALclassDefinition CISamplerKazClass;
extern REALclassDefinition CIAttributeKazClass;
extern REALclassDefinition CIFeatureKazClass;
extern REALclassDefinition CIFaceFeatureKazClass;
extern REALclassDefinition CIDetectorKazClass;

// Functions that the host calls both as shared methods and as global functions. Each returns a locked wrapper
// or null; handles are borrowed.
REALobject samplerWithImage(REALobject image);
REALobject samplerWithImageAndOptions(REALobject image, REALobject matrix, REALstring wrapMode,
                                      REALstring filterMode);

REALobject colorWithComponents(float red, float green, float blue, float alpha);
REALobject colorWithString(REALstring text);
REALobject colorWithCGColor(REALobject color);

REALobject imageWithCGImage(REALobject image);
REALobject imageWithCGImageAndColorSpace(REALobject image, REALobject colorSpace);
REALobject imageWithContentsOfURL(REALstring url);
REALobject imageWithContentsOfURLAndColorSpace(REALstring url, REALobject colorSpace);
REALobject imageWithData(REALmemoryBlock data);
REALobject imageWithDataAndColorSpace(REALmemoryBlock data, REALobject colorSpace);
REALobject imageWithContentsOfFile(REALfolderItem file);
REALobject imageWithContentsOfFileAndColorSpace(REALfolderItem file, REALobject colorSpace);
REALobject imageWithBitmapData(REALmemoryBlock data, std::int32_t bytesPerRow, std::int32_t width,
                               std::int32_t height, std::int32_t format, REALobject colorSpace);
REALobject imageWithBitmapMemory(REALmemoryBlock data, std::int32_t length, std::int32_t bytesPerRow,
                                 std::int32_t width, std::int32_t height, std::int32_t format,
                                 REALobject colorSpace);

REALobject contextWithCGContextAndOptions(REALobject cgContext, REALobject outputColorSpace,
                                          REALobject workingColorSpace, bool useSoftwareRenderer);
REALobject contextWithCGContext(REALobject cgContext);

REALobject vectorWithX(float x);
REALobject vectorWithXY(float x, float y);
REALobject vectorWithXYZ(float x, float y, float z);
REALobject vectorWithXYZW(float x, float y, float z, float w);
REALobject vectorWithString(REALstring text);

} // namespace coreimage
