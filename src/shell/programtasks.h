#pragma once

#include <vector>

class mdiParent;
enum class TaskKind;

// A task the program's menu asks for, by kind and name, with the title the
// user reads while its window is not written yet.
struct ProgramTask {
    TaskKind kind;
    const char *name;
    const char *title;
};

// Every task the menu runs, in one table (programtasks.cpp).
const std::vector<ProgramTask> &programTasks();

// Registers the program's tasks with its frame.
void registerProgramTasks(mdiParent &frame);
