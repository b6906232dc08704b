#pragma once

#include "recordobject.h"

#include <QSet>

// Kora-Fund's users and their privileges. Every file lives in the fund
// folder; the layouts are in docs/fund-installation.md.

struct UserFields {
    QString ID;
    QString LoginUserID;
    QString FirstName;
    QString MiddleInitial;
    QString LastName;
    QString PrintPreview;
    QString RestrictAcctCodes; // "Y": only the account codes of the access entries
    QString Active;            // "Y" while the user may log in
    QString DateAdd;
    QString DateChg;
};

class classObjectUsers : public RecordObject<UserFields> {
public:
    classObjectUsers();
    // The user whose log-in ID (case-insensitive) is LoginUserID.
    int RetrieveByLoginID();
    // "First M. Last", or "First Last" without a middle initial.
    QString DisplayName() const;
    // Only a user marked "Y" may work: a blank flag is not taken as active.
    bool IsActive() const;
};

struct UserPrivFields {
    QString UserID;
    QString ApplicationID;
    QString Access;        // "Y": may use the application
    QString AllPrivileges; // "Y": holds every defined privilege of it
};

class classObjectUserPriv : public RecordObject<UserPrivFields> {
public:
    classObjectUserPriv();
};

struct AppPrivFields {
    QString UserID;
    QString ApplicationID;
    QString PrivilegeKey;
    QString Granted; // "Y" grants; "N" keeps a key that was taken away
};

class classObjectAppPriv : public RecordObject<AppPrivFields> {
public:
    classObjectAppPriv();
    int GetListForUser(const QString &userId, const QString &applicationId, std::vector<AppPrivFields> &list);
};

struct AppPrivDefFields {
    QString ApplicationID;
    QString PrivilegeKey;
    QString ModuleID;
    QString Description;
};

class classObjectAppPrivDef : public RecordObject<AppPrivDefFields> {
public:
    classObjectAppPrivDef();
    int GetListForApplication(const QString &applicationId, std::vector<AppPrivDefFields> &list);
};

struct AppModulFields {
    QString ApplicationID;
    QString ModuleID;
    QString Name;
};

class classObjectAppModul : public RecordObject<AppModulFields> {
public:
    classObjectAppModul();
    int GetListForApplication(const QString &applicationId, std::vector<AppModulFields> &list);
};

struct AcctCodeFields {
    QString UserID;
    int Sequence = 0;
    QString Entry; // account-code pattern
};

class classObjectAcctCode : public RecordObject<AcctCodeFields> {
public:
    classObjectAcctCode();
    // The user's access entries in sequence order.
    int GetListForUser(const QString &userId, std::vector<AcctCodeFields> &list);
};

// True when the code matches the Entry of at least one access entry.
bool accountCodeAllowed(const QString &accountCode, const std::vector<AcctCodeFields> &entries);

// What two spellings of one privilege key have in common: keys match without
// regard to case or surrounding blanks.
QString privilegeKeyIdentity(const QString &key);

// The privilege keys a user (record ID) holds in an application, read from
// the files under fundFolder with the dictionary at ddfPath: every defined key
// with "All Privileges", else the granted keys that are defined, each spelled
// as its definition. Status 0 and the keys; a user without access to the
// application holds none (status 0).
int userPrivilegeKeys(const QString &ddfPath, const QString &fundFolder, const QString &userId,
                      const QString &applicationId, QSet<QString> &keys);

inline constexpr auto budgetApplicationId = "BUDGET";
