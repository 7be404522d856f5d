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

/// An identity that stays when options before this one come or go: the 64-bit FNV-1a hash of the name.
std::string UniqueId(const std::string &name)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char character : name)
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3;
    return HexText(hash, 16);
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

void MoveToNode(Knob &knob, std::uint32_t node, std::uint32_t index)
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

Knob MakeKnob(std::uint32_t index)
{
    const PlacedRow &placed = BuiltIn().rows[index % DefaultKnobCount()];
    const KnobRow &row = *placed.row;
    Knob knob = {.kind = row.kind,
                 .name = row.name,
                 .prompt = row.prompt,
                 .help = row.help,
                 .page = placed.page->path,
                 .depex = row.depex,
                 .uniqueId = {},
                 .defaultValue = row.kind == KnobKind::Text ? row.text : HexText(row.number),
                 .varstore = placed.page->varstore,
                 .size = row.size,
                 .offset = placed.offset,
                 .choices = row.choices};
    const std::uint32_t node = index / DefaultKnobCount();
    if (node > 0)
        MoveToNode(knob, node, index);
    knob.uniqueId = UniqueId(knob.name);
    return knob;
}
