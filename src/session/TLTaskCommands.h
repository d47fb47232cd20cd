#pragma once

/// Gives the session's script the twelve commands that it steers the task of this process with.
/// docs/script-contract.md tells them. All but `exit_taskmanagerc` work on gCurrentTask, and answer
/// nothing before it exists.
void registerTaskCommands();
