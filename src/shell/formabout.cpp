#include "formabout.h"

#include "dialogframe.h"
#include "errobject.h"
#include "messageservice.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

formAbout::formAbout(QWidget *parent) : QDialog(parent)
{
    setWindowTitle(QStringLiteral("About ") + QLatin1String(applicationTitle));
    setDialogFrame(*this);
    auto *title = new QLabel(QLatin1String(applicationTitle), this);
    title->setObjectName(QStringLiteral("lblTitle"));
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    title->setFont(big);
    auto *version = new QLabel(VersionText(), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    auto *legal = new QLabel(LegalNotice(), this);
    legal->setObjectName(QStringLiteral("lblDisclaimer"));
    legal->setWordWrap(true);
    auto *ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    auto *support = new QPushButton(QStringLiteral("&Support..."), this);
    support->setObjectName(QStringLiteral("cmdSupport"));
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(support);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(version);
    layout->addSpacing(8);
    layout->addWidget(legal);
    layout->addStretch();
    layout->addLayout(buttons);
    setMinimumWidth(440);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(support, &QPushButton::clicked, this, [] {
        messages().messageBox(
            {QStringLiteral("Support"), SupportText(), MsgButtons::OK, MsgIcon::Information, MsgAnswer::OK});
    });
}

QString formAbout::VersionText()
{
    return QStringLiteral("Version ") + QCoreApplication::applicationVersion();
}

QString formAbout::LegalNotice()
{
    return QStringLiteral(
        "This program is free software: you can redistribute it and/or modify it under the terms of the GNU "
        "General Public License as published by the Free Software Foundation, either version 3 of the License, "
        "or (at your option) any later version (GPL-3.0-or-later). It is distributed in the hope that it will be "
        "useful, but WITHOUT ANY WARRANTY; without even the implied warranty of MERCHANTABILITY or FITNESS FOR A "
        "PARTICULAR PURPOSE.");
}

QString formAbout::SupportText()
{
    return QStringLiteral("Kora-Budget Support\n"
                          "100 Main Street\n"
                          "Springfield, NY 12345\n"
                          "Telephone: 555-0100\n"
                          "Fax: 555-0101\n"
                          "Web: https://kora-budget.example.org\n\n") +
           QLatin1String(applicationTitle) + QStringLiteral(" Version ") + QCoreApplication::applicationVersion();
}
