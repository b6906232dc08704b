#pragma once

class classDialog;
class classGrid;

// Before a grid's rows are given up (another ledger is loaded, the window
// closes): true when no row differs from its twins, or when the user agrees
// to discard the changes. The dialog's status bar shows the check going on.
bool mayDiscardChanges(classDialog &dialog, const classGrid &grid);
