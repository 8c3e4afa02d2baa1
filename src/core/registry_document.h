// The settings store's text: the registry editor's export format, types kept.
// Lines that can't be read stay where they are and count for nothing.
#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace zov {

/// One value of a key: a text (REG_SZ), a number (REG_DWORD), or a type that nothing here reads.
struct RegistryValue {
    enum class Type { String, DWord, Foreign };
    Type type = Type::Foreign;
    QString text;
    quint32 number = 0;
};

/// Keys and value names are found ignoring case. Where a value stands twice the last one counts, as
/// it would after an import.
class RegistryDocument {
 public:
    /// An empty text is a store without keys.
    explicit RegistryDocument(const QString& text);
    /// With the format's header line in front.
    QString text() const;

    /// `key` as "HKEY_CURRENT_USER\Software\...".
    std::optional<RegistryValue> value(const QString& key, const QString& name) const;
    bool hasKey(const QString& key) const;
    bool hasSubkeys(const QString& key) const;

    /// Makes the key when it is missing. Texts end at their first NUL.
    void setString(const QString& key, const QString& name, const QString& text);
    void setDWord(const QString& key, const QString& name, quint32 number);
    void createKey(const QString& key);
    /// Takes out the key with its values; lines in it that can't be read are left behind.
    void deleteKey(const QString& key);

    /// Lines that can't be read, comments and blank lines aside.
    int brokenLineCount() const;

 private:
    enum class Kind { Key, BrokenKey, Value, Blank, Comment, Broken };
    struct Line {
        QString raw;
        Kind kind = Kind::Broken;
        QString name;  // of the key or the value
        RegistryValue value;
    };
    static Line parse(const QString& raw);
    void setLine(const QString& key, const QString& name, const RegistryValue& value);

    std::vector<Line> lines_;
    QString lineBreak_;
};

}  // namespace zov
