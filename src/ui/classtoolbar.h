#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>
#include <vector>

#include <QAction>
#include <QToolBar>

enum class ToolbarButtonStyle { Default = 0, Check = 1 };

// One toolbar button; PrivKey is the privilege key by which the security
// module enables it.
class classToolbarButton {
public:
    void Init(QAction *action, const QString &key, const QString &privKey);
    const QString &Key() const { return key_; }
    const QString &PrivKey() const { return privKey_; }
    void setPrivKey(const QString &key) { privKey_ = key; }
    bool Enabled() const;
    void setEnabled(bool on);
    bool Visible() const;
    void setVisible(bool on);
    const QString &Image() const { return image_; }
    void setImage(const QString &imageKey);
    QString ToolTipText() const;
    void setToolTipText(const QString &text);
    ToolbarButtonStyle Style() const;
    void setStyle(ToolbarButtonStyle style);
    bool Value() const; // pressed, for check-style buttons
    void setValue(bool pressed);
    QAction *action() const { return action_; }

private:
    QPointer<QAction> action_;
    QString key_;
    QString privKey_;
    QString image_;
};

// The toolbar wrapper: buttons by key, each raising its key when clicked.
class classToolbar : public QObject {
    Q_OBJECT
public:
    explicit classToolbar(QObject *parent = nullptr);
    ~classToolbar() override;

    void Init(QToolBar *toolbar);
    void Reset() { ClearButtons(); }
    void ClearButtons();
    int Count() const { return int(buttons_.size()); }
    classToolbarButton &Item(int index); // 1-based
    classToolbarButton &Item(const QString &key);
    bool Visible() const;
    void setVisible(bool on);
    void AddSeparator();
    // Without an image the caption (or the key) is shown as the button's text.
    classToolbarButton &AddButton(const QString &key, const QString &privKey, const QString &imageKey,
                                  const QString &toolTip, ToolbarButtonStyle style = ToolbarButtonStyle::Default,
                                  const QString &caption = {});
    bool ButtonEnabled(const QString &key) const;
    void setButtonEnabled(const QString &key, bool on);
    bool ButtonValue(const QString &key) const;
    void setButtonValue(const QString &key, bool pressed);

signals:
    void buttonClicked(const QString &key);
    void visibilityChanged();
    void resized();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    classToolbarButton &button(const QString &key, const char *member) const;

    QPointer<QToolBar> toolbar_;
    std::vector<std::unique_ptr<classToolbarButton>> buttons_;
};
