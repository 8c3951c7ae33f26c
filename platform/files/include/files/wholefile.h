// Reading and replacing whole files, with every kind of file that is none refused.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace wholefile {

/// Why a file was not read or written, for people: "it is a folder", "No space left on device".
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The most that is read of one file, in bytes: a process has 3 GB of addresses.
constexpr std::size_t largest = 512u << 20;

/// Opens a regular file for reading, never waiting for the other end of a pipe. The caller closes the
/// descriptor. Throws Error for anything else: folders, pipes, sockets, devices.
int open(const std::string& path);

/// The file's bytes, all read before it returns: a file that changes later changes nothing. Throws Error and
/// std::bad_alloc; Error also for a file above `limit`.
std::vector<std::uint8_t> read(const std::string& path, std::size_t limit = largest);

/// Opens a file for writing from its start or its end, made if there is none. The caller closes the
/// descriptor. Devices that take characters are fine, too. Throws Error for anything else.
int openToWrite(const std::string& path, bool append);

/// Makes the bytes the file's contents, or leaves it as it was: they go to a new file in the same folder,
/// which then takes the name. Follows symbolic links and keeps the mode. Throws Error.
void replace(const std::string& path, std::span<const std::uint8_t> bytes);

/// From now on SIGINT, SIGTERM and SIGHUP end the process with 128 + the signal, and without the new file
/// that replace() has begun. For processes that write one file at a time.
void removeDraftsWhenInterrupted();

} // namespace wholefile
