#include "KnobList.h"

#include <new>
#include <utility>

KnobDetails::KnobDetails(std::pmr::memory_resource *memory)
    : type(memory), setupType(memory), name(memory), varstoreIndex(memory), prompt(memory), description(memory),
      UqiVal(memory), size(memory), offset(memory), depex(memory), SetupPgPtr(memory), defaultValue(memory),
      CurrentVal(memory), options(memory)
{
}

KnobList::Records &KnobList::MadeRecords()
{
    if (!m_memory)
        m_memory = std::make_unique<RecordMemory>();
    if (!m_records)
        m_records = new (m_memory->allocate(sizeof(Records), alignof(Records))) Records(m_memory.get());
    return *m_records;
}

KnobDetails &KnobList::Append()
{
    return MadeRecords().emplace_back(m_memory.get());
}

void KnobList::Append(const KnobDetails &knob)
{
    Records &records = MadeRecords();
    Records added(m_memory.get());
    added.emplace_back(m_memory.get()) = knob;
    records.splice(records.end(), added);
}

void KnobList::RemoveLast()
{
    m_records->pop_back();
}

void KnobList::Clear()
{
    m_records = nullptr;
    m_memory.reset();
}

void KnobList::Swap(KnobList &other) noexcept
{
    m_memory.swap(other.m_memory);
    std::swap(m_records, other.m_records);
}

KnobIndex KnobList::FirstOfName() const
{
    KnobIndex index;
    index.reserve(Size());
    for (const KnobDetails &knob : *this)
        index.try_emplace(knob.name, &knob);
    return index;
}
