#include "SettingRecords.h"

#include "Number.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <string_view>
#include <unordered_map>

namespace Redfish
{

namespace
{

constexpr std::uint32_t kNumberBytes = 8;
constexpr std::uint32_t kChoiceBytes = 1;

bool IsEnumeration(const RegistryAttribute &attribute)
{
    return attribute.type == "Enumeration" && !attribute.choices.empty();
}

SettingKind KindOf(const RegistryAttribute &attribute)
{
    if (IsEnumeration(attribute))
        return SettingKind::OneOf;
    if (attribute.type == "Boolean")
        return SettingKind::CheckBox;
    return attribute.type == "Integer" ? SettingKind::Numeric : SettingKind::Text;
}

std::vector<SettingChoice> ChoicesOf(const RegistryAttribute &attribute, SettingKind kind)
{
    if (kind == SettingKind::CheckBox)
        return {{"False", 0}, {"True", 1}};
    if (kind != SettingKind::OneOf)
        return {};
    std::set<std::string_view> names;
    const bool isClear = std::all_of(attribute.choices.begin(), attribute.choices.end(),
                                     [&](const RegistryChoice &choice) {
                                         return !choice.displayName.empty() && names.insert(choice.displayName).second;
                                     });
    std::vector<SettingChoice> choices;
    choices.reserve(attribute.choices.size());
    for (const RegistryChoice &choice : attribute.choices)
        choices.push_back({isClear ? choice.displayName : choice.name, choices.size()});
    return choices;
}

/// A value as a dump has it.
std::string DumpValue(const RegistryAttribute &attribute, SettingKind kind, const WireValue &value)
{
    if (kind == SettingKind::OneOf || kind == SettingKind::CheckBox)
    {
        const std::optional<std::size_t> number = ChoiceNumber(attribute, value);
        return number ? HexText(*number) : value.text;
    }
    const std::optional<std::int64_t> number = kind == SettingKind::Numeric ? value.Number() : std::nullopt;
    return number ? SignedText(*number) : value.text;
}

std::optional<std::uint64_t> Length(const std::optional<std::int64_t> &number)
{
    return number && *number >= 0 ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
}

SettingLimits LimitsOf(const RegistryAttribute &attribute, SettingKind kind)
{
    SettingLimits limits;
    if (kind == SettingKind::Numeric)
    {
        limits.minimum = attribute.lowerBound;
        limits.maximum = attribute.upperBound;
        const std::optional<std::uint64_t> step = Length(attribute.scalarIncrement);
        // 0 says that every number will do, and so does 1.
        if (step && *step > 1)
            limits.step = step;
    }
    if (kind == SettingKind::Text)
    {
        limits.minLength = Length(attribute.minLength);
        limits.maxLength = Length(attribute.maxLength);
    }
    return limits;
}

/// The titles of menus, by their paths.
using MenuTitles = std::unordered_map<std::string_view, std::string_view>;

/// The page that a path such as "./Menu/Sub" means, each part by the menu's title where it has one.
std::string PageOf(const std::string &path, const MenuTitles &titles, const std::string &otherwise)
{
    constexpr std::string_view kBegin = "./";
    std::string page;
    for (std::size_t start = path.starts_with(kBegin) ? kBegin.size() : 0; start < path.size();)
    {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const auto title = titles.find(std::string_view(path).substr(0, end));
        std::string part(title == titles.end() || title->second.empty()
                             ? std::string_view(path).substr(start, end - start)
                             : title->second);
        // It is one part, whatever stands in it.
        std::replace(part.begin(), part.end(), '/', '-');
        page += (page.empty() || part.empty() ? "" : "/") + part;
        start = end + 1;
    }
    return page.empty() ? otherwise : page;
}

/// The attributes' pages, as numbers in their order, and what they are called.
struct Pages
{
    std::vector<std::size_t> ofAttributes;
    std::vector<std::string> titles;
};

Pages FindPages(const MachineSettings &machine)
{
    MenuTitles titles;
    for (const RegistryMenu &menu : machine.registry.menus)
        titles.emplace(menu.path, menu.displayName);
    Pages pages;
    std::unordered_map<std::string_view, std::size_t> byPath;
    std::unordered_map<std::string, std::size_t> byTitle;
    pages.ofAttributes.reserve(machine.registry.attributes.size());
    for (const RegistryAttribute &attribute : machine.registry.attributes)
    {
        const auto [place, isNew] = byPath.emplace(attribute.menuPath, 0);
        if (isNew)
        {
            const std::string title = PageOf(attribute.menuPath, titles, machine.page);
            place->second = byTitle.emplace(title, pages.titles.size()).first->second;
            if (place->second == pages.titles.size())
                pages.titles.push_back(title);
        }
        pages.ofAttributes.push_back(place->second);
    }
    // The page of those that have none comes last: the settings beyond the registry's belong there, too.
    if (const auto last = byTitle.find(machine.page); last != byTitle.end())
    {
        std::replace(pages.ofAttributes.begin(), pages.ofAttributes.end(), last->second, pages.titles.size());
        pages.titles.push_back(machine.page);
    }
    return pages;
}

std::string HelpOf(const RegistryAttribute &attribute)
{
    if (attribute.warningText.empty())
        return attribute.helpText;
    return attribute.helpText + (attribute.helpText.empty() ? "" : "\n") + attribute.warningText;
}

void FillValues(const MachineSettings &machine, const RegistryAttribute &attribute, Setting &setting)
{
    if (IsSecret(attribute))
    {
        setting.unreadable = "it is a secret";
        return;
    }
    if (attribute.defaultValue.HasText())
        setting.defaultValue = DumpValue(attribute, setting.kind, attribute.defaultValue);
    const WireValue *const current = machine.bios.Find(attribute.name);
    if (current && current->HasText())
        setting.currentValue = DumpValue(attribute, setting.kind, *current);
    else
        setting.unreadable = current ? "the machine knows no value for it" : "the machine does not have it now";
    if (const WireValue *const waiting = WaitingValue(machine, attribute.name))
        setting.pendingValue = DumpValue(attribute, setting.kind, *waiting);
}

Setting MakeSetting(const MachineSettings &machine, const RegistryAttribute &attribute)
{
    Setting setting;
    setting.kind = KindOf(attribute);
    setting.sourceKind = attribute.type;
    setting.name = attribute.name;
    setting.prompt = attribute.displayName.empty() ? attribute.name : attribute.displayName;
    setting.help = HelpOf(attribute);
    FillValues(machine, attribute, setting);
    setting.choices = ChoicesOf(attribute, setting.kind);
    setting.limits = LimitsOf(attribute, setting.kind);
    setting.isSigned = setting.kind == SettingKind::Numeric;
    setting.isReadOnly = attribute.isReadOnly || attribute.isImmutable;
    setting.size = setting.kind == SettingKind::Numeric ? kNumberBytes
                   : setting.kind == SettingKind::Text  ? 0
                                                        : kChoiceBytes;
    return setting;
}

/// A setting that the registry does not know.
Setting MakeLooseSetting(const MachineSettings &machine, const WireAttribute &attribute)
{
    Setting setting;
    setting.name = attribute.name;
    setting.prompt = attribute.name;
    setting.page = machine.page;
    if (attribute.value.HasText())
        setting.currentValue = attribute.value.text;
    else
        setting.unreadable = "the machine knows no value for it";
    if (const WireValue *const waiting = WaitingValue(machine, attribute.name))
        setting.pendingValue = waiting->text;
    return setting;
}

std::optional<WireValue> BooleanToSend(const std::string &value)
{
    const bool isTrue = value == "true" || value == "True" || value == "0x1";
    if (!isTrue && value != "false" && value != "False" && value != "0x0")
        return std::nullopt;
    return WireValue{WireKind::Boolean, isTrue ? "true" : "false"};
}

std::optional<WireValue> NumberToSend(const WireValue *current, const std::string &value)
{
    const std::optional<std::int64_t> number = ParseSignedNumber(value);
    if (!number)
        return std::nullopt;
    const bool isText = current && current->kind == WireKind::String;
    return WireValue{isText ? WireKind::String : WireKind::Integer, std::to_string(*number)};
}

std::optional<WireValue> ChoiceToSend(const RegistryAttribute &attribute, const WireValue *current,
                                      const std::string &value)
{
    const std::optional<std::uint64_t> number = ParseNumber(value);
    if (!number || *number >= attribute.choices.size())
        return std::nullopt;
    const std::string &name = attribute.choices[*number].name;
    const bool isNumber = current && current->kind == WireKind::Integer && WholeNumber(name);
    return WireValue{isNumber ? WireKind::Integer : WireKind::String, name};
}

/// Of a setting that the registry does not know; its present value tells the kind.
std::optional<WireValue> LooseValueToSend(const WireValue *current, const std::string &value)
{
    const WireKind kind = current ? current->kind : WireKind::String;
    if (kind == WireKind::Boolean)
        return BooleanToSend(value);
    if (kind == WireKind::Integer)
        return NumberToSend(current, value);
    if (kind == WireKind::Real)
    {
        const Json number = Json::parse(value, nullptr, false);
        return number.is_number() ? std::optional(WireValue{WireKind::Real, value}) : std::nullopt;
    }
    if (kind == WireKind::Structure)
        return std::nullopt;
    return WireValue{WireKind::String, value};
}

SettingState StateOf(const Access &access, bool isReadOnly)
{
    if (access.isHidden)
        return SettingState::Hidden;
    // A read-only mark says more than a lock.
    return access.isLocked && !isReadOnly ? SettingState::Locked : SettingState::Open;
}

/// Numbers of attributes, those of a page one behind the other; a page begins where its first attribute does.
std::vector<std::size_t> PageByPage(const Pages &pages)
{
    std::vector<std::size_t> order(pages.ofAttributes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t left, std::size_t right)
                     { return pages.ofAttributes[left] < pages.ofAttributes[right]; });
    return order;
}

bool ListKnown(const MachineSettings &machine, const Pages &pages, const SettingVisitor &visit)
{
    const std::vector<Access> access =
        JudgeAccess(machine.registry, [&](std::string_view name) { return machine.bios.Find(name); });
    std::vector<std::string> texts = DependencyTexts(machine.registry);
    for (const std::size_t place : PageByPage(pages))
    {
        Setting setting = MakeSetting(machine, machine.registry.attributes[place]);
        setting.page = pages.titles[pages.ofAttributes[place]];
        setting.state = StateOf(access[place], setting.isReadOnly);
        if (!texts[place].empty())
            setting.condition = std::move(texts[place]);
        if (!visit(setting))
            return false;
    }
    return true;
}

/// Those that the registry does not know.
void ListLoose(const MachineSettings &machine, const SettingVisitor &visit)
{
    for (const WireAttribute &attribute : machine.bios.attributes)
    {
        // Of several of one name the last one counts, and is found.
        const bool counts = machine.bios.Find(attribute.name) == &attribute.value;
        if (!counts || attribute.name.empty() || machine.registry.Find(attribute.name))
            continue;
        Setting setting = MakeLooseSetting(machine, attribute);
        if (!visit(setting))
            return;
    }
}

} // namespace

