#include "classdialog.h"

#include "classdropdown.h"
#include "classgrid.h"
#include "classstatusbar.h"
#include "classtoolbar.h"
#include "dialogframe.h"
#include "twips.h"
#include "wrappererror.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QString source(const char *member)
{
    return QStringLiteral("classDialog.") + QLatin1String(member);
}

} // namespace

classDialog::classDialog(DialogWorker &worker, QWidget *parent) : QDialog(parent), worker_(worker)
{
    setDialogFrame(*this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    topSlot_ = new QVBoxLayout;
    layout->addLayout(topSlot_);
    canvas_ = new QWidget(this);
    canvas_->setObjectName(QStringLiteral("canvas"));
    layout->addWidget(canvas_, 1);
    buttonRow_ = new QWidget(this);
    auto *buttons = new QHBoxLayout(buttonRow_);
    buttons->setContentsMargins(8, 4, 8, 8);
    buttons->addStretch();
    ok_ = new QPushButton(QStringLiteral("OK"), buttonRow_);
    ok_->setObjectName(QStringLiteral("cmdDialogOK"));
    ok_->setDefault(true);
    cancel_ = new QPushButton(QStringLiteral("Cancel"), buttonRow_);
    cancel_->setObjectName(QStringLiteral("cmdDialogCancel"));
    buttons->addWidget(ok_);
    buttons->addWidget(cancel_);
    layout->addWidget(buttonRow_);
    bottomSlot_ = new QVBoxLayout;
    layout->addLayout(bottomSlot_);
    connect(ok_, &QPushButton::clicked, this, [this] {
        if (Save()) {
            closeAction_ = Saved;
            accept();
        }
    });
    connect(cancel_, &QPushButton::clicked, this, [this] {
        closeAction_ = Cancelled;
        reject();
    });
}

classDialog::~classDialog()
{
    controls_.clear(); // wrappers first, while their widgets still exist
}

int classDialog::Run(int mode)
{
    Build(mode);
    exec();
    return closeAction_;
}

void classDialog::Build(int mode)
{
    if (built_)
        return;
    built_ = true;
    mode_ = mode;
    raiseEvent("FormBuild");
    worker_.FormBuild(*this);
    raiseEvent("SecurityLock");
    worker_.SecurityLock(*this);
    Reload();
}

void classDialog::Reload()
{
    raiseEvent("LoadData");
    worker_.LoadData(*this);
    raiseEvent("LockControls");
    worker_.LockControls(*this);
}

void classDialog::SetSize(int widthTwips, int heightTwips)
{
    canvas_->setFixedSize(twipsToPixels(widthTwips), twipsToPixels(heightTwips));
    adjustSize();
}

void classDialog::SetCaption(const QString &caption)
{
    setWindowTitle(caption);
}

DialogControl &classDialog::AddControl(DialogControlKind kind, const QString &name, const QString &caption,
                                       const QString &frame)
{
    if (name.isEmpty())
        throw WrapperError(invalidPropertyValueError, source("AddControl"), invalidKeyText());
    if (HasControl(name))
        throw WrapperError(duplicateKeyError, source("AddControl"), duplicateKeyText());
    QWidget *container = canvas_;
    if (!frame.isEmpty()) {
        const DialogControl &host = Control(frame);
        if (host.Kind() != DialogControlKind::Frame)
            throw WrapperError(invalidPropertyValueError, source("AddControl"),
                               QStringLiteral("Not a frame: ") + frame);
        container = host.field();
    }
    auto control = std::make_unique<DialogControl>(kind, name, caption, *container);
    if (kind == DialogControlKind::Toolbar)
        topSlot_->addWidget(control->widget());
    else if (kind == DialogControlKind::StatusBar)
        bottomSlot_->addWidget(control->widget());
    control->widget()->show();
    connectControl(*control);
    controls_.push_back(std::move(control));
    return *controls_.back();
}

DialogControl &classDialog::Control(const QString &name) const
{
    const auto found =
        std::find_if(controls_.begin(), controls_.end(), [&](const auto &c) { return c->Name() == name; });
    if (found == controls_.end())
        throw WrapperError(invalidPropertyValueError, source("Control"), invalidKeyText());
    return **found;
}

bool classDialog::HasControl(const QString &name) const
{
    return std::any_of(controls_.begin(), controls_.end(), [&](const auto &c) { return c->Name() == name; });
}

void classDialog::ShowStandardButtons(bool on)
{
    buttonRow_->setVisible(on);
}

bool classDialog::Save()
{
    raiseEvent("ValidateData");
    if (!worker_.ValidateData(*this))
        return false;
    raiseEvent("SaveData");
    return worker_.SaveData(*this);
}

void classDialog::CloseDialog()
{
    closeAction_ = ClosedByWorker;
    done(QDialog::Accepted);
}

void classDialog::reject()
{
    if (closeActionName_.isEmpty()) {
        closeAction_ = Cancelled;
        QDialog::reject();
        return;
    }
    userAction(closeActionName_);
}

void classDialog::raiseEvent(const char *event)
{
    emit eventRaised(QLatin1String(event));
}

void classDialog::userAction(const QString &name)
{
    emit eventRaised(QStringLiteral("UserAction:") + name);
    worker_.UserAction(*this, name);
}

void classDialog::connectControl(DialogControl &control)
{
    const QString name = control.Name();
    switch (control.Kind()) {
    case DialogControlKind::CommandButton:
    case DialogControlKind::CheckBox:
    case DialogControlKind::OptionButton:
        connect(qobject_cast<QAbstractButton *>(control.field()), &QAbstractButton::clicked, this,
                [this, name] { userAction(name); });
        break;
    case DialogControlKind::TextBox:
        connect(qobject_cast<QLineEdit *>(control.field()), &QLineEdit::textEdited, this,
                [this, name] { userAction(name + QStringLiteral("_Change")); });
        break;
    case DialogControlKind::ComboBox:
    case DialogControlKind::ListBox:
        connect(&control.DropDown(), &classDropDown::selectionChanged, this, [this, name] { userAction(name); });
        break;
    case DialogControlKind::Grid: {
        classGrid &grid = control.Grid();
        connect(&grid, &classGrid::cellChanged, this,
                [this, name] { userAction(name + QStringLiteral("_CellChange")); });
        connect(&grid, &classGrid::keyPressed, this, [this, name] { userAction(name + QStringLiteral("_KeyPress")); });
        connect(&grid, &classGrid::leftDoubleClicked, this,
                [this, name] { userAction(name + QStringLiteral("_DblClick")); });
        connect(&grid, &classGrid::rightClicked, this,
                [this, name] { userAction(name + QStringLiteral("_RightClick")); });
        break;
    }
    case DialogControlKind::Toolbar:
        connect(&control.Toolbar(), &classToolbar::buttonClicked, this,
                [this](const QString &key) { userAction(key); });
        break;
    case DialogControlKind::StatusBar:
        connect(&control.Statusbar(), &classStatusbar::panelClicked, this,
                [this](const QString &key) { userAction(key); });
        break;
    case DialogControlKind::Label:
    case DialogControlKind::Frame:
        break;
    }
}
