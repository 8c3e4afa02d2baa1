// The text of an INI file as lines that are kept as they are, with the reading
// and writing rules of the platform's private-profile files on top. Comments,
// order, unknown and broken lines survive every change.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

namespace zov {

/// Sections (unless asked otherwise) and keys are found ignoring case; of a repeated section or key
/// the first counts. A value is what stands behind the first "=", without blanks and one pair of
/// quotes around it. Lines that are neither a section, a comment (";") nor "key=value" are kept and
/// read as nothing.
class IniDocument {
 public:
    /// `sectionCase`: whether sections whose names differ in letter case only are one or two.
    explicit IniDocument(const QString& text,
                         Qt::CaseSensitivity sectionCase = Qt::CaseInsensitive);
    QString text() const;

    QStringList sections() const;                    ///< in the file's order, no repetition
    QStringList keys(const QString& section) const;  ///< in the file's order, no repetition
    std::optional<QString> value(const QString& section, const QString& key) const;
    bool hasSection(const QString& section) const;
    /// Each section with its value of this key (empty where it has none), in one walk.
    std::vector<std::pair<QString, QString>> valuesOf(const QString& key) const;

    /// Changes the key's line in place, or adds one behind the section's last entry, or adds the
    /// section at the end. Line breaks in names and values become blanks. A value that blanks or
    /// quotes enclose is written in double quotes, which reading takes off again.
    void setValue(const QString& section, const QString& key, const QString& value);
    void removeKey(const QString& section, const QString& key);
    /// Takes out the section from its header to its last entry.
    void removeSection(const QString& section);
    /// Replaces the section's entries by these.
    void setSection(const QString& section,
                    const std::vector<std::pair<QString, QString>>& entries);

 private:
    enum class Kind { Section, Entry, Other };
    struct Line {
        QString raw;
        Kind kind = Kind::Other;
        QString name;  // of the section or the key
        QString value;
    };
    static Line parse(const QString& raw);
    static Line entry(const QString& key, const QString& value);
    /// Index of the section's header, -1 when there is none; `end` is behind its last line.
    qsizetype findSection(const QString& section, qsizetype& end) const;
    qsizetype findKey(qsizetype begin, qsizetype end, const QString& key) const;
    qsizetype appendSection(const QString& section);
    QString sectionKey(const QString& name) const {
        return sectionCase_ == Qt::CaseSensitive ? name : name.toCaseFolded();
    }

    std::vector<Line> lines_;
    Qt::CaseSensitivity sectionCase_;
    QString lineBreak_;
};

}  // namespace zov
