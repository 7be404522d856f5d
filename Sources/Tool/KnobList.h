#pragma once

#include "RecordMemory.h"

#include <list>
#include <map>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>

/// One BIOS option as the external tool dumps it. All texts are UTF-8, copied unchanged from the dump. A copy of a
/// record has texts of its own, on the heap.
struct KnobDetails
{
    using Text = std::pmr::string;

    /// A record without content, whose texts will take their memory from `memory`, which must outlive it.
    explicit KnobDetails(std::pmr::memory_resource *memory = std::pmr::get_default_resource());

    Text type;
    Text setupType;
    Text name;
    Text varstoreIndex;
    Text prompt;
    Text description;
    Text UqiVal;
    /// Bytes, as a number in text form.
    Text size;
    Text offset;
    /// The condition under which the option can be changed.
    Text depex;
    /// The setup page, its parts joined by "/".
    Text SetupPgPtr;
    Text defaultValue;
    /// A hexadecimal number where the option has a list of values.
    Text CurrentVal;
    /// Text to value (a hexadecimal number), in byte-wise order of the texts.
    std::pmr::map<Text, Text> options;
};

/// Name to knob.
using KnobIndex = std::unordered_map<std::string_view, const KnobDetails *>;

/// Knobs in the order of the dump. Records and texts lie together in memory that is given back as a whole, so that half
/// a million of them do not scatter over the heap.
class KnobList
{
    using Records = std::pmr::list<KnobDetails>;

public:
    KnobList() = default;
    KnobList(KnobList &&other) noexcept { Swap(other); }
    KnobList &operator=(KnobList &&) = delete;

    /// Adds a record without content behind the others.
    KnobDetails &Append();
    /// Adds a copy of a record; nothing when memory does not suffice (std::bad_alloc).
    void Append(const KnobDetails &knob);
    /// Removes the last record; there must be one.
    void RemoveLast();
    void Clear();
    void Swap(KnobList &other) noexcept;
    /// The first knob of each name; refers to the list's records.
    KnobIndex FirstOfName() const;

    bool IsEmpty() const { return Size() == 0; }
    std::size_t Size() const { return m_records ? m_records->size() : 0; }
    Records::const_iterator begin() const { return m_records ? m_records->cbegin() : Records::const_iterator(); }
    Records::const_iterator end() const { return m_records ? m_records->cend() : Records::const_iterator(); }

private:
    Records &MadeRecords();

    std::unique_ptr<RecordMemory> m_memory;
    /// In that memory, as all of its records. Never destroyed: to visit half a million records, only to find that
    /// nothing of theirs lies elsewhere, would take longer than giving back the memory.
    Records *m_records = nullptr;
};
