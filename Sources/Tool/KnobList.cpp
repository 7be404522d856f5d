#include "KnobList.h"

KnobDetails::KnobDetails(std::pmr::memory_resource *memory)
    : type(memory), setupType(memory), name(memory), varstoreIndex(memory), prompt(memory), description(memory),
      UqiVal(memory), size(memory), offset(memory), depex(memory), SetupPgPtr(memory), defaultValue(memory),
      CurrentVal(memory), options(memory)
{
}

KnobDetails &KnobList::Append()
{
    if (!m_memory)
        m_memory = std::make_unique<std::pmr::monotonic_buffer_resource>();
    return m_knobs.emplace_back(m_memory.get());
}

void KnobList::Append(const KnobDetails &knob)
{
    m_knobs.push_back(knob);
}

void KnobList::RemoveLast()
{
    m_knobs.pop_back();
}

void KnobList::Clear()
{
    m_knobs.clear();
    m_memory.reset();
}

void KnobList::Swap(KnobList &other) noexcept
{
    m_memory.swap(other.m_memory);
    m_knobs.swap(other.m_knobs);
}

KnobIndex KnobList::FirstOfName() const
{
    KnobIndex index;
    index.reserve(Size());
    for (const KnobDetails &knob : m_knobs)
        index.try_emplace(knob.name, &knob);
    return index;
}
