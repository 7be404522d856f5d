#pragma once

#include <deque>
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

/// Knobs in the order of the dump. The records of one reading lie together in memory that is given back as a whole,
/// so that half a million of them do not scatter over the heap.
class KnobList
{
public:
    /// Adds a record without content behind the others.
    KnobDetails &Append();
    /// Adds a copy of a record.
    void Append(const KnobDetails &knob);
    void RemoveLast();
    void Clear();
    void Swap(KnobList &other) noexcept;
    /// The first knob of each name; refers to the list's records.
    KnobIndex FirstOfName() const;

    KnobList() = default;
    KnobList(KnobList &&) = default;
    KnobList &operator=(KnobList &&) = delete; // would free the memory before the records in it; Swap does not

    bool IsEmpty() const { return m_knobs.empty(); }
    std::size_t Size() const { return m_knobs.size(); }
    auto begin() const { return m_knobs.begin(); }
    auto end() const { return m_knobs.end(); }

private:
    // In this order: the records are gone before their memory.
    std::unique_ptr<std::pmr::monotonic_buffer_resource> m_memory;
    std::deque<KnobDetails> m_knobs;
};
