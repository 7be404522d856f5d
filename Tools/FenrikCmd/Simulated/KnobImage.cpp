#include "KnobImage.h"

#include "KnobTables.h"
#include "Number.h"

#include <map>
#include <vector>

namespace
{

/// A row of the tables with its place in the firmware.
struct PlacedRow
{
    const KnobRow *row;
    const KnobPage *page;
    std::uint64_t offset;
};

struct BuiltInFirmware
{
    std::vector<PlacedRow> rows;
    /// The bytes used in each variable store.
    std::map<std::uint32_t, std::uint64_t> storeSizes;
};

BuiltInFirmware PlaceRows()
{
    BuiltInFirmware firmware;
    for (const auto &pages :
         {kBoardPages, kProcessorPages, kMemoryPages, kInputOutputPages, kBootSecurityPages, kManagementPages})
    {
        for (const KnobPage &page : pages)
        {
            std::uint64_t &storeSize = firmware.storeSizes[page.varstore];
            for (const KnobRow &row : page.knobs)
            {
                firmware.rows.push_back({&row, &page, storeSize});
                storeSize += row.size;
            }
        }
    }
    return firmware;
}

const BuiltInFirmware &BuiltIn()
{
    static const BuiltInFirmware firmware = PlaceRows();
    return firmware;
}

/// What the help of an option adds on nodes other than the first, in turn.
constexpr const char *kNodeRemarks[] = {
    " This value applies to one node of the system only. The other nodes keep values of their own, which are found on "
    "the pages of the same name; a node that is not populated ignores it. When nodes are joined to one partition, the "
    "value of its first node counts and those of the others are kept for the time after the partition is dissolved.",
    " All nodes of a partition should have the same value here. Where they differ, the firmware takes the one that is "
    "safe for all of them, writes a warning with the numbers of the nodes to the event log & shows the value in use on "
    "the status page. The values that were set are not changed by this. They take effect again, each on its own node, "
    "as soon as the partition is dissolved or the node is started alone. Changes made while the node is in service are "
    "accepted, but wait for its next restart; a restart of the other nodes is not needed.",
    " The node reads this value once, early in its start, before its memory is trained & before it can be reached over "
    "the network. To change it from remote, program it through the management controller, then restart the node; the "
    "controller compares what was programmed with what the node reports and logs \"value < not taken >\" when they "
    "differ. After an exchange of the node's board the value is taken from the backplane, where a copy is kept. A "
    "board "
    "that is moved to another system brings nothing along. Validation runs should set the value explicitly on every "
    "node & read it back after the restart, since nodes of mixed revisions may start with different values. Values "
    "outside the range that a revision supports are replaced by the nearest one inside it.",
};

void MoveToNode(Setting &knob, std::uint32_t node, std::uint32_t index)
{
    const std::string number = std::to_string(node);
    knob.name += "_Node" + number;
    knob.prompt += " - Node " + number;
    knob.help += kNodeRemarks[index % std::size(kNodeRemarks)];
    knob.offset += node * BuiltIn().storeSizes.at(knob.varstore);
}

} // namespace

std::uint32_t DefaultKnobCount()
{
    return static_cast<std::uint32_t>(BuiltIn().rows.size());
}

Setting MakeKnob(std::uint32_t index)
{
    const PlacedRow &placed = BuiltIn().rows[index % DefaultKnobCount()];
    const KnobRow &row = *placed.row;
    Setting knob;
    knob.kind = row.kind;
    knob.name = row.name;
    knob.prompt = row.prompt;
    knob.help = row.help;
    knob.page = placed.page->path;
    knob.condition = row.depex;
    knob.currentValue = row.kind == SettingKind::Text ? row.text : HexText(row.number);
    knob.defaultValue = knob.currentValue;
    knob.varstore = placed.page->varstore;
    knob.size = row.size;
    knob.offset = placed.offset;
    knob.choices.reserve(row.choices.size());
    for (const Choice &choice : row.choices)
        knob.choices.push_back({choice.text, choice.value});
    const std::uint32_t node = index / DefaultKnobCount();
    if (node > 0)
        MoveToNode(knob, node, index);
    return knob;
}
