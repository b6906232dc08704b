#include "organizationwindow.h"

#include "classdialog.h"
#include "messageservice.h"

#include <QFont>

#include <algorithm>

namespace {
const QString title = QStringLiteral("System Parameters Maintenance");
const QString states[] = {QStringLiteral("FLA"), QStringLiteral("NJ"), QStringLiteral("NY")};
const QString zipMask = QStringLiteral("#####-####");
const QString telephoneMask = QStringLiteral("###-###-####");

// Statuses of a record or file that another program holds.
bool heldElsewhere(int status)
{
    return status == 84 || status == 85;
}

int digitsIn(const QString &text)
{
    return int(std::count_if(text.begin(), text.end(), [](QChar c) { return c.isDigit(); }));
}

void showLoadFailure(const QString &text)
{
    messages().errorDialog({1, title, text, false});
}

void showSaveFailure(const QString &text)
{
    messages().messageBox({QStringLiteral("Kora-Fund"), text, MsgButtons::OK, MsgIcon::Critical, MsgAnswer::OK});
}

// A text box with its caption above it, placed in twips.
DialogControl &field(classDialog &dialog, const QString &name, const QString &caption, int left, int top, int width,
                     int maxLength)
{
    DialogControl &box = dialog.AddControl(DialogControlKind::TextBox, name, caption);
    box.Move(left, top, width);
    box.setMaxLength(maxLength);
    return box;
}

// Refuses a masked field holding part of its value; `wholes` are the digit
// counts it may hold.
bool complete(classDialog &dialog, const QString &name, const QString &caption, std::initializer_list<int> wholes)
{
    const QString text = dialog.Control(name).Text();
    const int digits = digitsIn(text);
    if (digits == 0 || std::find(wholes.begin(), wholes.end(), digits) != wholes.end())
        return true;
    messages().messageBox({title, QStringLiteral("The %1 is incomplete: %2").arg(caption, maskedFieldValue(text)),
                           MsgButtons::OK, MsgIcon::Exclamation, MsgAnswer::OK});
    return false;
}
} // namespace

QString maskedFieldValue(const QString &text)
{
    if (digitsIn(text) == 0)
        return {};
    QString value = text.trimmed();
    while (value.endsWith(u'-') || value.endsWith(u' '))
        value.chop(1);
    return value;
}

workerSysParams::workerSysParams(classObjectSysParams &record, QWidget *parent) : record_(record), parent_(parent)
{
}

bool workerSysParams::Initialise()
{
    if (!record_.DataBound()) {
        showLoadFailure(QStringLiteral("Cannot initialize System Parameters table."));
        return false;
    }
    mode_ = ChangeMode;
    int status = record_.Retrieve();
    if (heldElsewhere(status)) {
        const MsgAnswer view = messages().messageBox(
            {title, QStringLiteral("The System Parameters record is locked.\nWould you like to view the data ?"),
             MsgButtons::YesNo, MsgIcon::Question, MsgAnswer::Yes});
        if (view != MsgAnswer::Yes)
            return false;
        // Viewing asks for no hold on the record: read it as it stands.
        mode_ = ViewMode;
        status = record_.Retrieve();
    }
    if (status != 0) {
        showLoadFailure(QStringLiteral("Error retrieving the system parameter record."));
        return false;
    }
    return true;
}

void workerSysParams::DoModalForm()
{
    if (!Initialise())
        return;
    classDialog dialog(*this, parent_);
    dialog.Run(mode_);
}

void workerSysParams::FormBuild(classDialog &dialog)
{
    dialog.SetSize(6400, 4600);
    dialog.SetCaption(title);
    dialog.ShowStandardButtons(false);
    DialogControl &heading = dialog.AddControl(DialogControlKind::Label, QStringLiteral("lblHeading"),
                                               QStringLiteral("Organization"));
    heading.Move(200, 120, 6000);
    QFont bold = heading.field()->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    heading.field()->setFont(bold);
    dialog.AddControl(DialogControlKind::Label, QStringLiteral("lblTitle")).Move(200, 480, 6000);
    dialog.AddControl(DialogControlKind::Label, QStringLiteral("lblName")).Move(200, 780, 6000);

    field(dialog, QStringLiteral("txtAddress1"), QStringLiteral("Address"), 200, 1200, 6000, 40);
    field(dialog, QStringLiteral("txtAddress2"), {}, 200, 1900, 6000, 40);
    field(dialog, QStringLiteral("txtCity"), QStringLiteral("City"), 200, 2350, 3200, 30);
    DialogControl &state = dialog.AddControl(DialogControlKind::ComboBox, QStringLiteral("cboStates"),
                                             QStringLiteral("State"));
    state.Move(3550, 2350, 900);
    for (const QString &code : states)
        state.AddItem(code, code);
    field(dialog, QStringLiteral("txtZip"), QStringLiteral("Zip"), 4600, 2350, 1600, 10).setMask(zipMask);
    field(dialog, QStringLiteral("txtSED"), QStringLiteral("SED Code"), 200, 3050, 1900, 12);
    field(dialog, QStringLiteral("txtTel"), QStringLiteral("Telephone"), 2250, 3050, 1900, 12).setMask(telephoneMask);
    field(dialog, QStringLiteral("txtFax"), QStringLiteral("Fax"), 4300, 3050, 1900, 12);

    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdOK"), QStringLiteral("OK"))
        .Move(3800, 3950, 1150, 400);
    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdCancel"), QStringLiteral("Cancel"))
        .Move(5050, 3950, 1150, 400);
}

