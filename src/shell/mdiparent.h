#pragma once

#include "childworker.h"
#include "classstatusbar.h"
#include "dialogworker.h"

#include <QHash>
#include <QMainWindow>

#include <functional>
#include <map>
#include <memory>

class QMdiArea;
class QPrinter;

enum class TaskKind { Child, Modal, Report };

// The frame window: the multiple-document area, the menu of every task and
// the status bar. Tasks are plugged in by name (programtasks.h lists the
// program's); a menu item whose task is not available tells the user so
// rather than doing nothing. Start-up and shut-down are not part of the
// frame's construction: they run on a frame that exists.
class mdiParent : public QMainWindow {
    Q_OBJECT
public:
    using EntryProperties = QHash<QString, QString>;
    using ChildFactory = std::function<std::unique_ptr<ChildWorker>()>;
    // May give null to run nothing (a task that failed to initialise and said so).
    using ModalFactory = std::function<std::unique_ptr<ModalWorker>(const EntryProperties &)>;
    // Receives the report type, "E", "R" or empty.
    using ReportRunner = std::function<void(const QString &type)>;

    explicit mdiParent(QWidget *parent = nullptr);
    ~mdiParent() override;

    static QString FormType() { return QStringLiteral("Parent"); }

    QMdiArea &Area() const { return *area_; }
    classStatusbar &Statusbar() { return statusbar_; }
    // The printer the print set-up chose, for everything the program prints.
    QPrinter &Printer() const { return *printer_; }
    // A menu item by its name ("mnuFilePrint"); null when there is none.
    QAction *MenuItem(const QString &name) const;
    QList<QAction *> MenuItems() const;

    void registerChildWorker(const QString &name, ChildFactory factory);
    void registerModalWorker(const QString &name, ModalFactory factory);
    void registerReport(const QString &name, ReportRunner runner);
    // A task whose window is not written yet: asking for it says so, under its title.
    void registerUnavailable(TaskKind kind, const QString &name, const QString &title);
    // True when the task is registered, runnable or as not available yet.
    bool HasTask(TaskKind kind, const QString &name) const;

    bool IsFormLoaded(const QString &name) const;
    void ShowWorker(const QString &name);
    // Opens the child task, or brings it forward when it is already open.
    void OpenChildWorker(const QString &name);
    void RunModalWorker(const QString &name, const EntryProperties &entry = {});
    void RunReport(const QString &name, const QString &type = {});
    void PrinterSetup();
    // File > Print: the active child prints, or a beep when there is none.
    void FilePrint();
    void TileHorizontally();
    void TileVertically();
    void ArrangeIcons();
    void ShowAbout();
    // The title names where the user works: the district, the budget
    // database and the proposal; an empty part is left out.
    void ShowWhere(const QString &district, const QString &database, const QString &proposal);
    // After another proposal became the current one.
    void ShowProposal(const QString &proposal);

private:
    void buildMenu();
    void fillWindowList();
    void tile(Qt::Orientation orientation);
    void notAvailable(TaskKind kind, const QString &name);

    QMdiArea *area_;
    QString district_;
    QString database_;
    classStatusbar statusbar_;
    std::unique_ptr<QPrinter> printer_;
    QMenu *windowMenu_ = nullptr;
    QList<QAction *> windowListActions_;
    std::map<QString, ChildFactory> childFactories_; // by lower-case name
    std::map<QString, ModalFactory> modalFactories_;
    std::map<QString, ReportRunner> reports_;
    std::map<std::pair<TaskKind, QString>, QString> unavailable_; // → the task's title
    std::map<QString, std::unique_ptr<ChildWorker>> openChildren_;
};
