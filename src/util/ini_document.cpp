#include "util/ini_document.h"

#include "util/text.h"

#include <QSet>

namespace zov {
namespace {

bool isBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

QString trimBlanks(QStringView text) {
    while (!text.isEmpty() && isBlank(text.front())) text = text.mid(1);
    while (!text.isEmpty() && isBlank(text.back())) text.chop(1);
    return text.toString();
}

bool isEnclosedInQuotes(const QString& value) {
    return value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') &&
           value.back() == value.front();
}

QString oneLine(QString text) {
    text.replace(CRLF, QStringLiteral(" "));
    text.replace(u'\r', u' ');
    return text.replace(u'\n', u' ');
}

bool sameName(const QString& a, const QString& b,
              Qt::CaseSensitivity letterCase = Qt::CaseInsensitive) {
    return a.compare(b, letterCase) == 0;
}

}  // namespace

IniDocument::IniDocument(const QString& text, Qt::CaseSensitivity sectionCase)
    : sectionCase_(sectionCase) {
    lineBreak_ = text.contains(u'\n') && !text.contains(CRLF) ? QStringLiteral("\n") : CRLF;
    QStringList raws = withLf(text).split(u'\n');
    if (raws.last().isEmpty()) raws.removeLast();
    lines_.reserve(size_t(raws.size()));
    for (const QString& raw : raws) lines_.push_back(parse(raw));
}

QString IniDocument::text() const {
    QString text;
    for (const Line& line : lines_) text += line.raw + lineBreak_;
    return text;
}

IniDocument::Line IniDocument::parse(const QString& raw) {
    const QString trimmed = trimBlanks(raw);
    Line line{raw, Kind::Other, {}, {}};
    if (trimmed.isEmpty() || trimmed.front() == u';') return line;
    if (trimmed.front() == u'[') {
        // A table's name may hold "]", so the last one closes.
        const qsizetype close = trimmed.lastIndexOf(u']');
        if (close < 0) return line;
        line.kind = Kind::Section;
        line.name = trimBlanks(QStringView(trimmed).mid(1, close - 1));
        return line;
    }
    const qsizetype equals = trimmed.indexOf(u'=');
    if (equals <= 0) return line;
    line.kind = Kind::Entry;
    line.name = trimBlanks(QStringView(trimmed).left(equals));
    line.value = trimBlanks(QStringView(trimmed).mid(equals + 1));
    if (isEnclosedInQuotes(line.value)) line.value = line.value.mid(1, line.value.size() - 2);
    return line;
}

IniDocument::Line IniDocument::entry(const QString& key, const QString& value) {
    const QString flat = oneLine(value);
    const bool needsQuotes = isEnclosedInQuotes(flat) ||
                             (!flat.isEmpty() && (isBlank(flat.front()) || isBlank(flat.back())));
    const QString written = needsQuotes ? u'"' + flat + u'"' : flat;
    return {oneLine(key) + u'=' + written, Kind::Entry, trimBlanks(oneLine(key)), flat};
}

qsizetype IniDocument::findSection(const QString& section, qsizetype& end) const {
    const QString name = trimBlanks(oneLine(section));
    const auto count = qsizetype(lines_.size());
    qsizetype header = 0;
    while (header < count && !(lines_[size_t(header)].kind == Kind::Section &&
                               sameName(lines_[size_t(header)].name, name, sectionCase_))) {
        ++header;
    }
    if (header == count) return -1;
    end = header + 1;
    while (end < count && lines_[size_t(end)].kind != Kind::Section) ++end;
    return header;
}

qsizetype IniDocument::findKey(qsizetype begin, qsizetype end, const QString& key) const {
    const QString name = trimBlanks(oneLine(key));
    for (qsizetype at = begin; at < end; ++at) {
        const Line& line = lines_[size_t(at)];
        if (line.kind == Kind::Entry && sameName(line.name, name)) return at;
    }
    return -1;
}

QStringList IniDocument::sections() const {
    QStringList names;
    QSet<QString> seen;
    for (const Line& line : lines_) {
        if (line.kind != Kind::Section || seen.contains(sectionKey(line.name))) continue;
        seen.insert(sectionKey(line.name));
        names += line.name;
    }
    return names;
}

bool IniDocument::hasSection(const QString& section) const {
    qsizetype end = 0;
    return findSection(section, end) >= 0;
}

std::vector<std::pair<QString, QString>> IniDocument::valuesOf(const QString& key) const {
    std::vector<std::pair<QString, QString>> values;
    QSet<QString> seen;
    bool wanted = false;  // within a section's first appearance, its key not yet met
    for (const Line& line : lines_) {
        if (line.kind == Kind::Section) {
            wanted = !seen.contains(sectionKey(line.name));
            if (!wanted) continue;
            seen.insert(sectionKey(line.name));
            values.emplace_back(line.name, QString());
        } else if (wanted && line.kind == Kind::Entry && sameName(line.name, key)) {
            values.back().second = line.value;
            wanted = false;
        }
    }
    return values;
}

QStringList IniDocument::keys(const QString& section) const {
    QStringList names;
    QSet<QString> seen;
    qsizetype end = 0;
    const qsizetype header = findSection(section, end);
    for (qsizetype at = header + 1; header >= 0 && at < end; ++at) {
        const Line& line = lines_[size_t(at)];
        if (line.kind != Kind::Entry || seen.contains(line.name.toCaseFolded())) continue;
        seen.insert(line.name.toCaseFolded());
        names += line.name;
    }
    return names;
}

std::optional<QString> IniDocument::value(const QString& section, const QString& key) const {
    qsizetype end = 0;
    const qsizetype header = findSection(section, end);
    if (header < 0) return std::nullopt;
    const qsizetype at = findKey(header + 1, end, key);
    if (at < 0) return std::nullopt;
    return lines_[size_t(at)].value;
}

qsizetype IniDocument::appendSection(const QString& section) {
    const QString name = oneLine(section);
    lines_.push_back({u'[' + name + u']', Kind::Section, trimBlanks(name), {}});
    return qsizetype(lines_.size()) - 1;
}

void IniDocument::setValue(const QString& section, const QString& key, const QString& value) {
    qsizetype end = 0;
    qsizetype header = findSection(section, end);
    if (header < 0) {
        header = appendSection(section);
        end = header + 1;
    }
    const qsizetype at = findKey(header + 1, end, key);
    if (at >= 0) {
        lines_[size_t(at)] = entry(key, value);
        return;
    }
    // Blank lines and comments before the next section belong to that one.
    qsizetype place = end;
    while (place > header + 1 && lines_[size_t(place - 1)].kind != Kind::Entry) --place;
    lines_.insert(lines_.begin() + place, entry(key, value));
}

void IniDocument::removeKey(const QString& section, const QString& key) {
    qsizetype end = 0;
    const qsizetype header = findSection(section, end);
    if (header < 0) return;
    const qsizetype at = findKey(header + 1, end, key);
    if (at >= 0) lines_.erase(lines_.begin() + at);
}

void IniDocument::removeSection(const QString& section) {
    qsizetype end = 0;
    const qsizetype header = findSection(section, end);
    if (header < 0) return;
    qsizetype last = header;
    for (qsizetype at = header + 1; at < end; ++at) {
        if (lines_[size_t(at)].kind == Kind::Entry) last = at;
    }
    // Comments behind the last entry belong to what follows; the blank lines between go along.
    qsizetype behind = last + 1;
    while (behind < end && trimBlanks(lines_[size_t(behind)].raw).isEmpty()) ++behind;
    lines_.erase(lines_.begin() + header, lines_.begin() + behind);
}

void IniDocument::setSection(const QString& section,
                             const std::vector<std::pair<QString, QString>>& entries) {
    qsizetype end = 0;
    qsizetype header = findSection(section, end);
    if (header < 0) {
        header = appendSection(section);
        end = header + 1;
    }
    std::vector<Line> lines;
    for (const auto& [key, value] : entries) lines.push_back(entry(key, value));
    for (qsizetype at = header + 1; at < end; ++at) {
        if (lines_[size_t(at)].kind == Kind::Other) lines.push_back(lines_[size_t(at)]);
    }
    lines_.erase(lines_.begin() + header + 1, lines_.begin() + end);
    lines_.insert(lines_.begin() + header + 1, lines.begin(), lines.end());
}

}  // namespace zov
