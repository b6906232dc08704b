#pragma once

#include "dialogcontrol.h"
#include "dialogworker.h"

#include <QDialog>
#include <QPointer>

#include <memory>
#include <vector>

class QPushButton;
class QVBoxLayout;

// The modal dialog a worker builds at run time. Run() raises FormBuild,
// SecurityLock, LoadData and LockControls on the worker, shows the dialog,
// raises UserAction for every action of the user, and on OK (or Save())
// raises ValidateData and then SaveData; the dialog closes only when both
// agree. Controls are placed in twips on a canvas of the size the worker sets.
class classDialog : public QDialog {
    Q_OBJECT
public:
    enum CloseActionValue { Cancelled = 0, Saved = 1, ClosedByWorker = 2 };

    explicit classDialog(DialogWorker &worker, QWidget *parent = nullptr);
    ~classDialog() override;

    static QString FormType() { return QStringLiteral("Dialog"); }

    // Builds and shows the dialog modally; returns its CloseAction.
    int Run(int mode = 1);
    // The first half of Run: the four building events, without showing.
    void Build(int mode = 1);
    int Mode() const { return mode_; }
    int CloseAction() const { return closeAction_; }

    void SetSize(int widthTwips, int heightTwips);
    void SetCaption(const QString &caption);
    // A control of the given kind; `frame` names a frame to place it in
    // (positions are then relative to the frame). Names are unique.
    DialogControl &AddControl(DialogControlKind kind, const QString &name, const QString &caption = {},
                              const QString &frame = {});
    DialogControl &Control(const QString &name) const;
    bool HasControl(const QString &name) const;

    // The dialog's own OK and Cancel buttons; workers with buttons of their
    // own hide them.
    void ShowStandardButtons(bool on);
    // Validates and saves; true when both succeeded.
    bool Save();
    // Closes without saving (a worker's "cmdClose").
    void CloseDialog();
    // The control whose action closes the dialog (a worker's own Close
    // button): Escape and the close box raise its UserAction, and the worker
    // decides whether to CloseDialog. Without one they cancel.
    void SetCloseAction(const QString &name) { closeActionName_ = name; }
    // Escape, the close box and Cancel.
    void reject() override;
    // LoadData and LockControls again, after the worker changed its data.
    void Reload();

signals:
    // Every event raised on the worker, by name, for logging and tests.
    void eventRaised(const QString &event);

private:
    void raiseEvent(const char *event);
    void connectControl(DialogControl &control);
    void userAction(const QString &name);

    DialogWorker &worker_;
    int mode_ = 1;
    int closeAction_ = Cancelled;
    QString closeActionName_;
    bool built_ = false;
    QWidget *canvas_;
    QVBoxLayout *topSlot_;
    QVBoxLayout *bottomSlot_;
    QWidget *buttonRow_;
    QPushButton *ok_;
    QPushButton *cancel_;
    std::vector<std::unique_ptr<DialogControl>> controls_;
};
