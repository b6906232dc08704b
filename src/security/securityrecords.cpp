#include "securityrecords.h"

#include "patternmatch.h"

#include <QHash>

#include <array>
#include <cstdint>
#include <limits>

namespace {
const FundFileDef usersFile{"Users", "\\Users.btr"};
const FundFileDef userPrivFile{"UserPrivileges", "\\UserPriv.btr"};
const FundFileDef appPrivFile{"AppPrivileges", "\\AppPriv.btr"};
const FundFileDef appPrivDefFile{"AppPrivDefs", "\\AppPrivDef.btr"};
const FundFileDef appModulFile{"AppModules", "\\AppModul.btr"};
const FundFileDef acctCodeFile{"AcctCodeAccess", "\\AcctCode.btr"};

const std::array<FieldBinding<UserFields>, 10> userBindings{{
    {"ID", &UserFields::ID},
    {"Login User ID", &UserFields::LoginUserID},
    {"First Name", &UserFields::FirstName},
    {"Middle Initial", &UserFields::MiddleInitial},
    {"Last Name", &UserFields::LastName},
    {"Print Preview", &UserFields::PrintPreview},
    {"Restrict Acct Codes", &UserFields::RestrictAcctCodes},
    {"Active", &UserFields::Active},
    {"DateAdd", &UserFields::DateAdd},
    {"DateChg", &UserFields::DateChg},
}};
const std::array<FieldBinding<UserPrivFields>, 4> userPrivBindings{{
    {"User ID", &UserPrivFields::UserID},
    {"Application ID", &UserPrivFields::ApplicationID},
    {"Access", &UserPrivFields::Access},
    {"All Privileges", &UserPrivFields::AllPrivileges},
}};
const std::array<FieldBinding<AppPrivFields>, 4> appPrivBindings{{
    {"User ID", &AppPrivFields::UserID},
    {"Application ID", &AppPrivFields::ApplicationID},
    {"Privilege Key", &AppPrivFields::PrivilegeKey},
    {"Granted", &AppPrivFields::Granted},
}};
const std::array<FieldBinding<AppPrivDefFields>, 4> appPrivDefBindings{{
    {"Application ID", &AppPrivDefFields::ApplicationID},
    {"Privilege Key", &AppPrivDefFields::PrivilegeKey},
    {"Module ID", &AppPrivDefFields::ModuleID},
    {"Description", &AppPrivDefFields::Description},
}};
const std::array<FieldBinding<AppModulFields>, 3> appModulBindings{{
    {"Application ID", &AppModulFields::ApplicationID},
    {"Module ID", &AppModulFields::ModuleID},
    {"Name", &AppModulFields::Name},
}};
const std::array<FieldBinding<AcctCodeFields>, 3> acctCodeBindings{{
    {"User ID", &AcctCodeFields::UserID},
    {"Sequence", &AcctCodeFields::Sequence},
    {"Entry", &AcctCodeFields::Entry},
}};

bool sameId(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}
bool isYes(const QString &flag)
{
    return flag.trimmed().compare(QLatin1String("Y"), Qt::CaseInsensitive) == 0;
}
constexpr int loginKey = 1;
} // namespace

classObjectUsers::classObjectUsers() : RecordObject(usersFile, userBindings, 0)
{
}

int classObjectUsers::RetrieveByLoginID()
{
    const int status = seekByKey(loginKey);
    if (status == 0)
        loadCurrent(*this);
    return finish(status);
}

QString classObjectUsers::DisplayName() const
{
    QString name = FirstName + u' ';
    if (!MiddleInitial.isEmpty())
        name += MiddleInitial + QStringLiteral(". ");
    return name + LastName;
}

bool classObjectUsers::IsActive() const
{
    return isYes(Active);
}

classObjectUserPriv::classObjectUserPriv() : RecordObject(userPrivFile, userPrivBindings, 0)
{
}

classObjectAppPriv::classObjectAppPriv() : RecordObject(appPrivFile, appPrivBindings, 0)
{
}

