#pragma once

#include "classdropdown.h"
#include "classexplorer.h"
#include "classgrid.h"
#include "classstatusbar.h"
#include "classtoolbar.h"

#include <QTimer>
#include <QWidget>

#include <array>
#include <cstdint>
#include <memory>

class QMdiArea;
class QSplitter;

// The generic child window of the frame: toolbar, drop-down lists, an
// explorer tree, two grid slots (each with its totals underneath), a status
// bar and a timer. Everything the user does comes back to the worker as one
// Command string: "_Unload", "_CellChange"/"_CellChange(2)",
// "_KeyPress"/"_KeyPress(2)", "_gridLeftDblClick"/"_gridLeftDblClick(2)",
// "_gridRightClick"/"_gridRightClick(2)", "_Visible", "_Resize", "_Print",
// "_Refresh", "_Timer", "_explorerNodeRightClick", "_explorerNodeDrag",
// "_explorerNodeClick", or the key of a toolbar button, a status-bar panel or
// a drop-down list.
class mdiChild : public QWidget {
    Q_OBJECT
public:
    explicit mdiChild(QWidget *parent = nullptr);
    ~mdiChild() override;

    static QString FormType() { return QStringLiteral("Child"); }

    // Every wrapper back to its empty state, one grid slot, nothing waiting.
    void InitForm();
    // Shows the window inside the frame's area.
    void ShowForm(QMdiArea &area);
    void BringToFront();

    classToolbar &Toolbar() { return toolbar_; }
    classStatusbar &Statusbar() { return statusbar_; }
    classDropDown &DropDown() { return dropDown_; }
    classExplorer &Explorer() { return explorer_; }
    classGrid &EditGrid() { return editGrid_; }
    // Slot 1 or 2; any other index shows "Invalid grid index value" and gives null.
    classGrid *Grid(int index);
    QTimer &Timer() { return tmr_; }

    void Form_Resize();
    void DoPrint() { emit Command(QStringLiteral("_Print")); }
    void DoRefresh() { emit Command(QStringLiteral("_Refresh")); }
    // Asks for a file name and writes the current grid there as CSV or as
    // an Excel workbook, as the name's extension or the chosen filter says.
    void DoExport();

    int GridKeyAscii() const { return gridKeyAscii_; }
    bool Waiting() const { return waiting_; }
    void setWaiting(bool on);
    bool Loading() const { return loading_; }
    void setLoading(bool on) { loading_ = on; }
    int GridCount() const { return gridCount_; }
    // 1 or 2; anything else shows "Invalid Grid Count Value" and keeps the old value.
    void setGridCount(int count);
    // The grid slot the user worked in last (export and printing use it).
    int CurrentGridSlot() const { return currentSlot_; }

    // The key of the worker's own Close button: Escape and the close box send
    // it as a command, and the window stays until the worker calls Unload.
    // Without one they unload the window at once.
    void setCloseCommand(const QString &key) { closeCommand_ = key; }
    // Closes the window by code: "_Unload", then it goes.
    void Unload();

signals:
    void Command(const QString &command);

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectGrid(classGrid &grid, int slot);
    void closeWindow();

    classToolbar toolbar_;
    classStatusbar statusbar_;
    classDropDown dropDown_;
    classExplorer explorer_;
    std::array<classGrid, 2> grids_;
    classGrid editGrid_;
    QTimer tmr_;
    QSplitter *body_;
    QWidget *explorerBox_ = nullptr; // tree and its caption
    std::array<QWidget *, 2> slots_{};
    bool loading_ = false;
    bool waiting_ = false;
    int gridCount_ = 1;
    int currentSlot_ = 1;
    int gridKeyAscii_ = 0;
    QString closeCommand_;
    bool unloading_ = false;
};
