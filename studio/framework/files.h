// Paths of files, for the framework's own use.
#pragma once

#include <cstdio>
#include <string>

namespace studio::files {

std::string absolute(const std::string& path); // from the current directory, without "." and ".."
std::string parent(const std::string& path);
std::string leaf(const std::string& path);
bool exists(const std::string& path);
bool isDirectory(const std::string& path);
// Both raise IOException, also for what is no regular file: a pipe would never end.
std::string read(const std::string& path);
std::FILE* openForWriting(const std::string& path, bool append);
// Raises the IOException of a file that could not be written: "cannot write x/y: no such folder". Without a
// reason it is that of errno.
[[noreturn]] void cannotWrite(const std::string& path, std::string reason = {});

} // namespace studio::files
