#include "storageimages.h"

#include <QApplication>
#include <QHash>
#include <QStyle>

namespace {

QHash<QString, QIcon> &addedImages()
{
    static QHash<QString, QIcon> images;
    return images;
}

const QHash<QString, QStyle::StandardPixmap> &standardImages()
{
    static const QHash<QString, QStyle::StandardPixmap> images{
        {QStringLiteral("Folder"), QStyle::SP_DirIcon},
        {QStringLiteral("Object"), QStyle::SP_FileIcon},
        {QStringLiteral("New"), QStyle::SP_FileDialogNewFolder},
        {QStringLiteral("Edit"), QStyle::SP_FileDialogDetailedView},
        {QStringLiteral("Delete"), QStyle::SP_TrashIcon},
        {QStringLiteral("Save"), QStyle::SP_DialogSaveButton},
        {QStringLiteral("Print"), QStyle::SP_FileDialogContentsView},
        {QStringLiteral("Refresh"), QStyle::SP_BrowserReload},
        {QStringLiteral("Up"), QStyle::SP_ArrowUp},
        {QStringLiteral("Down"), QStyle::SP_ArrowDown},
        {QStringLiteral("Open"), QStyle::SP_DialogOpenButton},
        {QStringLiteral("Close"), QStyle::SP_DialogCloseButton},
        {QStringLiteral("Find"), QStyle::SP_FileDialogContentsView},
        {QStringLiteral("Help"), QStyle::SP_DialogHelpButton},
    };
    return images;
}

} // namespace

QIcon formStorageImages::Image(const QString &key)
{
    if (const auto added = addedImages().constFind(key); added != addedImages().cend())
        return *added;
    const auto standard = standardImages().constFind(key);
    if (standard == standardImages().cend() || !qApp)
        return {};
    // A style icon is read and decoded anew on every request; a tree of
    // thousands of nodes asks for the same two, so each style's are kept.
    static QHash<QString, QIcon> fromStyle;
    static const QStyle *styleOfCache = nullptr;
    if (styleOfCache != QApplication::style()) {
        fromStyle.clear();
        styleOfCache = QApplication::style();
    }
    QIcon &icon = fromStyle[key];
    if (icon.isNull())
        icon = QApplication::style()->standardIcon(*standard);
    return icon;
}

void formStorageImages::AddImage(const QString &key, const QIcon &icon)
{
    addedImages().insert(key, icon);
}
