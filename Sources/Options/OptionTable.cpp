#include "OptionTable.h"

#include "LowerAscii.h"
#include "OptionValue.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <utility>

namespace
{

struct KindWord
{
    /// What the dump calls it (setupType).
    std::string_view setupType;
    OptionKind kind;
    std::string_view name;
};

constexpr KindWord kKindWords[] = {{"oneof", OptionKind::OneOf, "choice"},
                                   {"checkbox", OptionKind::CheckBox, "checkbox"},
                                   {"numeric", OptionKind::Number, "number"},
                                   {"text", OptionKind::Text, "text"},
                                   {"string", OptionKind::Text, "text"}};

/// A name may be this much longer than it has mistakes.
constexpr std::size_t kLettersPerMistake = 3;

OptionKind KindOf(const KnobDetails &knob)
{
    const std::string setupType = LowerAscii(std::string(knob.setupType));
    for (const KindWord &word : kKindWords)
    {
        if (word.setupType == setupType)
            return word.kind;
    }
    return knob.options.empty() ? OptionKind::Unknown : OptionKind::OneOf;
}

std::vector<OptionChoice> ChoicesOf(const KnobDetails &knob)
{
    std::vector<OptionChoice> choices;
    choices.reserve(knob.options.size());
    for (const auto &[text, value] : knob.options)
        choices.push_back({text, value});
    const auto number = [](const OptionChoice &choice) { return DumpNumber(choice.value).value_or(UINT64_MAX); };
    std::stable_sort(choices.begin(), choices.end(),
                     [&](const OptionChoice &left, const OptionChoice &right) { return number(left) < number(right); });
    return choices;
}

template <typename Number>
std::optional<Number> ParseLimit(std::string_view text)
{
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return !text.empty() && error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                                     : std::nullopt;
}

/// Adds what the dump of a real machine says.
void AddFurther(BiosOption &option, const KnobFurther &further)
{
    option.sourceKind = further.kind;
    option.state = further.state;
    option.unreadable = further.unreadable;
    option.isReadOnly = further.isReadOnly;
    option.isSigned = further.isSigned;
    option.hasDefault = option.hasDefault && further.hasDefault;
    option.isChanged = option.isChanged && option.hasDefault && option.unreadable.empty();
    option.limits = {ParseLimit<std::int64_t>(further.least), ParseLimit<std::int64_t>(further.most),
                     ParseLimit<std::uint64_t>(further.step), ParseLimit<std::uint64_t>(further.minLength),
                     ParseLimit<std::uint64_t>(further.maxLength)};
    if (option.limits.step == std::uint64_t{0})
        option.limits.step.reset();
}

BiosOption MakeOption(const KnobDetails &knob)
{
    BiosOption option;
    option.name = knob.name;
    option.prompt = knob.prompt;
    option.help = knob.description;
    option.page = knob.SetupPgPtr;
    option.kind = KindOf(knob);
    option.choices = ChoicesOf(knob);
    option.size = WrittenNumber(knob.size).value_or(0);
    option.condition = knob.depex;
    option.defaultValue = knob.defaultValue;
    option.currentValue = knob.CurrentVal;
    // An empty default is one for a text alone.
    option.hasDefault = option.kind == OptionKind::Text || !option.defaultValue.empty();
    option.isChanged = option.hasDefault && !IsSameValue(option, option.currentValue, option.defaultValue);
    return option;
}

/// How many letters must be changed, added, taken out or exchanged with their neighbour; more than `most` are as good
/// as too many.
std::size_t Mistakes(std::string_view left, std::string_view right, std::size_t most)
{
    if (std::max(left.size(), right.size()) - std::min(left.size(), right.size()) > most)
        return most + 1;
    std::vector<std::size_t> before(right.size() + 1);
    std::vector<std::size_t> last(right.size() + 1);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i)
    {
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j)
        {
            const bool isSame = left[i - 1] == right[j - 1];
            row[j] = std::min({row[j - 1] + 1, last[j] + 1, last[j - 1] + (isSame ? 0 : 1)});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        std::swap(before, last);
        std::swap(last, row);
    }
    return last[right.size()];
}

/// Keeps the nearest of the words that it has been shown.
class NearestWord
{
public:
    explicit NearestWord(std::string_view wanted)
        : m_wanted(LowerAscii(std::string(wanted))), m_mistakes(wanted.size() / kLettersPerMistake + 2)
    {
    }

    void Show(std::string_view word)
    {
        const std::size_t mistakes = Mistakes(m_wanted, LowerAscii(std::string(word)), m_mistakes - 1);
        if (mistakes >= m_mistakes)
            return;
        m_mistakes = mistakes;
        m_nearest = word;
    }

    std::string_view Get() const { return m_nearest; }

private:
    std::string m_wanted;
    std::size_t m_mistakes;
    std::string_view m_nearest;
};

} // namespace

std::string_view KindName(OptionKind kind)
{
    const auto *const word = std::find_if(std::begin(kKindWords), std::end(kKindWords),
                                          [&](const KindWord &known) { return known.kind == kind; });
    return word == std::end(kKindWords) ? "unknown" : word->name;
}

OptionTable::OptionTable(KnobList &&knobs, const FurtherDetails &further)
    : m_knobs(std::move(knobs)), m_further(further)
{
    m_options.reserve(m_knobs.Size());
    for (const KnobDetails &knob : m_knobs)
    {
        m_options.push_back(MakeOption(knob));
        const auto found = m_further.pendingValues.find(&knob);
        if (found != m_further.pendingValues.end())
            m_options.back().pendingValue = found->second;
        const auto more = m_further.ofKnobs.find(&knob);
        if (more != m_further.ofKnobs.end())
            AddFurther(m_options.back(), more->second);
    }
}

OptionTable::OptionTable(std::deque<std::string> &&texts, std::vector<BiosOption> &&options)
    : m_texts(std::move(texts)), m_options(std::move(options))
{
    m_further.tellsPending = std::any_of(m_options.begin(), m_options.end(),
                                         [](const BiosOption &option) { return option.pendingValue.has_value(); });
}

const BiosOption *OptionTable::Find(std::string_view name) const
{
    if (m_index.empty())
    {
        m_index.reserve(m_options.size());
        for (const BiosOption &option : m_options)
            m_index.emplace(option.name, &option);
    }
    const auto found = m_index.find(name);
    return found == m_index.end() ? nullptr : found->second;
}

std::string_view OptionTable::NearestName(std::string_view name) const
{
    NearestWord nearest(name);
    for (const BiosOption &option : m_options)
        nearest.Show(option.name);
    return nearest.Get();
}

std::string_view Nearest(std::string_view wanted, const std::vector<std::string_view> &words)
{
    NearestWord nearest(wanted);
    for (const std::string_view word : words)
        nearest.Show(word);
    return nearest.Get();
}
