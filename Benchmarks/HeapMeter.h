#pragma once

#include <cstdint>

/// Counts what the program takes from the C heap while one lives; of use for one thread and one meter at a time.
class HeapMeter
{
public:
    HeapMeter();
    ~HeapMeter();
    HeapMeter(const HeapMeter &) = delete;
    HeapMeter &operator=(const HeapMeter &) = delete;

    /// The most bytes that were taken at one time since the construction.
    std::int64_t PeakBytes() const;
};