void workerSysParams::LoadData(classDialog &dialog)
{
    dialog.Control(QStringLiteral("lblName")).setCaption(record_.Name.trimmed());
    dialog.Control(QStringLiteral("txtAddress1")).setText(record_.Address1.trimmed());
    dialog.Control(QStringLiteral("txtAddress2")).setText(record_.Address2.trimmed());
    dialog.Control(QStringLiteral("txtCity")).setText(record_.City.trimmed());
    dialog.Control(QStringLiteral("txtZip")).setText(record_.ZipCode.trimmed());
    dialog.Control(QStringLiteral("txtSED")).setText(record_.SEDCode.trimmed());
    dialog.Control(QStringLiteral("txtTel")).setText(record_.Telephone.trimmed());
    dialog.Control(QStringLiteral("txtFax")).setText(record_.Fax.trimmed());

    DialogControl &state = dialog.Control(QStringLiteral("cboStates"));
    const QString code = record_.State.trimmed();
    int index = -1;
    for (int i = 0; i < int(std::size(states)); ++i) {
        if (states[i] == code)
            index = i;
    }
    if (index < 0 && !code.isEmpty()) {
        // A state the list does not offer is shown as it stands, not lost.
        state.AddItem(code, code);
        index = int(std::size(states));
    }
    state.setListIndex(index);
}

void workerSysParams::LockControls(classDialog &dialog)
{
    const bool viewing = dialog.Mode() == ViewMode;
    dialog.Control(QStringLiteral("lblTitle"))
        .setCaption(viewing ? QStringLiteral("View Organization's Parameters")
                            : QStringLiteral("Change Organization's Parameters"));
    for (const char *name : {"txtAddress1", "txtAddress2", "txtCity", "txtZip", "txtSED", "txtTel", "txtFax"})
        dialog.Control(QLatin1String(name)).setLocked(viewing);
    dialog.Control(QStringLiteral("cboStates")).setEnabled(!viewing);
    dialog.Control(QStringLiteral("cmdOK")).setVisible(!viewing);
    dialog.Control(QStringLiteral("cmdCancel")).setCaption(viewing ? QStringLiteral("Close") : QStringLiteral("Cancel"));
}

void workerSysParams::UserAction(classDialog &dialog, const QString &name)
{
    if (name == u"cmdOK") {
        if (dialog.Save())
            dialog.CloseDialog();
    } else if (name == u"cmdCancel") {
        dialog.CloseDialog();
    }
}

bool workerSysParams::ValidateData(classDialog &dialog)
{
    if (dialog.Mode() == ViewMode)
        return false;
    return complete(dialog, QStringLiteral("txtZip"), QStringLiteral("Zip"), {5, 9}) &&
           complete(dialog, QStringLiteral("txtTel"), QStringLiteral("Telephone"), {10});
}

bool workerSysParams::SaveData(classDialog &dialog)
{
    // Read afresh so that the fields this dialog does not show go back as
    // they stand in the file now.
    if (const int status = record_.Retrieve(); status != 0) {
        showSaveFailure(QStringLiteral("Cannot retrieve system parameters settings. error:") + record_.Message());
        return false;
    }
    const auto text = [&](const char *name) { return dialog.Control(QLatin1String(name)).Text().trimmed(); };
    record_.Address1 = text("txtAddress1");
    record_.Address2 = text("txtAddress2");
    record_.City = text("txtCity");
    record_.State = dialog.Control(QStringLiteral("cboStates")).Text().trimmed();
    record_.ZipCode = maskedFieldValue(text("txtZip"));
    record_.SEDCode = text("txtSED");
    record_.Telephone = maskedFieldValue(text("txtTel"));
    record_.Fax = text("txtFax");
    if (const int status = record_.Update(); status != 0) {
        showSaveFailure(QStringLiteral("The System Parameters cannot be updated. error:") + record_.Message());
        return false;
    }
    return true;
}
