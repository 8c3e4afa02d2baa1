#include "structcompare/kind_report.h"

#include "structcompare/line_differences.h"
#include "util/text.h"

namespace zov {

QString NameList::add(const QString& heading, const QString& name) {
    QString added;
    if (count == 0) added = heading + CRLF;
    added += u'\t' + name + CRLF;
    text += added;
    ++count;
    return added;
}

KindReport::KindReport(ObjectType type)
    : type(type), plural(GetObjectTypeName(type, true)), singular(plural.chopped(1)) {}

void KindReport::addIdentical(const QString& name, const QString& suffix) {
    ++identicalCount;
    identical += u'\t' + name + suffix + CRLF;
    lastIdentical = name;
}

void KindReport::addDetails(const QString& name, const QString& source, const QString& target) {
    const int number = differing.count;
    if (number == 1)
        detailText = CRLF + QStringLiteral("===========================================") + CRLF +
                     CRLF + QStringLiteral("Detailed list of differences between compared ") +
                     plural + CRLF;
    QString differences;
    ListLineDifferences(source, target, differences);
    detailText +=
        CRLF + QString::number(number) + QStringLiteral(". ") + name + CRLF + CRLF + differences;
}

QString KindReport::countLine(int count, const QString& side) const {
    QString line;
    if (count == 0)
        line = QStringLiteral("There are no ") + plural;
    else if (count == 1)
        line = QStringLiteral("There is 1 ") + singular;
    else
        line = QStringLiteral("There are %1 ").arg(count) + plural;
    return line + QStringLiteral(" in ") + side + QStringLiteral(" database.") + CRLF;
}

QString KindReport::withCount(const NameList& list) const {
    if (list.count == 0) return {};
    return list.text + QStringLiteral("\t(%1 ").arg(list.count) +
           (list.count == 1 ? singular : plural) + u')' + CRLF;
}

QString KindReport::lists() const {
    return withCount(differing) + withCount(onlyInSource) + withCount(onlyInTarget);
}

QString KindReport::unreadableList() const {
    if (unreadable.count == 0) return {};
    return CRLF + withCount(unreadable).chopped(2);
}

QString KindReport::closing(bool selective) const {
    const bool tables = type == ObjectType::Table;
    // "All" is said of what is known to be all.
    if (!somethingDiffers() && isComplete()) {
        const QString selected = selective ? QStringLiteral("selected ") : QString();
        if (!tables)
            return QStringLiteral("All ") + selected + plural +
                   QStringLiteral(" in both databases are identical.");
        return QStringLiteral("The structure of all ") + selected +
               QStringLiteral("tables in both databases is identical.") +
               (columnsIgnored ? QStringLiteral(" (Some columns were ignored during comparison.)")
                               : QString());
    }
    if (identicalCount == 0)
        return tables ? QStringLiteral(
                            "There are no tables which have identical structure in both databases.")
                      : QStringLiteral("There are no ") + plural +
                            QStringLiteral(" which are identical in both databases.");
    if (identicalCount == 1)
        return QStringLiteral("One ") + singular + QStringLiteral(" [") + lastIdentical +
               QStringLiteral("] has identical structure in both databases.");
    return QStringLiteral("All %1 remaining ").arg(identicalCount) + plural +
           (tables ? QStringLiteral(" have identical structures:")
                   : QStringLiteral(" are identical:")) +
           CRLF + identical.chopped(2);
}

}  // namespace zov
