// The system's folders by type.
#pragma once

#include <Carbon/Files.h>

CF_EXTERN_C_BEGIN

enum { kOnSystemDisk = -32768, kSystemDomain = -32766, kLocalDomain = -32765, kUserDomain = -32763 };
enum { kFrameworksFolderType = 0x6672616D }; // 'fram'
enum { kDontCreateFolder = 0, kCreateFolder = 1 };

// The folder of that type. Errors: fnfErr for a type that this system does not have.
OSErr FSFindFolder(FSVolumeRefNum domain, OSType folderType, Boolean create, FSRef* ref);

CF_EXTERN_C_END
