// Many jobs on all cores, each in a process: a job that crashes is one that failed.
#pragma once

#include <functional>
#include <string>

namespace commands {

struct Jobs {
    std::size_t count;
    /// Why job `index` failed; empty if it did not.
    std::function<std::string(std::size_t index)> run;
    /// What a job is about, for the message when its process dies.
    std::function<std::string(std::size_t index)> name;
};

/// Runs the jobs in `workers` processes and prints a line on the standard error output for each that fails,
/// after `prefix`. With `bar` the line below shows how far the jobs are. Returns how many failed. Must be
/// called before the process has other threads.
std::size_t runJobs(const Jobs& jobs, std::size_t workers, bool bar, const std::string& prefix);

/// One for each core that this process may use.
std::size_t coreCount();

} // namespace commands
