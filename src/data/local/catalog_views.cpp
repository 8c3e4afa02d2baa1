#include "data/local/catalog_views.h"

#include "data/local/query_types.h"

#include <QHash>
#include <QRegularExpression>

namespace zov::local {
namespace {

ColumnInfo readType(const QString& text) {
    const qsizetype open = text.indexOf(u'(');
    const QString name = open < 0 ? text : text.left(open);
    ColumnInfo info;
    if (!typeByName(name, info)) qFatal("catalogue view: unknown type %s", qPrintable(text));
    if (open >= 0) {
        const QStringList sizes = text.mid(open + 1, text.size() - open - 2).split(u',');
        const int first = sizes[0] == u"max" ? -1 : sizes[0].toInt();
        if (info.type == SqlType::Numeric || info.type == SqlType::Decimal) {
            info.precision = first;
            info.scale = sizes.size() > 1 ? sizes[1].toInt() : 0;
        } else {
            info.size = first;
        }
    }
    return info;
}

CatalogView readView(const detail::CatalogViewText& source, int majorVersion) {
    static const QRegularExpression bareName(QStringLiteral("^\\w+\\.name$"));
    CatalogView view;
    view.schema = QLatin1String(source.schema);
    view.name = QLatin1String(source.name);
    QString text = QString::fromLatin1(source.text);
    text.replace(QLatin1String("$OBJECT_COLUMNS"), QLatin1String(detail::objectColumns));
    text.replace(QLatin1String("$COLUMN_COLUMNS"), QLatin1String(detail::columnColumns));
    text.replace(QLatin1String("$SOURCE"), QLatin1String(detail::sourceText));
    // $DETAIL(id,minor,name): whether the object or column has that fact.
    static const QRegularExpression fact(QStringLiteral("\\$DETAIL\\(([^,]+),([^,]+),(\\w+)\\)"));
    text.replace(fact,
                 QStringLiteral("EXISTS (SELECT 1 FROM \"zov$details\" d WHERE d.class = 1 AND "
                                "d.major_id = \\1 AND d.minor_id = \\2 AND d.name = '\\3')"));
    // Owners became schemas with version 9, and the compatibility views show their ids as owners'
    // since.
    text.replace(QLatin1String("$UID"),
                 majorVersion >= 9 ? QStringLiteral("o.schema_id")
                                   : QStringLiteral("(SELECT s.principal_id FROM \"zov$schemas\" s "
                                                    "WHERE s.schema_id = o.schema_id)"));
    const QStringList lines = text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty()) continue;
        if (line.startsWith(QLatin1String("FROM "))) {
            view.from = lines.mid(i).join(u'\n');
            break;
        }
        const qsizetype bar = line.indexOf(QLatin1String(" | "));
        const qsizetype blank = line.indexOf(u' ');
        CatalogColumn column;
        column.info = readType(line.mid(blank + 1, bar - blank - 1).trimmed());
        column.info.name = line.left(blank);
        column.expression = line.mid(bar + 3).trimmed();
        column.collated = bareName.match(column.expression).hasMatch();
        view.columns.push_back(std::move(column));
    }
    return view;
}

using ViewMap = QHash<QString, CatalogView>;

QString keyOf(const QString& schema, const QString& name) {
    return schema.toLower() + u'.' + name.toLower();
}

ViewMap readAll(int majorVersion) {
    ViewMap views;
    for (const auto& list : {detail::compatibilityViews(), detail::systemViews(),
                             detail::storageViews(), detail::informationSchemaViews()}) {
        for (const detail::CatalogViewText& source : list) {
            if (source.minVersion > majorVersion) continue;
            CatalogView view = readView(source, majorVersion);
            views.insert(keyOf(view.schema, view.name), std::move(view));
        }
    }
    return views;
}

}  // namespace

int CatalogView::columnIndex(const QString& column) const {
    for (size_t i = 0; i < columns.size(); ++i)
        if (columns[i].info.name.compare(column, Qt::CaseInsensitive) == 0) return int(i);
    return -1;
}

const CatalogView* findCatalogView(const QString& schema, const QString& name, int majorVersion) {
    static const ViewMap old = readAll(8);
    static const ViewMap current = readAll(99);
    const ViewMap& views = majorVersion < 9 ? old : current;
    const auto find = [&](const QString& in) {
        const auto it = views.constFind(keyOf(in, name));
        return it == views.constEnd() ? nullptr : &it.value();
    };
    if (schema.isEmpty() || schema.compare(u"dbo", Qt::CaseInsensitive) == 0)
        return find(QStringLiteral("dbo"));
    if (schema.compare(u"sys", Qt::CaseInsensitive) == 0) {
        if (majorVersion < 9) return nullptr;
        const CatalogView* view = find(QStringLiteral("sys"));
        return view ? view : find(QStringLiteral("dbo"));
    }
    return find(schema);
}

}  // namespace zov::local
