#pragma once

#include <QString>

#include <cstdint>

// The error record every data class owns: a failed operation fills it and
// returns false, and the caller decides what the user sees.
class clsErrObject {
public:
    std::int32_t ErrorNumber() const { return number_; }
    // A number set here is taken for a record-manager status (see setErrorText).
    void setErrorNumber(std::int32_t number)
    {
        number_ = number;
        recordManagerNumber_ = true;
    }

    const QString &ErrorText() const { return text_; }
    // Stores the text, then replaces it with the record manager's wording when
    // the number already held is one of its status codes: set the number first.
    // A database's error (setDatabaseError) keeps its own words.
    void setErrorText(const QString &text);

    const QString &ErrorSub() const { return sub_; }
    void setErrorSub(const QString &sub) { sub_ = sub; }

    const QString &ErrorCls() const { return cls_; }
    void setErrorCls(const QString &cls) { cls_ = cls; }

    // The record manager's text for a status, or the current ErrorText when the
    // number is not one it translates.
    void getBtrieveError(std::int32_t number, QString &text) const;

    // A plain OK message box: ErrorSub & " " & ErrorNumber & ": " & ErrorText.
    void DisplayError() const;
    // Appends the error as one quoted line to Err.txt; never fails loudly.
    void LogError() const;
    // Empties text, number and procedure; the class name stays.
    void Clear();

    // Fills number, text and procedure in the order the translation needs.
    void set(std::int32_t number, const QString &sub, const QString &text);
    // Fills the error of a database statement: the driver's number and the
    // database's own text, which no record-manager wording replaces (a
    // database's codes mean something else: SQLite's 5 is a busy file, not a key).
    void setDatabaseError(std::int32_t number, const QString &sub, const QString &text);

    // Where LogError writes: "Err.txt" in the program's folder unless a test points elsewhere.
    static QString logFilePath();
    static void setLogFilePath(const QString &path);

private:
    std::int32_t number_ = 0;
    QString text_;
    QString sub_;
    QString cls_;
    bool recordManagerNumber_ = true;
};

// The application's title, shown on plain message boxes and printed logs.
inline constexpr auto applicationTitle = "Kora-Budget";
