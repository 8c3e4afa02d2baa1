#include "data/odbc/odbc_driver.h"

#include "data/odbc/odbc_handles.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <QSaveFile>
#include <QTemporaryDir>

namespace zov::odbc {
namespace {

constexpr int DefaultPort = 1433;
const QString FreeTdsLibrary = QStringLiteral("libtdsodbc.so");

struct InstalledDriver {
    QString name;
    QString attributes;  // "Description=...", "Driver=...", one a line
};

std::vector<InstalledDriver> readDriverRegistry() {
    std::vector<InstalledDriver> drivers;
    std::vector<char16_t> name(512);
    std::vector<char16_t> attributes(4096);
    SQLUSMALLINT direction = SQL_FETCH_FIRST;
    for (;;) {
        SQLSMALLINT nameLength = 0;
        SQLSMALLINT attributesLength = 0;
        const SQLRETURN result = SQLDriversW(
            environment(), direction, reinterpret_cast<SQLWCHAR*>(name.data()),
            SQLSMALLINT(name.size()), &nameLength, reinterpret_cast<SQLWCHAR*>(attributes.data()),
            SQLSMALLINT(attributes.size()), &attributesLength);
        if (!SQL_SUCCEEDED(result) || drivers.size() > 1000) return drivers;
        direction = SQL_FETCH_NEXT;
        const auto taken = [](const std::vector<char16_t>& buffer, SQLSMALLINT length) {
            return QString::fromUtf16(
                buffer.data(), std::clamp<qsizetype>(length, 0, qsizetype(buffer.size()) - 1));
        };
        drivers.push_back({taken(name, nameLength),
                           taken(attributes, attributesLength).replace(QChar(u'\0'), u'\n')});
    }
}

DriverFamily familyOf(const QString& nameOrPath, const QString& attributes) {
    const auto has = [](const QString& text, QLatin1StringView word) {
        return text.contains(word, Qt::CaseInsensitive);
    };
    if (has(nameOrPath, QLatin1StringView("msodbc")) ||
        has(attributes, QLatin1StringView("msodbc")) ||
        has(nameOrPath, QLatin1StringView("for SQL Server")))
        return DriverFamily::Microsoft;
    return DriverFamily::FreeTds;
}

// Where Linux distributions and macOS's package managers put FreeTDS's ODBC library.
QString unregisteredFreeTds() {
    QStringList folders;
    for (const char* root : {"/usr/lib", "/usr/lib64", "/usr/local/lib", "/opt/homebrew/lib"}) {
        const QDir dir(QString::fromLatin1(root));
        folders << dir.path() << dir.filePath(QStringLiteral("odbc"));
        for (const QString& sub : dir.entryList({QStringLiteral("*-linux-gnu*")}, QDir::Dirs))
            folders << dir.filePath(sub) << dir.filePath(sub + QStringLiteral("/odbc"));
    }
    for (const QString& folder : folders) {
        const QString path = QDir(folder).filePath(FreeTdsLibrary);
        if (QFileInfo(path).isFile()) return path;
    }
    return {};
}

[[noreturn]] void refuse(const QString& text) {
    throw DbError(ado_error::Unspecified, text);
}

// FreeTDS ends a value in braces at the first "}" in front of ";" or the end, and knows no
// doubling.
QString freeTdsValue(const QString& key, const QString& value) {
    if (!value.contains(u';') && !value.startsWith(u'{')) return value;
    if (value.contains(u"};"))
        refuse(
            QStringLiteral("The %1 contains \"};\", which can't be handed to the FreeTDS driver. "
                           "Choose another one, or install Microsoft's ODBC driver.")
                .arg(key));
    return u'{' + value + u'}';
}

QString microsoftValue(QString value) {
    return u'{' + value.replace(u'}', QStringLiteral("}}")) + u'}';
}

/// FreeTDS takes the name of a CA file only from its configuration file. One section per server,
/// since a file without the server's section would be followed by the user's own file, whose
/// settings would win.
QString freeTdsSection(const ServerAddress& server, const Encryption& encryption) {
    static QMutex guard;
    static QTemporaryDir folder;
    static QHash<QString, QString> sections;  // text to name
    const QMutexLocker lock(&guard);
    QString text = QStringLiteral("\thost = %1\n").arg(server.host);
    if (server.tcpPort())
        text += QStringLiteral("\tport = %1\n").arg(server.tcpPort());
    else
        text += QStringLiteral("\tinstance = %1\n").arg(server.instance);
    text += QStringLiteral(
                "\tencryption = require\n\tca file = %1\n"
                "\tcheck certificate hostname = yes\n")
                .arg(encryption.caFile);
    if (const auto known = sections.constFind(text); known != sections.cend()) return known.value();

    const QString name = QStringLiteral("zovrand%1").arg(sections.size() + 1);
    sections.insert(text, name);
    QSaveFile file(folder.filePath(QStringLiteral("freetds.conf")));
    bool written = file.open(QIODevice::WriteOnly);
    for (auto at = sections.cbegin(); written && at != sections.cend(); ++at) {
        const QByteArray section = (u'[' + at.value() + QStringLiteral("]\n") + at.key()).toUtf8();
        written = file.write(section) == section.size();
    }
    if (!written || !file.commit()) {
        sections.remove(text);
        refuse(QStringLiteral("The FreeTDS settings that make it verify certificates can't be "
                              "written to %1: %2")
                   .arg(file.fileName(), file.errorString()));
    }
    qputenv("FREETDSCONF", file.fileName().toLocal8Bit());
    return name;
}

}  // namespace

QStringList installedDrivers() {
    QStringList names;
    for (const InstalledDriver& driver : readDriverRegistry()) names.append(driver.name);
    return names;
}

Driver chooseDriver() {
    const std::vector<InstalledDriver> installed = readDriverRegistry();
    const auto find = [&](const QString& name) -> const InstalledDriver* {
        for (const InstalledDriver& driver : installed)
            if (driver.name.compare(name, Qt::CaseInsensitive) == 0) return &driver;
        return nullptr;
    };

    const QString wanted = qEnvironmentVariable("ZOVRAND_ODBC_DRIVER").trimmed();
    if (!wanted.isEmpty()) {
        if (const InstalledDriver* driver = find(wanted))
            return {driver->name, familyOf(driver->name, driver->attributes)};
        if (QFileInfo(wanted).isFile())
            return {QFileInfo(wanted).absoluteFilePath(), familyOf(wanted, {})};
        const QString names = installedDrivers().join(QStringLiteral(", "));
        refuse(
            QStringLiteral("ZOVRAND_ODBC_DRIVER names the ODBC driver \"%1\", which is neither "
                           "installed nor a file. %2 Unset ZOVRAND_ODBC_DRIVER, or install the "
                           "driver (FreeTDS is in the package tdsodbc: sudo apt install tdsodbc).")
                .arg(wanted, names.isEmpty() ? QStringLiteral("No driver is installed.")
                                             : QStringLiteral("Installed: %1.").arg(names)));
    }

    for (const char* name : {"ODBC Driver 18 for SQL Server", "ODBC Driver 17 for SQL Server"})
        if (const InstalledDriver* driver = find(QString::fromLatin1(name)))
            return {driver->name, DriverFamily::Microsoft};
    if (const InstalledDriver* driver = find(QStringLiteral("FreeTDS")))
        return {driver->name, DriverFamily::FreeTds};
    const QString library = unregisteredFreeTds();
    if (!library.isEmpty()) return {library, DriverFamily::FreeTds};
    refuse(QStringLiteral(
        "No ODBC driver for SQL Server is installed. Install FreeTDS with \"sudo apt "
        "install tdsodbc\", or Microsoft's \"ODBC Driver 18 for SQL Server\"."));
}

ServerAddress ServerAddress::parse(const QString& dataSource) {
    const auto bad = [&](const QString& why) {
        refuse(
            QStringLiteral("\"%1\" is not a server's name: %2 Servers are named host, host,port, "
                           "host\\instance or tcp:host,port.")
                .arg(dataSource, why));
    };
    QString rest = dataSource.trimmed();
    for (const QChar c : rest)
        if (c.unicode() < 0x20 || c == u';' || c == u'{' || c == u'}' || c == u'=')
            bad(QStringLiteral("it has a character that no server's name has."));
    if (rest.startsWith(u"tcp:", Qt::CaseInsensitive)) rest = rest.mid(4).trimmed();
    for (const char* pipe : {"np:", "lpc:", "\\\\", "(localdb)"})
        if (rest.startsWith(QLatin1StringView(pipe), Qt::CaseInsensitive))
            bad(QStringLiteral("only servers that listen on TCP/IP can be reached."));

    ServerAddress server;
    if (rest.startsWith(u'[')) {
        const qsizetype end = rest.indexOf(u']');
        if (end < 0) bad(QStringLiteral("the bracket is not closed."));
        server.host = rest.mid(1, end - 1);
        rest = rest.mid(end + 1);
    } else {
        qsizetype end = 0;
        while (end < rest.size() && rest[end] != u',' && rest[end] != u'\\') ++end;
        server.host = rest.left(end).trimmed();
        rest = rest.mid(end);
    }
    const qsizetype comma = rest.indexOf(u',');
    if (comma >= 0) {
        bool isNumber = false;
        server.port = rest.mid(comma + 1).trimmed().toInt(&isNumber);
        if (!isNumber || server.port < 1 || server.port > 65535)
            bad(QStringLiteral("the port is a number from 1 to 65535."));
        rest.truncate(comma);
    }
    if (rest.startsWith(u'\\')) {
        server.instance = rest.mid(1).trimmed();
        // The default instance has a name too.
        if (server.instance.compare(u"MSSQLSERVER", Qt::CaseInsensitive) == 0)
            server.instance.clear();
    } else if (!rest.trimmed().isEmpty()) {
        bad(QStringLiteral("\"%1\" is not understood.").arg(rest.trimmed()));
    }
    if (server.host.isEmpty() || server.host == u"." ||
        server.host.compare(u"(local)", Qt::CaseInsensitive) == 0)
        server.host = QStringLiteral("localhost");
    return server;
}

int ServerAddress::tcpPort() const {
    return port || !instance.isEmpty() ? port : DefaultPort;
}

QString ServerAddress::shown() const {
    if (tcpPort()) return QStringLiteral("%1, port %2").arg(host).arg(tcpPort());
    return QStringLiteral("%1, instance %2").arg(host, instance);
}

Encryption Encryption::fromEnvironment() {
    Encryption encryption;
    encryption.caFile = qEnvironmentVariable("ZOVRAND_CA_FILE").trimmed();
    if (encryption.verified() && !QFileInfo(encryption.caFile).isReadable())
        refuse(QStringLiteral("ZOVRAND_CA_FILE names \"%1\", which can't be read.")
                   .arg(encryption.caFile));
    if (encryption.verified()) encryption.caFile = QFileInfo(encryption.caFile).absoluteFilePath();
    return encryption;
}

QString odbcConnectionString(const Driver& driver, const ServerAddress& server,
                             const ConnectionSpec& spec, const Encryption& encryption) {
    for (const QString* value : {&spec.database, &spec.user, &spec.password})
        if (value->contains(QChar(u'\0')))
            refuse(QStringLiteral("A database, login or password can't contain a NUL character."));

    const bool freeTds = driver.family == DriverFamily::FreeTds;
    QString text;
    const auto add = [&](const char* key, const QString& value) {
        text += QLatin1StringView(key) + u'=' + value + u';';
    };
    const auto quoted = [&](const char* what, const QString& value) {
        return freeTds ? freeTdsValue(QLatin1StringView(what), value) : microsoftValue(value);
    };
    add("DRIVER", u'{' + driver.name + u'}');
    const bool byInstance = server.tcpPort() == 0;
    if (freeTds) {
        if (encryption.verified()) {
            add("Servername", freeTdsSection(server, encryption));
        } else {
            add("Server", byInstance ? server.host + u'\\' + server.instance : server.host);
            if (!byInstance) add("Port", QString::number(server.tcpPort()));
            add("Encryption", QStringLiteral("request"));
        }
        // Older servers answer with their own version, and the driver goes down to it.
        add("TDS_Version", QStringLiteral("7.4"));
        add("ClientCharset", QStringLiteral("UTF-8"));
    } else {
        add("SERVER",
            microsoftValue(
                byInstance ? server.host + u'\\' + server.instance
                           : QStringLiteral("tcp:%1,%2").arg(server.host).arg(server.tcpPort())));
        add("Encrypt", QStringLiteral("yes"));
        add("TrustServerCertificate",
            encryption.verified() ? QStringLiteral("no") : QStringLiteral("yes"));
        // OpenSSL, on which the driver stands, has no other place to be told.
        if (encryption.verified()) qputenv("SSL_CERT_FILE", encryption.caFile.toLocal8Bit());
    }
    if (!spec.database.isEmpty()) add("Database", quoted("database", spec.database));
    if (spec.integratedSecurity) {
        add("Trusted_Connection", QStringLiteral("Yes"));
    } else {
        add("UID", quoted("login", spec.user));
        add("PWD", quoted("password", spec.password));
    }
    add("APP", QStringLiteral("Zovrand"));
    return text;
}

}  // namespace zov::odbc
