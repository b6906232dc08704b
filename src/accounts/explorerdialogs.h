#pragma once

#include "dialogworker.h"

#include <QString>

#include <functional>

class classDialog;

// What the folder and account code dialogs are opened for.
enum class DialogPurpose { New, Edit, View };

// "New ", "Edit " or "View " before the thing's name.
QString dialogCaption(DialogPurpose purpose, const QString &thing);

// The folder dialog: its name and, in the account-code view, whether the
// listing starts a new page with it.
class FolderDialog : public DialogWorker {
public:
    struct Values {
        QString name;
        bool forceNewPage = false;
    };
    // Writes the values; false (after telling the user) keeps the dialog open.
    using Saver = std::function<bool(const Values &)>;

    FolderDialog(DialogPurpose purpose, bool showForceNewPage, Values values, Saver save);

    void FormBuild(classDialog &dialog) override;
    void SecurityLock(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void LockControls(classDialog &dialog) override;
    bool ValidateData(classDialog &dialog) override;
    bool SaveData(classDialog &dialog) override;

private:
    DialogPurpose purpose_;
    bool showForceNewPage_;
    Values values_;
    Saver save_;
};

// The account code dialog: the code, its name (the description) and its state code.
class AccountCodeDialog : public DialogWorker {
public:
    struct Values {
        QString code;
        QString description;
        QString stateCode;
    };
    // Judges the input; may rewrite the code (upper-cased, trimmed). False
    // (after telling the user) keeps the dialog open.
    using Validator = std::function<bool(Values &)>;
    using Saver = std::function<bool(const Values &)>;

    AccountCodeDialog(DialogPurpose purpose, Values values, Validator validate, Saver save);

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    bool ValidateData(classDialog &dialog) override;
    bool SaveData(classDialog &dialog) override;

private:
    Values read(const classDialog &dialog) const;

    DialogPurpose purpose_;
    Values values_;
    Validator validate_;
    Saver save_;
};
