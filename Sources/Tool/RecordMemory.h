#pragma once

#include <cstddef>
#include <memory_resource>

/// Memory that is given back as a whole, by the destructor. It is taken in blocks of one size however much is wanted:
/// for each block the C library's allocator joins what was freed in small pieces since the last one. With blocks that
/// grow, it would do so ever more rarely and over memory that has long left the cache. Used from one thread at a time.
class RecordMemory : public std::pmr::memory_resource
{
public:
    RecordMemory() = default;
    ~RecordMemory() override;
    RecordMemory(const RecordMemory &) = delete;
    RecordMemory &operator=(const RecordMemory &) = delete;

private:
    /// The start of every block.
    struct alignas(std::max_align_t) Block
    {
        Block *next;
    };

    void *do_allocate(std::size_t bytes, std::size_t alignment) override;
    void do_deallocate(void * /*memory*/, std::size_t /*bytes*/, std::size_t /*alignment*/) override {}
    bool do_is_equal(const std::pmr::memory_resource &other) const noexcept override { return this == &other; }
    std::byte *AddBlock(std::size_t size);

    Block *m_blocks = nullptr;
    std::byte *m_free = nullptr;
    std::size_t m_left = 0;
};
