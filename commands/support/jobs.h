// Many jobs on all cores, each in a process: a job that crashes is one that failed.
#pragma once

#include <functional>
#include <string>

namespace commands {

/// Runs job 0 to count - 1 in `workers` processes and prints a line on the standard error output for each
/// that fails, after `prefix`. A job returns why it failed, or nothing. With `bar` the line below shows how
/// far the jobs are. Returns how many failed. Must be called before the process has other threads.
std::size_t runJobs(std::size_t count, std::size_t workers, bool bar, const std::string& prefix,
                    const std::function<std::string(std::size_t)>& job);

/// One for each core that this process may use.
std::size_t coreCount();

} // namespace commands
