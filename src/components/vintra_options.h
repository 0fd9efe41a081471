#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <vector>

/// One per-user setting: its name, declared type, default and current value.
class TVintraOption {
public:
    enum Type { Integer = 0, Boolean = 1, String = 2 };

    TVintraOption() = default;
    TVintraOption(const QString& optionName, int optionType, const QVariant& optionDefault);

    bool GetAsBoolean() const;
    int GetAsInteger() const;
    QString GetAsString() const;
    void SetAsBoolean(bool newValue);
    void SetAsInteger(int newValue);
    void SetAsString(const QString& newValue);
    /// Puts this one option back to its declared default.
    void RestoreDefaults();

    QString name;
    int type = Integer;
    QVariant defaultValue;
    QVariant value;
};

/// The declared list of options, kept in a QSettings INI file under the group [Quillmeal].
/// Every name a caller uses is declared; asking for another one throws std::out_of_range.
class TVintraOptions {
public:
    /// Group of the INI file that holds the options, one key per option.
    static constexpr const char* IniGroup = "Quillmeal";

    /// Adds an option with its default as current value; a name declared twice throws
    /// std::invalid_argument.
    void Declare(const QString& name, int type, const QVariant& defaultValue);
    TVintraOption& GetOption(const QString& name);
    const TVintraOption& GetOption(const QString& name) const;
    bool has(const QString& name) const;
    const std::vector<TVintraOption>& options() const { return m_options; }

    void setFileName(const QString& iniPath) { m_fileName = iniPath; }
    QString fileName() const { return m_fileName; }

    /// Reads every declared option by its type; an absent key, or a value that does not read as
    /// that type, leaves the default. Returns false when the file exists and can't be read.
    bool Load();
    /// Writes every declared option; returns false when the file can't be written.
    bool Store();

    bool GetAsBoolean(const QString& name) const { return GetOption(name).GetAsBoolean(); }
    int GetAsInteger(const QString& name) const { return GetOption(name).GetAsInteger(); }
    QString GetAsString(const QString& name) const { return GetOption(name).GetAsString(); }
    void SetAsBoolean(const QString& name, bool value) { GetOption(name).SetAsBoolean(value); }
    void SetAsInteger(const QString& name, int value) { GetOption(name).SetAsInteger(value); }
    void SetAsString(const QString& name, const QString& value) { GetOption(name).SetAsString(value); }
    void RestoreDefaults(const QString& name) { GetOption(name).RestoreDefaults(); }

private:
    std::vector<TVintraOption> m_options;
    QHash<QString, size_t> m_index;
    QString m_fileName;
};
