#include "TextTemplate.h"

#include <algorithm>

namespace
{

/// Takes the text up to `end`, and `end` itself, off the front of `rest`.
std::string_view TakeUpTo(char end, std::string_view &rest)
{
    const std::string_view taken = rest.substr(0, rest.find(end));
    rest.remove_prefix(std::min(taken.size() + 1, rest.size()));
    return taken;
}

/// By name, and assignments of one name in the order of the template that they are parts of.
bool StandsBefore(const Assignment &left, const Assignment &right)
{
    const int order = left.name.compare(right.name);
    return order < 0 || (order == 0 && left.name.data() < right.name.data());
}

/// Sorts by name and keeps the first assignment of each.
void SortAndDropRepeated(AssignmentTable &assignments)
{
    std::sort(assignments.begin(), assignments.end(), StandsBefore);
    const auto isRepeated = [](const Assignment &first, const Assignment &next) { return first.name == next.name; };
    assignments.erase(std::unique(assignments.begin(), assignments.end(), isRepeated), assignments.end());
}

/// Makes room for one more. Memory follows the number of different names, not of records.
void MakeRoom(AssignmentTable &assignments)
{
    if (assignments.size() < assignments.capacity())
        return;
    SortAndDropRepeated(assignments);
    if (assignments.size() > assignments.capacity() / 2)
        assignments.reserve(assignments.capacity() * 2);
}

} // namespace

TemplateRecord TakeRecord(std::string_view &text)
{
    std::string_view record = TakeUpTo(';', text);
    TemplateRecord taken;
    taken.isAssignment = record.find('=') != std::string_view::npos;
    taken.assignment.name = TakeUpTo('=', record);
    taken.assignment.value = TakeUpTo('\n', record);
    taken.rest = record;
    return taken;
}

AssignmentTable SplitTemplate(std::string_view text)
{
    AssignmentTable assignments;
    while (!text.empty())
    {
        MakeRoom(assignments);
        assignments.push_back(TakeRecord(text).assignment);
    }
    SortAndDropRepeated(assignments);
    return assignments;
}

void TranslateOptionTexts(const KnobList &knobs, AssignmentTable &assignments)
{
    if (knobs.IsEmpty())
        return;
    const KnobIndex firstOfName = knobs.FirstOfName();
    for (auto &[name, value] : assignments)
    {
        const auto knob = firstOfName.find(name);
        if (knob == firstOfName.end())
            continue;
        const auto option = knob->second->options.find(KnobDetails::Text(value));
        if (option != knob->second->options.end())
            value = option->second;
    }
}
