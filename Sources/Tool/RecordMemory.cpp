#include "RecordMemory.h"

#include <cstdint>
#include <new>
#include <utility>

namespace
{

constexpr std::size_t kBlockSize = std::size_t{32} * 1024;
constexpr std::size_t kAlignment = alignof(std::max_align_t);

} // namespace

RecordMemory::~RecordMemory()
{
    while (m_blocks)
        ::operator delete(std::exchange(m_blocks, m_blocks->next));
}

void *RecordMemory::do_allocate(std::size_t bytes, std::size_t alignment)
{
    const std::size_t size = (bytes + kAlignment - 1) / kAlignment * kAlignment;
    if (size < bytes || alignment > kAlignment)
        throw std::bad_alloc();
    if (size > kBlockSize / 4)
        return AddBlock(size);
    if (size > m_left)
    {
        m_free = AddBlock(kBlockSize);
        m_left = kBlockSize;
    }
    m_left -= size;
    return std::exchange(m_free, m_free + size);
}

/// Returns what lies behind the block's start, `size` bytes.
std::byte *RecordMemory::AddBlock(std::size_t size)
{
    if (size > SIZE_MAX - sizeof(Block))
        throw std::bad_alloc();
    m_blocks = new (::operator new(sizeof(Block) + size)) Block{m_blocks};
    return reinterpret_cast<std::byte *>(m_blocks + 1);
}
