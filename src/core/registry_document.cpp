#include "core/registry_document.h"

#include "util/text.h"

namespace zov {
namespace {

const QString HeaderLine = QStringLiteral("Windows Registry Editor Version 5.00");

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString quoted(QString text) {
    text.replace(u'\\', QStringLiteral("\\\\"));
    text.replace(u'"', QStringLiteral("\\\""));
    return u'"' + text + u'"';
}

bool hasControlCharacters(const QString& text) {
    for (const QChar c : text) {
        if (c < u' ') return true;
    }
    return false;
}

/// A text with line breaks or other control characters, as the bytes of its UTF-16 form.
QString asHexString(const QString& text) {
    QString hex = QStringLiteral("hex(1):");
    for (const QChar c : text + QChar(u'\0')) {
        const ushort code = c.unicode();
        hex += QStringLiteral("%1,%2,")
                   .arg(code & 0xFF, 2, 16, QLatin1Char('0'))
                   .arg(code >> 8, 2, 16, QLatin1Char('0'));
    }
    hex.chop(1);
    return hex;
}

QString written(const RegistryValue& value) {
    if (value.type == RegistryValue::Type::DWord) {
        return QStringLiteral("dword:%1").arg(value.number, 8, 16, QLatin1Char('0'));
    }
    return hasControlCharacters(value.text) ? asHexString(value.text) : quoted(value.text);
}

/// Reads a quoted text at `at` and moves behind its closing quote; nothing when it isn't one.
std::optional<QString> readQuoted(const QString& raw, qsizetype& at) {
    if (at >= raw.size() || raw[at] != u'"') return std::nullopt;
    QString text;
    for (qsizetype i = at + 1; i < raw.size(); ++i) {
        if (raw[i] == u'"') {
            at = i + 1;
            return text;
        }
        if (raw[i] == u'\\') {
            if (++i == raw.size() || (raw[i] != u'\\' && raw[i] != u'"')) return std::nullopt;
        }
        text += raw[i];
    }
    return std::nullopt;
}

/// The bytes of "01,02,\<line break>03"; nothing when it isn't such a list.
std::optional<QByteArray> readHexBytes(const QString& list) {
    QByteArray bytes;
    QString flat = list;
    flat.remove(QStringLiteral("\\\n")).remove(u' ');
    if (flat.isEmpty()) return bytes;
    for (const QString& part : flat.split(u',')) {
        bool ok = false;
        const uint byte = part.toUInt(&ok, 16);
        if (!ok || byte > 0xFF) return std::nullopt;
        bytes.append(char(byte));
    }
    return bytes;
}

std::optional<RegistryValue> readValue(const QString& text) {
    using Type = RegistryValue::Type;
    if (text.startsWith(u'"')) {
        qsizetype at = 0;
        const std::optional<QString> string = readQuoted(text, at);
        if (!string || at != text.size()) return std::nullopt;
        return RegistryValue{Type::String, *string, 0};
    }
    if (text.startsWith(QStringLiteral("dword:"), Qt::CaseInsensitive)) {
        bool ok = false;
        const QString digits = text.mid(6);
        const quint32 number = digits.toUInt(&ok, 16);
        if (!ok || digits.size() > 8) return std::nullopt;
        return RegistryValue{Type::DWord, {}, number};
    }
    if (text.startsWith(QStringLiteral("hex"), Qt::CaseInsensitive)) {
        const qsizetype colon = text.indexOf(u':');
        if (colon < 0) return std::nullopt;
        const std::optional<QByteArray> bytes = readHexBytes(text.mid(colon + 1));
        if (!bytes) return std::nullopt;
        if (!text.startsWith(QStringLiteral("hex(1):"), Qt::CaseInsensitive)) {
            return RegistryValue{Type::Foreign, {}, 0};
        }
        QString string;
        for (qsizetype at = 0; at + 1 < bytes->size(); at += 2) {
            string += QChar(ushort(uchar((*bytes)[at]) | uchar((*bytes)[at + 1]) << 8));
        }
        const qsizetype nul = string.indexOf(QChar(u'\0'));
        return RegistryValue{Type::String, nul < 0 ? string : string.left(nul), 0};
    }
    return std::nullopt;
}

}  // namespace

RegistryDocument::RegistryDocument(const QString& text) {
    lineBreak_ = text.contains(u'\n') && !text.contains(CRLF) ? QStringLiteral("\n") : CRLF;
    QStringList raws = withLf(text).split(u'\n');
    if (raws.last().isEmpty()) raws.removeLast();
    for (qsizetype i = 0; i < raws.size(); ++i) {
        QString raw = raws[i];
        // A list of bytes goes on over lines that end in a backslash.
        while (raw.endsWith(u'\\') && raw.contains(QStringLiteral("=hex")) && i + 1 < raws.size()) {
            raw += u'\n' + raws[++i];
        }
        lines_.push_back(parse(raw));
    }
}

QString RegistryDocument::text() const {
    QString text;
    const bool hasHeader = !lines_.empty() && (lines_.front().raw.trimmed() == HeaderLine ||
                                               lines_.front().raw.trimmed() == u"REGEDIT4");
    if (!hasHeader) text = HeaderLine + lineBreak_ + lineBreak_;
    for (const Line& line : lines_) {
        QString raw = line.raw;
        text += raw.replace(QStringLiteral("\n"), lineBreak_) + lineBreak_;
    }
    return text;
}

RegistryDocument::Line RegistryDocument::parse(const QString& raw) {
    const QString trimmed = raw.trimmed();
    Line line{raw, Kind::Broken, {}, {}};
    if (trimmed.isEmpty()) {
        line.kind = Kind::Blank;
    } else if (trimmed.startsWith(u';') || trimmed == HeaderLine || trimmed == u"REGEDIT4") {
        line.kind = Kind::Comment;
    } else if (trimmed.startsWith(u'[')) {
        const bool whole = trimmed.endsWith(u']') && trimmed.startsWith(QStringLiteral("[HKEY_"));
        line.kind = whole ? Kind::Key : Kind::BrokenKey;
        if (whole) line.name = trimmed.mid(1, trimmed.size() - 2);
    } else {
        qsizetype at = 0;
        std::optional<QString> name;
        if (trimmed.startsWith(u'@')) {
            name = QString();
            at = 1;
        } else {
            name = readQuoted(trimmed, at);
        }
        if (!name || at >= trimmed.size() || trimmed[at] != u'=') return line;
        const std::optional<RegistryValue> value = readValue(trimmed.mid(at + 1).trimmed());
        if (!value) return line;
        line.kind = Kind::Value;
        line.name = *name;
        line.value = *value;
    }
    return line;
}

std::optional<RegistryValue> RegistryDocument::value(const QString& key,
                                                     const QString& name) const {
    std::optional<RegistryValue> found;
    bool inKey = false;
    for (const Line& line : lines_) {
        if (line.kind == Kind::Key || line.kind == Kind::BrokenKey) {
            inKey = line.kind == Kind::Key && sameName(line.name, key);
        } else if (inKey && line.kind == Kind::Value && sameName(line.name, name)) {
            found = line.value;
        }
    }
    return found;
}

bool RegistryDocument::hasSubkeys(const QString& key) const {
    for (const Line& line : lines_) {
        if (line.kind == Kind::Key && line.name.startsWith(key + u'\\', Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

bool RegistryDocument::hasKey(const QString& key) const {
    for (const Line& line : lines_) {
        if (line.kind == Kind::Key && sameName(line.name, key)) return true;
    }
    return hasSubkeys(key);
}

void RegistryDocument::createKey(const QString& key) {
    for (const Line& line : lines_) {
        if (line.kind == Kind::Key && sameName(line.name, key)) return;
    }
    if (!lines_.empty() && lines_.back().kind != Kind::Blank) lines_.push_back(parse(QString()));
    lines_.push_back(parse(u'[' + key + u']'));
}

void RegistryDocument::setLine(const QString& key, const QString& name,
                               const RegistryValue& value) {
    createKey(key);
    const QString start = name.isEmpty() ? QStringLiteral("@") : quoted(name);
    const Line line = parse(start + u'=' + written(value));
    bool inKey = false;
    size_t existing = lines_.size(), place = lines_.size();
    for (size_t at = 0; at < lines_.size(); ++at) {
        const Line& present = lines_[at];
        if (present.kind == Kind::Key || present.kind == Kind::BrokenKey) {
            inKey = present.kind == Kind::Key && sameName(present.name, key);
            if (inKey) place = at + 1;
        } else if (inKey && present.kind == Kind::Value) {
            place = at + 1;
            if (sameName(present.name, name)) existing = at;
        }
    }
    if (existing == lines_.size()) {
        lines_.insert(lines_.begin() + qsizetype(place), line);
        return;
    }
    const RegistryValue& old = lines_[existing].value;
    const bool same =
        old.type == value.type && old.text == value.text && old.number == value.number;
    if (!same) lines_[existing] = line;
}

void RegistryDocument::setString(const QString& key, const QString& name, const QString& text) {
    const qsizetype nul = text.indexOf(QChar(u'\0'));
    setLine(key, name, {RegistryValue::Type::String, nul < 0 ? text : text.left(nul), 0});
}

void RegistryDocument::setDWord(const QString& key, const QString& name, quint32 number) {
    setLine(key, name, {RegistryValue::Type::DWord, {}, number});
}

void RegistryDocument::deleteKey(const QString& key) {
    std::vector<Line> kept;
    bool inKey = false;
    for (Line& line : lines_) {
        if (line.kind == Kind::Key || line.kind == Kind::BrokenKey) {
            inKey = line.kind == Kind::Key && sameName(line.name, key);
            if (inKey) continue;
        }
        if (inKey && line.kind != Kind::Broken && line.kind != Kind::Comment) continue;
        kept.push_back(std::move(line));
    }
    lines_ = std::move(kept);
}

int RegistryDocument::brokenLineCount() const {
    int count = 0;
    for (const Line& line : lines_) {
        count += line.kind == Kind::Broken || line.kind == Kind::BrokenKey;
    }
    return count;
}

}  // namespace zov
