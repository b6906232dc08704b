#pragma once

#include <QDialog>

// The About box: product, version, legal notice, and the support contact.
class formAbout : public QDialog {
    Q_OBJECT
public:
    explicit formAbout(QWidget *parent = nullptr);

    static QString VersionText();
    static QString LegalNotice();
    // The text the Support button shows.
    static QString SupportText();
};
