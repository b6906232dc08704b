#include "explorerdialogs.h"

#include "classdialog.h"
#include "explorerrules.h"
#include "messageservice.h"

namespace {

const QString nameField = QStringLiteral("txtName");
const QString forceField = QStringLiteral("chkForceNewPage");
const QString codeField = QStringLiteral("txtAccount");
const QString descriptionField = QStringLiteral("txtDescription");
const QString stateField = QStringLiteral("txtState");

// A caption at the left and its field beside it, one row of the dialog. The
// field takes any length: ValidateData names the limit of what is too long.
void addField(classDialog &dialog, const QString &name, const QString &caption, int top, int width)
{
    dialog.AddControl(DialogControlKind::Label, QStringLiteral("lbl") + name.mid(3), caption).Move(120, top + 40, 1300);
    DialogControl &field = dialog.AddControl(DialogControlKind::TextBox, name);
    field.Move(1500, top, width);
}

void refuse(const QString &text)
{
    messages().errorDialog({1, explorerTitle(), text});
}

} // namespace

QString dialogCaption(DialogPurpose purpose, const QString &thing)
{
    switch (purpose) {
    case DialogPurpose::New:
        return QStringLiteral("New ") + thing;
    case DialogPurpose::Edit:
        return QStringLiteral("Edit ") + thing;
    case DialogPurpose::View:
        break;
    }
    return QStringLiteral("View ") + thing;
}

FolderDialog::FolderDialog(DialogPurpose purpose, bool showForceNewPage, Values values, Saver save)
    : purpose_(purpose), showForceNewPage_(showForceNewPage), values_(std::move(values)), save_(std::move(save))
{
}

void FolderDialog::FormBuild(classDialog &dialog)
{
    dialog.SetSize(5400, showForceNewPage_ ? 1300 : 800);
    dialog.SetCaption(dialogCaption(purpose_, QStringLiteral("Folder")));
    addField(dialog, nameField, QStringLiteral("Folder Name:"), 200, 3700);
    DialogControl &force = dialog.AddControl(DialogControlKind::CheckBox, forceField, QStringLiteral("Force New Page"));
    force.Move(1500, 700, 2400);
    force.setVisible(showForceNewPage_);
}

void FolderDialog::SecurityLock(classDialog &dialog)
{
    // Looking only: nothing to save, so no OK.
    if (purpose_ == DialogPurpose::View)
        dialog.ShowStandardButtons(false);
}

void FolderDialog::LoadData(classDialog &dialog)
{
    dialog.Control(nameField).setText(values_.name);
    dialog.Control(forceField).setValue(values_.forceNewPage);
}

void FolderDialog::LockControls(classDialog &dialog)
{
    const bool editable = purpose_ != DialogPurpose::View;
    dialog.Control(nameField).setLocked(!editable);
    dialog.Control(forceField).setEnabled(editable);
}

bool FolderDialog::ValidateData(classDialog &dialog)
{
    if (purpose_ == DialogPurpose::View)
        return false;
    const QString problem = folderNameProblem(dialog.Control(nameField).Text());
    if (!problem.isEmpty()) {
        refuse(problem);
        return false;
    }
    return true;
}

bool FolderDialog::SaveData(classDialog &dialog)
{
    return save_({dialog.Control(nameField).Text().trimmed(), dialog.Control(forceField).Value()});
}

AccountCodeDialog::AccountCodeDialog(DialogPurpose purpose, Values values, Validator validate, Saver save)
    : purpose_(purpose), values_(std::move(values)), validate_(std::move(validate)), save_(std::move(save))
{
}

void AccountCodeDialog::FormBuild(classDialog &dialog)
{
    dialog.SetSize(6600, 1700);
    dialog.SetCaption(dialogCaption(purpose_, QStringLiteral("Account Code")));
    addField(dialog, codeField, QStringLiteral("Account Code:"), 200, 3000);
    addField(dialog, descriptionField, QStringLiteral("Description:"), 650, 4900);
    addField(dialog, stateField, QStringLiteral("State Code:"), 1100, 3000);
    if (purpose_ == DialogPurpose::View)
        dialog.ShowStandardButtons(false);
}

void AccountCodeDialog::LoadData(classDialog &dialog)
{
    dialog.Control(codeField).setText(values_.code);
    dialog.Control(descriptionField).setText(values_.description);
    dialog.Control(stateField).setText(values_.stateCode);
    const bool locked = purpose_ == DialogPurpose::View;
    for (const QString &name : {codeField, descriptionField, stateField})
        dialog.Control(name).setLocked(locked);
}

AccountCodeDialog::Values AccountCodeDialog::read(const classDialog &dialog) const
{
    return {dialog.Control(codeField).Text(), dialog.Control(descriptionField).Text(),
            dialog.Control(stateField).Text()};
}

bool AccountCodeDialog::ValidateData(classDialog &dialog)
{
    if (purpose_ == DialogPurpose::View)
        return false;
    Values values = read(dialog);
    const QString problem = accountFieldsProblem(values.code, values.description, values.stateCode);
    if (!problem.isEmpty()) {
        refuse(problem);
        return false;
    }
    if (!validate_(values))
        return false;
    dialog.Control(codeField).setText(values.code);
    return true;
}

bool AccountCodeDialog::SaveData(classDialog &dialog)
{
    Values values = read(dialog);
    values.code = values.code.trimmed().toUpper();
    values.description = values.description.trimmed();
    values.stateCode = values.stateCode.trimmed();
    return save_(values);
}
