// Field values of Kora-Fund records as the data-access control hands them out
// (text as QString, integers as qlonglong, amounts as Currency), coded into
// record bytes by the engine's field codecs in the installation's code page.
#pragma once

#include "bytes.h"
#include "codepage.h"
#include "fieldcodec.h"

#include <QString>
#include <QVariant>

// The legacy code page the installation's text is in: Windows-1252 unless set.
const recman::CodePage &fundCodePage();
// Chooses it by name ("1252", "cp437", "latin1", ...); false, and unchanged,
// for a name no code page answers to.
bool setFundCodePage(const QString &name);

// Reads a field of a record; false with the reason when the bytes are not a
// value of the field's type. Types without a Qt counterpart give their text.
bool readFundField(const recman::FieldDef &field, recman::Bytes record, const recman::CodePage &codePage,
                   QVariant &value, QString &message);

// Stores a value (the field's own type, or text) into the record. Blank text
// stores zero in a number field; text shorter than a text field is padded
// with `pad`. False with the reason, and the record unchanged, when the value
// does not fit: too long, out of range, characters the code page lacks.
bool writeFundField(const recman::FieldDef &field, const QVariant &value, recman::MutableBytes record,
                    const recman::CodePage &codePage, char pad, QString &message);
