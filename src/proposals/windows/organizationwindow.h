#pragma once

#include "dialogworker.h"
#include "objectsysparams.h"

#include <QPointer>
#include <QWidget>

// The organisation's address, telephone and state codes, kept in the one
// record of the fund-accounting product's system parameters file. The record
// object is opened by whoever runs the worker; this worker reads it, shows it
// for change (or only for viewing when another program holds it) and writes
// the fields back in place.
class workerSysParams : public DialogWorker, public ModalWorker {
public:
    enum Mode { ChangeMode = 1, ViewMode = 2 };

    explicit workerSysParams(classObjectSysParams &record, QWidget *parent = nullptr);

    static QString FormType() { return QStringLiteral("Worker"); }

    // Reads the record. A record held by another program is offered for
    // viewing only. False, after telling the user, when there is nothing to show.
    bool Initialise();
    Mode mode() const { return mode_; }
    void DoModalForm() override;

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void LockControls(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;
    bool ValidateData(classDialog &dialog) override;
    bool SaveData(classDialog &dialog) override;

private:
    classObjectSysParams &record_;
    Mode mode_ = ChangeMode;
    QPointer<QWidget> parent_;
};

// The value a masked field holds: blank when no digit was typed (the mask's
// separators alone), else the text without trailing separators and blanks.
QString maskedFieldValue(const QString &text);
