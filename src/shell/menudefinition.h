#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <vector>

class mdiParent;
enum class TaskKind;

// The task a menu item asks the frame for, by kind and name.
struct MenuTask {
    TaskKind kind;
    QString name;
};

// One entry of the frame's menu: its name (the key the privilege records
// use), caption with access key, the name of the menu it sits in (empty for
// the menu bar), the task it runs if any, and what it does. A separator has
// no caption and no action.
struct MenuEntry {
    QString name;
    QString caption;
    QString parent;
    std::optional<MenuTask> task;
    std::function<void(mdiParent &)> action;
    bool isSeparator() const { return caption.isEmpty(); }
};

// The whole menu, in order.
const std::vector<MenuEntry> &frameMenu();
