#pragma once

#include <functional>

/// Runs `request` once for every line on standard input and answers each on standard output: the processor time that it
/// took in microseconds, and the most memory that the process has held so far in kilobytes. Whoever asks can so have
/// several programs take turns on one machine. Returns the exit code of the program: 1 when a request failed.
int ServeRequests(const std::function<bool()> &request);
