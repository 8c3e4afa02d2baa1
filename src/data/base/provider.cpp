#include "data/base/provider.h"

namespace zov {
namespace {

// One value of a connection string: to the next ";", or quoted with the quote doubled inside.
QString takeValue(const QString& text, qsizetype& at) {
    while (at < text.size() && text[at] == u' ') ++at;
    QString value;
    if (at < text.size() && (text[at] == u'"' || text[at] == u'\'')) {
        const QChar quote = text[at++];
        while (at < text.size()) {
            if (text[at] == quote) {
                if (at + 1 >= text.size() || text[at + 1] != quote) break;
                ++at;
            }
            value += text[at++];
        }
        while (at < text.size() && text[at] != u';') ++at;
    } else {
        const qsizetype end = text.indexOf(u';', at);
        value = text.mid(at, end < 0 ? -1 : end - at);
        at = end < 0 ? text.size() : end;
    }
    if (at < text.size()) ++at;
    return value;
}

}  // namespace

ConnectionSpec ConnectionSpec::parse(const QString& connectionString) {
    ConnectionSpec spec;
    qsizetype at = 0;
    while (at < connectionString.size()) {
        const qsizetype equals = connectionString.indexOf(u'=', at);
        if (equals < 0) break;
        const QString key = connectionString.mid(at, equals - at).trimmed().toLower();
        at = equals + 1;
        const QString value = takeValue(connectionString, at);
        if (key == u"data source")
            spec.dataSource = value;
        else if (key == u"initial catalog")
            spec.database = value;
        else if (key == u"user id")
            spec.user = value;
        else if (key == u"password")
            spec.password = value;
        else if (key == u"integrated security")
            spec.integratedSecurity = value.compare(u"SSPI", Qt::CaseInsensitive) == 0;
        else if (key == u"connect timeout")
            spec.connectTimeout = value.toInt();
    }
    return spec;
}

}  // namespace zov
