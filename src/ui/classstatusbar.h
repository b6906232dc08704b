#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <vector>

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>

enum class PanelAlignment { Left = 0, Centre = 1, Right = 2 };
enum class PanelAutoSize { None = 0, Spring = 1, Contents = 2 };

// The status-bar wrapper: text panels by key, and a progress panel for long
// work. A click on a panel raises its key.
class classStatusbar : public QObject {
    Q_OBJECT
public:
    explicit classStatusbar(QObject *parent = nullptr);
    ~classStatusbar() override;

    void Init(QStatusBar *bar);
    void Reset();
    void ClearPanels();
    void RemovePanel(const QString &key);
    bool Visible() const;
    void setVisible(bool on);
    // index 0 appends, n inserts before the n-th panel; minimum width in twips.
    void AddPanel(int index, const QString &key, const QString &tag, const QString &text,
                  PanelAlignment alignment = PanelAlignment::Left, PanelAutoSize autoSize = PanelAutoSize::None,
                  int minWidthTwips = 1440, const QString &toolTip = {});
    int KeyToIndex(const QString &key) const; // 1-based, 0 when absent
    int Count() const { return int(panels_.size()); }
    QString PanelText(const QString &key) const;
    void setPanelText(const QString &key, const QString &text);
    QString PanelTooltip(const QString &key) const;
    void setPanelTooltip(const QString &key, const QString &text);
    QString PanelTag(const QString &key) const;

    // The progress panel, shown at the right while long work runs.
    void ShowProgress(int maximum);
    void SetProgress(int value);
    // One step of long work: the panel says what is being done, the progress
    // panel shows `done`, and both are painted; the user's input waits.
    void ShowStep(const QString &key, const QString &text, int done);
    void HideProgress();
    bool ProgressVisible() const;
    int ProgressValue() const;

signals:
    void panelClicked(const QString &key);
    void visibilityChanged();
    void resized();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Panel {
        QString key;
        QString tag;
        QPointer<QLabel> label;
        int stretch = 0;
        int minTwips = 0;
    };
    const Panel &panel(const QString &key, const char *member) const;
    void rebuild();
    static void fitText(const Panel &p);
    void keepPanelsWhole();

    QPointer<QStatusBar> bar_;
    QPointer<QProgressBar> progress_;
    std::vector<Panel> panels_;
};
