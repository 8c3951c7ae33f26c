// Paths of files, for the framework's own use.
#pragma once

#include <string>

namespace studio::files {

std::string absolute(const std::string& path); // from the current directory, without "." and ".."
std::string parent(const std::string& path);
std::string leaf(const std::string& path);
bool exists(const std::string& path);
bool isDirectory(const std::string& path);
std::string read(const std::string& path);                     // raises IOException
void write(const std::string& path, const std::string& bytes); // raises IOException
// Raises the IOException of a file that could not be written: "cannot write x/y: no such folder".
[[noreturn]] void cannotWrite(const std::string& path);

} // namespace studio::files