int classObjectAppPriv::GetListForUser(const QString &userId, const QString &applicationId,
                                       std::vector<AppPrivFields> &list)
{
    Clear();
    UserID = userId;
    ApplicationID = applicationId;
    return listFrom(0, list, [&](const AppPrivFields &row) {
        return sameId(row.UserID, userId) && sameId(row.ApplicationID, applicationId);
    });
}

classObjectAppPrivDef::classObjectAppPrivDef() : RecordObject(appPrivDefFile, appPrivDefBindings, 0)
{
}

int classObjectAppPrivDef::GetListForApplication(const QString &applicationId, std::vector<AppPrivDefFields> &list)
{
    Clear();
    ApplicationID = applicationId;
    return listFrom(0, list, [&](const AppPrivDefFields &row) { return sameId(row.ApplicationID, applicationId); });
}

classObjectAppModul::classObjectAppModul() : RecordObject(appModulFile, appModulBindings, 0)
{
}

int classObjectAppModul::GetListForApplication(const QString &applicationId, std::vector<AppModulFields> &list)
{
    Clear();
    ApplicationID = applicationId;
    return listFrom(0, list, [&](const AppModulFields &row) { return sameId(row.ApplicationID, applicationId); });
}

classObjectAcctCode::classObjectAcctCode() : RecordObject(acctCodeFile, acctCodeBindings, 0)
{
}

int classObjectAcctCode::GetListForUser(const QString &userId, std::vector<AcctCodeFields> &list)
{
    Clear();
    UserID = userId;
    Sequence = std::numeric_limits<std::int16_t>::min();
    return listFrom(0, list, [&](const AcctCodeFields &row) { return sameId(row.UserID, userId); });
}

QString privilegeKeyIdentity(const QString &key)
{
    return key.trimmed().toLower();
}

bool accountCodeAllowed(const QString &accountCode, const std::vector<AcctCodeFields> &entries)
{
    for (const AcctCodeFields &entry : entries) {
        if (matchesPattern(accountCode, entry.Entry))
            return true;
    }
    return false;
}

int userPrivilegeKeys(const QString &ddfPath, const QString &fundFolder, const QString &userId,
                      const QString &applicationId, QSet<QString> &keys)
{
    keys.clear();
    classObjectUserPriv userPriv;
    int status = userPriv.Init(ddfPath, fundFolder);
    if (status != 0)
        return status;
    userPriv.UserID = userId;
    userPriv.ApplicationID = applicationId;
    status = userPriv.Retrieve();
    if (status == 4 || (status == 0 && !isYes(userPriv.Access)))
        return 0;
    if (status != 0)
        return status;

    classObjectAppPrivDef definitions;
    std::vector<AppPrivDefFields> defined;
    status = definitions.Init(ddfPath, fundFolder);
    if (status == 0)
        status = definitions.GetListForApplication(applicationId, defined);
    if (status != 0)
        return status;
    // Keys compare without regard to case (and to the blanks a fixed-width
    // field may keep); a grant is reported in its definition's spelling.
    QHash<QString, QString> definedKeys;
    for (const AppPrivDefFields &definition : defined)
        definedKeys.insert(privilegeKeyIdentity(definition.PrivilegeKey), definition.PrivilegeKey.trimmed());
    if (isYes(userPriv.AllPrivileges)) {
        for (const QString &key : std::as_const(definedKeys))
            keys.insert(key);
        return 0;
    }

    classObjectAppPriv granted;
    std::vector<AppPrivFields> grants;
    status = granted.Init(ddfPath, fundFolder);
    if (status == 0)
        status = granted.GetListForUser(userId, applicationId, grants);
    if (status != 0)
        return status;
    for (const AppPrivFields &grant : grants) {
        const auto definition = definedKeys.constFind(privilegeKeyIdentity(grant.PrivilegeKey));
        if (isYes(grant.Granted) && definition != definedKeys.constEnd())
            keys.insert(*definition);
    }
    return 0;
}
