#pragma once

#include "storageimages.h"

#include <QPointer>

#include <memory>

class formErrorDialog;

// gcolForms: the shared windows every dialog object receives, item 1 the
// image store and item 2 the error dialog. The collection only refers to
// them; the main window's load owns them and unloads them after releasing it.
class SharedForms {
public:
    SharedForms(formStorageImages &images, formErrorDialog &errorDialog);

    static int Count() { return 2; }
    formStorageImages &StorageImages() const { return *images_; }
    // Null once the main window has unloaded it.
    formErrorDialog *ErrorDialog() const { return errorDialog_; }

private:
    formStorageImages *images_;
    QPointer<formErrorDialog> errorDialog_;
};

extern std::unique_ptr<SharedForms> gcolForms;
