#pragma once

#include "Configuration.h"
#include "Setting.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Takes the next setting of a machine, which it may change and move from; returns false to see no further ones.
using SettingVisitor = std::function<bool(Setting &setting)>;

/// Takes a sentence for the user, without its full stop, that does not end the command.
using WarningSink = std::function<void(const std::string &sentence)>;

/// One assignment of a knob file, judged by the setting's kind, choices, size, limits and read-only mark.
struct Assignment
{
    /// Of the knob file, from 1.
    std::size_t line = 0;
    /// As the source listed it.
    Setting setting;
    /// As a dump has it: the number of a choice, a number, a text.
    std::string value;
};

/// What waits for a restart.
struct PendingSettings
{
    /// Name and value, in byte-wise order of the names. Choices stand as their numbers.
    std::vector<std::pair<std::string, std::string>> values;
    /// What else there is to say, sentences with their full stops.
    std::vector<std::string> remarks;
    /// Whether the source knows the values; without it `values` is empty and only the remarks tell.
    bool isKnown = true;
};

/// Where the settings of a machine come from. All functions throw ToolError when they fail; a failure says what is
/// wrong and, where there is one, the way out. No message holds a password, a token or another secret. Used from one
/// thread, by one command of the tool, so a source may keep what it has read.
class SettingsSource
{
public:
    SettingsSource() = default;
    virtual ~SettingsSource() = default;
    SettingsSource(const SettingsSource &) = delete;
    SettingsSource &operator=(const SettingsSource &) = delete;

    /// Finds out whether the settings can be read and returns a sentence, with its full stop, that says which source
    /// answers. Throws InterfaceDisabled where there is no such interface or it is switched off, Unreadable where it is
    /// there and does not answer. Called before List and Program.
    virtual std::string Status() = 0;

    /// What the dump's element `platform` says of the machine: names of XML attributes and their values. May be empty.
    virtual std::vector<std::pair<std::string, std::string>> Machine() = 0;

    /// Whether the values need rights that not every user of this machine has: whatever holds them is then kept from
    /// others (mode 0600).
    virtual bool ValuesNeedRights() = 0;

    /// How many settings wait for a restart; nothing where the source does not know which. A dump then says nothing of
    /// it, else it has the number, and each setting that waits has its `pendingValue`.
    virtual std::optional<std::size_t> PendingCount() = 0;

    /// Hands every setting to `visit`, those of a page one behind the other, in the same order every time.
    virtual void List(const SettingVisitor &visit) = 0;

    /// Programs the assignments: all of them or, as far as the interface allows, none. Each is of another setting, none
    /// of a read-only one; some may be of the value that the setting has already. The source judges what the record
    /// does not say (conditions) before it changes anything. Returns the sentence for the user, with its full stop.
    /// Throws BadInput for an assignment that is refused (RefusedAssignment), InterfaceDisabled where programming is
    /// not permitted, CannotWrite where the interface fails; the message then says what stays changed, if anything
    /// does.
    virtual std::string Program(const std::vector<Assignment> &assignments) = 0;

    virtual PendingSettings Pending() = 0;

    /// Gives the machine its settings as delivered. `what` is a word of the source's own, or empty. Returns the
    /// sentence for the user, with its full stop. Only ever called when a user asks for it.
    virtual std::string Reset(const std::string &what) = 0;
};

/// How a source is made. Does not touch the machine yet. `configuration` outlives what is returned.
using MakeSource = std::unique_ptr<SettingsSource> (*)(const Configuration &configuration, WarningSink warn);
