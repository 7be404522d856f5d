#pragma once

// Calls of the system that fail when they are told to, in the whole program, libxml2 included.

enum class SystemCall
{
    Open,
    Create,
    Read,
    Write,
    Sync,
    Close,
    Rename,
    ChangeOwner,
    Lock
};

/// From now on the `position`th call of this kind (from 1 on) fails with `error`; 0 stands for none.
void FailCall(SystemCall call, int position, int error);

/// How many calls of that kind there were since then.
int CallsSeen();
