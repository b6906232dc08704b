#pragma once

#include <QIcon>
#include <QString>

// The shared image store from which toolbar buttons and tree nodes take their
// pictures by key. Standard keys ("Folder", "Object", "New", "Edit",
// "Delete", "Save", "Print", "Refresh", "Up", "Down", "Open", "Close",
// "Find", "Help") come from the platform style; a program may add its own.
class formStorageImages {
public:
    static QString FormType() { return QStringLiteral("Storage"); }
    // A null icon for an unknown key.
    static QIcon Image(const QString &key);
    static void AddImage(const QString &key, const QIcon &icon);
};
