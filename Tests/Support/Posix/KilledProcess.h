#pragma once

#include <functional>

/// Runs `work` in a copy of this process and kills that after so many microseconds, whatever it is doing. `work` calls
/// the function that it gets after each piece that is done; gives how many of them were done for certain.
int CountUntilKilled(const std::function<void(const std::function<void()> &done)> &work, unsigned microseconds);