bool IsSecret(const RegistryAttribute &attribute)
{
    return attribute.type == "Password" || attribute.isWriteOnly;
}

bool IsSameValue(const WireValue &left, const WireValue &right)
{
    const std::optional<std::int64_t> number = left.Number();
    return left == right || (number && number == right.Number());
}

const WireValue *WaitingValue(const MachineSettings &machine, const std::string &name)
{
    const WireValue *const waiting = machine.waiting.Find(name);
    const WireValue *const current = machine.bios.Find(name);
    const bool waits = waiting && waiting->HasText() && !(current && IsSameValue(*waiting, *current));
    return waits ? waiting : nullptr;
}

void ListSettings(const MachineSettings &machine, const SettingVisitor &visit)
{
    if (ListKnown(machine, FindPages(machine), visit))
        ListLoose(machine, visit);
}

std::size_t CountWaiting(const MachineSettings &machine)
{
    return static_cast<std::size_t>(
        std::count_if(machine.waiting.attributes.begin(), machine.waiting.attributes.end(),
                      [&](const WireAttribute &attribute)
                      {
                          const RegistryAttribute *const known = machine.registry.Find(attribute.name);
                          const bool isShown = known ? !IsSecret(*known) : machine.bios.Find(attribute.name) != nullptr;
                          return isShown && WaitingValue(machine, attribute.name) == &attribute.value;
                      }));
}

