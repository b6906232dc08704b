#pragma once

// The busy indicator: an hourglass pointer for the whole program, and the
// active child window's Waiting flag. Never fails.
void SetWaiting(bool waiting);
