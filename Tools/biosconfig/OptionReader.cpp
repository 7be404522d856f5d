#include "OptionReader.h"

#include "OptionValue.h"
#include "Platform.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <deque>
#include <utility>

namespace
{

constexpr OptionKind kKinds[] = {OptionKind::OneOf, OptionKind::CheckBox, OptionKind::Number, OptionKind::Text};

/// Makes options of the elements of a list.
class OptionListReader
{
public:
    void Add(const json &element)
    {
        BiosOption option;
        option.name = Keep(element.at("name").get<std::string>());
        option.prompt = TextOf(element, "prompt");
        option.help = TextOf(element, "help");
        option.page = TextOf(element, "page");
        option.condition = TextOf(element, "condition");
        option.kind = KindOf(element.value("kind", ""));
        option.size = element.value("size", std::uint64_t{0});
        option.isRedacted = element.value("redacted", false);
        AddChoices(element, option);
        option.currentValue = ValueOf(element, "value", option);
        option.defaultValue = ValueOf(element, "default", option);
        if (element.contains("pending"))
            option.pendingValue = ValueOf(element, "pending", option);
        option.hasDefault = element.contains("default") || (option.isRedacted && element.contains("changed"));
        option.isChanged = element.value("changed", false);
        AddFurther(element, option);
        m_options.push_back(std::move(option));
    }

    OptionTable Table() && { return {std::move(m_texts), std::move(m_options)}; }

private:
    std::string_view Keep(std::string text)
    {
        return text.empty() ? std::string_view() : m_texts.emplace_back(std::move(text));
    }

    std::string_view TextOf(const json &element, const char *name) { return Keep(element.value(name, "")); }

    static OptionKind KindOf(std::string_view word)
    {
        const auto *const found =
            std::find_if(std::begin(kKinds), std::end(kKinds), [&](OptionKind kind) { return KindName(kind) == word; });
        return found == std::end(kKinds) ? OptionKind::Unknown : *found;
    }

    /// A number, or else a text, as a dump has it.
    std::string_view DumpValue(const json &value, OptionKind kind)
    {
        const auto number = value.find("number");
        if (number == value.end() || !number->is_number_unsigned() || kind == OptionKind::Text)
            return TextOf(value, "text");
        std::array<char, 24> text = {};
        std::snprintf(text.data(), text.size(), "0x%llX",
                      static_cast<unsigned long long>(number->get<std::uint64_t>()));
        return Keep(text.data());
    }

    std::string_view ValueOf(const json &element, const char *name, const BiosOption &option)
    {
        const auto value = element.find(name);
        return value == element.end() || option.isRedacted ? std::string_view() : DumpValue(*value, option.kind);
    }

    template <typename Number>
    static std::optional<Number> LimitOf(const json &element, const char *name)
    {
        const auto limit = element.find(name);
        return limit == element.end() ? std::nullopt : std::optional(limit->get<Number>());
    }

    /// What the dump of a real machine has said.
    void AddFurther(const json &element, BiosOption &option)
    {
        option.limits = {LimitOf<std::int64_t>(element, "minimum"), LimitOf<std::int64_t>(element, "maximum"),
                         LimitOf<std::uint64_t>(element, "step"), LimitOf<std::uint64_t>(element, "minLength"),
                         LimitOf<std::uint64_t>(element, "maxLength")};
        option.sourceKind = TextOf(element, "sourceKind");
        option.state = TextOf(element, "state");
        option.unreadable = TextOf(element, "unreadable");
        option.isReadOnly = element.value("readOnly", false);
        option.isSigned = option.kind == OptionKind::Number &&
                          (option.limits.minimum.value_or(0) < 0 || option.currentValue.starts_with('-'));
        if (option.limits.step == std::uint64_t{0})
            option.limits.step.reset();
    }

    void AddChoices(const json &element, BiosOption &option)
    {
        const auto choices = element.find("choices");
        if (choices == element.end())
            return;
        option.choices.reserve(choices->size());
        for (const json &choice : *choices)
            option.choices.push_back({TextOf(choice, "text"), DumpValue(choice, option.kind)});
    }

    std::deque<std::string> m_texts;
    std::vector<BiosOption> m_options;
};

bool TellsOfDamage(const json &list)
{
    const json errors = list.value("errors", json::array());
    return std::any_of(errors.begin(), errors.end(),
                       [](const json &error) { return error.value("code", "") == "damaged-dump"; });
}

} // namespace

LoadedOptions ReadOptionList(const std::string &file)
{
    std::string text;
    const Platform::StreamOwner stream = Platform::OpenStream(file, "rb");
    if (!stream || !Platform::ReadBytes(stream.get(), text))
        throw Failure(ExitCode::NotFound, "cannot read the list " + ShownPath(file));
    try
    {
        const json list = json::parse(text.starts_with(Platform::kByteOrderMark)
                                          ? std::string_view(text).substr(Platform::kByteOrderMark.size())
                                          : std::string_view(text));
        OptionListReader reader;
        for (const json &element : list.at("options"))
            reader.Add(element);
        if (list["options"].empty())
            throw Failure(ExitCode::NotValid, "there is no option in the list " + ShownPath(file));
        return {std::move(reader).Table(), TellsOfDamage(list)};
    }
    catch (const json::exception &failure)
    {
        throw Failure(ExitCode::NotValid, ShownPath(file) +
                                              " is no list of BIOS options, as \"list --json\" writes "
                                              "it: " +
                                              failure.what());
    }
}