std::optional<WireValue> ValueToSend(const RegistryAttribute *attribute, const WireValue *current,
                                     const std::string &value)
{
    if (!attribute)
        return LooseValueToSend(current, value);
    switch (KindOf(*attribute))
    {
    case SettingKind::OneOf:
        return ChoiceToSend(*attribute, current, value);
    case SettingKind::CheckBox:
        return BooleanToSend(value);
    case SettingKind::Numeric:
        return NumberToSend(current, value);
    case SettingKind::Text:
        break;
    }
    return WireValue{WireKind::String, value};
}

std::string FirstBarred(const MachineSettings &machine, const WireValues &wanted)
{
    const auto later = [&](std::string_view name)
    {
        const auto assigned = wanted.find(std::string(name));
        if (assigned != wanted.end())
            return &assigned->second;
        const WireValue *const waiting = machine.waiting.Find(name);
        return waiting && waiting->HasText() ? waiting : machine.bios.Find(name);
    };
    const std::vector<Access> access = JudgeAccess(machine.registry, later);
    for (const auto &[name, value] : wanted)
    {
        const std::optional<std::size_t> place = machine.registry.PlaceOf(name);
        if (!place)
            continue;
        const WireValue *const current = machine.bios.Find(name);
        const bool isBarred = access[*place].isLocked || access[*place].isHidden;
        if (isBarred && !(current && IsSameValue(*current, value)))
            return name;
    }
    return {};
}

Json PatchBody(const MachineSettings &machine, const WireValues &wanted)
{
    Json attributes = Json::object();
    for (const WireAttribute &attribute : machine.waiting.attributes)
    {
        const RegistryAttribute *const known = machine.registry.Find(attribute.name);
        if (!(known && known->isReadOnly) && WaitingValue(machine, attribute.name))
            attributes[attribute.name] = ToJson(attribute.value);
    }
    for (const auto &[name, value] : wanted)
        attributes[name] = ToJson(value);
    Json body = {{"Attributes", std::move(attributes)}};
    const Json *const times = Find(machine.bios.other, {"@Redfish.Settings", "SupportedApplyTimes"});
    if (times && times->is_array() && std::find(times->begin(), times->end(), Json("OnReset")) != times->end())
        body["@Redfish.SettingsApplyTime"] = {{"ApplyTime", "OnReset"}};
    return body;
}

} // namespace Redfish
