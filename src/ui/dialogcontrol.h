#pragma once

#include <QLabel>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <memory>

class classDropDown;
class classGrid;
class classStatusbar;
class classToolbar;

enum class DialogControlKind {
    Label,
    TextBox,
    ComboBox,
    ListBox,
    CheckBox,
    OptionButton,
    Frame,
    CommandButton,
    Grid,
    Toolbar,
    StatusBar
};

// One control of a run-time dialog, as the worker sees it: positions in
// twips, a caption (for text boxes and lists the label above the field),
// and the wrapper of grids, lists, toolbars and status bars.
class DialogControl {
public:
    DialogControl(DialogControlKind kind, const QString &name, const QString &caption, QWidget &container);
    ~DialogControl();
    DialogControl(const DialogControl &) = delete;
    DialogControl &operator=(const DialogControl &) = delete;

    const QString &Name() const { return name_; }
    DialogControlKind Kind() const { return kind_; }
    QWidget *widget() const { return outer_; }
    // The control itself: the line edit, combo box, table view, button...
    QWidget *field() const { return field_; }

    QString Caption() const;
    void setCaption(const QString &text);
    QString Text() const;
    void setText(const QString &text);
    void setMaxLength(int characters);
    // A mask in the classic notation: "#" a digit, "?" a letter, "A" a letter
    // or digit, "&" any character; everything else stands as it is.
    void setMask(const QString &mask);
    int Left() const;
    int Top() const;
    int Width() const;
    int Height() const;
    void setLeft(int twips);
    void setTop(int twips);
    void setWidth(int twips);
    void setHeight(int twips);
    void Move(int left, int top, int width = -1, int height = -1);
    void AddItem(const QString &text, const QString &key = {}, qint64 itemData = 0);
    int ListIndex() const;
    void setListIndex(int index);
    bool Value() const; // check box ticked, option chosen
    void setValue(bool on);
    bool Enabled() const;
    void setEnabled(bool on);
    bool Visible() const;
    void setVisible(bool on);
    void setLocked(bool on); // read-only text

    classGrid &Grid() const;
    classDropDown &DropDown() const;
    classToolbar &Toolbar() const;
    classStatusbar &Statusbar() const;

private:
    void requireKind(bool ok, const char *member) const;

    DialogControlKind kind_;
    QString name_;
    QPointer<QWidget> outer_;
    QPointer<QWidget> field_;
    QPointer<QLabel> caption_;
    std::unique_ptr<classGrid> grid_;
    std::unique_ptr<classDropDown> dropDown_;
    std::unique_ptr<classToolbar> toolbar_;
    std::unique_ptr<classStatusbar> statusbar_;
};

// "#####-####" in the classic notation as an input mask of the line edit.
QString inputMaskFromClassic(const QString &mask);
