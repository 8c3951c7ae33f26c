// FolderItem: a file or folder, by path.
#pragma once

#include <hostapi/abi.h>

#include <string>

namespace studio {

const std::string& folderItemPath(REALobject item);
REALobject newFolderItem(const std::string& path); // owned

// What the file services do: conversions from and to the platform's records.
bool fsRefOf(REALobject item, FSRef* out, HFSUniStr255* name);
bool fsSpecOf(REALobject item, FSSpec* out);
REALobject folderItemIn(const FSRef* parent, const HFSUniStr255* name); // owned; null when there is no parent
REALobject folderItemOf(const FSSpec* record);                          // owned

} // namespace studio
