// Folder items against file URLs.
#pragma once

#include <hostapi/services.h>

@class NSURL;

// An autoreleased file URL; nil when neither the item nor its folder can be named. The item need not exist.
NSURL* NewNSURLfile(REALfolderItem item);

// A folder item for a file URL whose item, or at least whose folder, exists; else null.
REALfolderItem NSURLRBFile(NSURL* url);
